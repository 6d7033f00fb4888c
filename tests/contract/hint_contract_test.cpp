#include <algorithm>
#include <span>

#include "engine/commands/create.h"
#include "engine/rebuild/queue.h"
#include "tests/contract/contract_test.h"

namespace vantorelix::contract {
namespace {

// What becomes of a hint on its way to the host.
using Change = std::function<std::vector<double>(std::span<const double>)>;

class ChangedPlug : public host::Plug {
 public:
  ChangedPlug(std::shared_ptr<host::Plug> inner, const Change& change) : inner_(std::move(inner)), change_(change) {}

  std::shared_ptr<host::Plug> elementByLogicalIndex(unsigned index) override {
    return std::make_shared<ChangedPlug>(inner_->elementByLogicalIndex(index), change_);
  }
  Vector translation_at(double t, const host::TimeUnit& unit) override { return inner_->translation_at(t, unit); }
  void expect(std::span<const double> times, const host::TimeUnit& unit) override {
    const std::vector<double> changed = change_(times);
    if (!changed.empty()) inner_->expect(changed, unit);
  }
  void set_vector_array(const std::shared_ptr<host::VectorArray>& array) override { inner_->set_vector_array(array); }

 private:
  std::shared_ptr<host::Plug> inner_;
  const Change& change_;
};

// The host's object model, but for hints.
class ChangedHints : public host::ObjectModel {
 public:
  ChangedHints(host::ObjectModel& inner, Change change) : inner_(inner), change_(std::move(change)) {}

  std::shared_ptr<host::Plug> findPlug(const std::string& node, const std::string& attribute) override {
    return std::make_shared<ChangedPlug>(inner_.findPlug(node, attribute), change_);
  }
  host::TimeUnit uiUnit() override { return inner_.uiUnit(); }
  std::shared_ptr<host::VectorArray> vector_array(const Vectors& values) override {
    return inner_.vector_array(values);
  }
  std::shared_ptr<host::VectorArray> vector_array() override { return inner_.vector_array(); }
  bool isReadingFile() override { return inner_.isReadingFile(); }
  bool isWritingFile() override { return inner_.isWritingFile(); }
  bool isOpeningFile() override { return inner_.isOpeningFile(); }
  bool isNewingFile() override { return inner_.isNewingFile(); }
  host::Value addNodeRemovedCallback(const host::Callback& function, const std::string& type) override {
    return inner_.addNodeRemovedCallback(function, type);
  }
  void removeCallback(const host::Value& identifier) override { inner_.removeCallback(identifier); }

 private:
  host::ObjectModel& inner_;
  Change change_;
};

class HintContract : public ContractTest {
 protected:
  // A trail of the ball at 40 samples a frame, made and then rebuilt, while hints are changed: its points and keys.
  std::vector<Vector> trail(Change change) {
    ChangedHints om(*host->handles().om, std::move(change));
    Handles handles = host->handles();
    handles.om = &om;
    _initialise(handles);
    host->select({"|rig|ball"});
    create_trail(40);
    std::vector<Vector> all;
    add_vectors(all);
    host->edit_ball();
    host->now() += 1.0;
    EXPECT_TRUE(host->run_idle_once());
    add_vectors(all);
    _initialise(recorder->handles());
    EXPECT_EQ(all.size(), 2u * (161u + 2u));
    return all;
  }
  void add_vectors(std::vector<Vector>& all) {
    for (const char* const attribute : {"points", "keyPoints"}) {
      const Vectors vectors = host->vectors(kBallShape, attribute);
      all.insert(all.end(), vectors->begin(), vectors->end());
    }
  }
};

TEST_P(HintContract, a_host_gives_the_same_trail_whether_hints_are_right_or_wrong_or_missing) {
  const auto as_it_is = [](std::span<const double> times) { return std::vector<double>(times.begin(), times.end()); };
  const std::vector<Vector> right = trail(as_it_is);
  EXPECT_EQ(right.front(), Vector{});
  EXPECT_EQ(right[160], (Vector{8.0, 0.0, 0.0}));
  EXPECT_EQ(trail([](std::span<const double>) { return std::vector<double>(); }), right) << "without hints";
  EXPECT_EQ(trail([](std::span<const double>) { return std::vector<double>{-7.0, 1e9, 2.5}; }), right) << "others";
  EXPECT_EQ(trail([&](std::span<const double> times) {
              std::vector<double> backwards = as_it_is(times);
              std::reverse(backwards.begin(), backwards.end());
              return backwards;
            }),
            right)
      << "backwards";
  EXPECT_EQ(trail([](std::span<const double> times) { return std::vector<double>(1000, times[0]); }), right)
      << "one time, more often than a host need look";
}

TEST_P(HintContract, hints_are_no_calls) {
  host->select({"|rig|ball"});
  create_trail();
  for (const std::string& line : log()) EXPECT_EQ(line.find("expect"), std::string::npos) << line;
}

VANTORELIX_OVER_EVERY_HOST(HintContract);

}  // namespace
}  // namespace vantorelix::contract
