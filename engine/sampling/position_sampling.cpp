#include "engine/sampling/position_sampling.h"

#include <algorithm>
#include <cmath>

#include "base/large_pages.h"
#include "engine/sampling/limits.h"
#include "engine/state/attempt.h"
#include "host/error.h"

namespace vantorelix {

namespace {

const std::string kWorldMatrix = "worldMatrix";
// Largest sum of differences by which the fast way may miss the exact one.
constexpr double kTolerance = 0.0001;
// Key times this far outside a range still count as inside.
constexpr double kRangeMargin = 0.000001;

// Evaluates one plug in a time context. The unit is the one at creation, whatever the scene changes to later.
class FastSampler : public Sampler {
 public:
  FastSampler(std::shared_ptr<host::Plug> plug, host::TimeUnit uiu) : plug_(std::move(plug)), uiu_(std::move(uiu)) {}
  Position operator()(double t) override { return plug_->translation_at(t, uiu_); }
  void expect(std::span<const double> times) override { plug_->expect(times, uiu_); }

 private:
  std::shared_ptr<host::Plug> plug_;
  host::TimeUnit uiu_;
};

class SlowSampler : public Sampler {
 public:
  explicit SlowSampler(std::string obj) : obj_(std::move(obj)) {}
  Position operator()(double t) override { return _world_pos_at(obj_, t); }

 private:
  std::string obj_;
};

// Drops each ascending run that repeats the run before it. Curves that were keyed together (of a recorded motion, all
// of them) list the same times one after another, and without the copies there is little left to sort.
void drop_repeated_runs(std::vector<double>& times) {
  auto kept = times.begin();  // the last run that was kept is [kept, write)
  auto write = times.begin();
  for (auto run = times.begin(); run != times.end();) {
    const auto length = write - kept;
    if (length > 0 && length <= times.end() - run && std::equal(kept, write, run)) {
      run += length;
      continue;
    }
    const auto end = std::is_sorted_until(run, times.end());
    kept = write;
    write = write == run ? end : std::copy(run, end, write);
    run = end;
  }
  times.erase(write, times.end());
}

SamplerPtr sampler_or_best(const std::string& obj, SamplerPtr sampler) {
  if (!sampler) sampler = _make_fast_sampler(obj);
  return sampler ? sampler : _make_slow_sampler(obj);
}

}  // namespace

Position _world_pos_at(const std::string& obj, double t) {
  std::string attribute;
  attribute.reserve(obj.size() + kWorldMatrix.size() + 4);
  attribute.append(obj).append(".").append(kWorldMatrix).append("[0]");
  const auto matrix = cmds->getAttr_matrix(attribute, t);
  return {matrix[12], matrix[13], matrix[14]};
}

SamplerPtr _make_fast_sampler(const std::string& obj) {
  SamplerPtr sampler;
  attempt([&] {
    const auto plug = om->findPlug(obj, kWorldMatrix)->elementByLogicalIndex(0);
    const auto candidate = std::make_shared<FastSampler>(plug, om->uiUnit());
    const double now = cmds->currentTime();
    const Position a = (*candidate)(now);
    const Position b = _world_pos_at(obj, now);
    const bool differs = std::abs(a.x - b.x) + std::abs(a.y - b.y) + std::abs(a.z - b.z) > kTolerance;
    if (!differs) sampler = candidate;
  });
  return sampler;
}

SamplerPtr _make_slow_sampler(const std::string& obj) { return std::make_shared<SlowSampler>(obj); }

std::int64_t _sample_count(double start, double end, double step) {
  if (step == 0.0) throw host::Error("float division by zero", host::ErrorKind::zero_division);
  const std::int64_t steps = host::Value(std::nearbyint((end - start) / step)).to_int();
  if (steps >= kMaxSamples) throw too_many_samples();
  return steps + 1;
}

std::vector<Position> _sample_positions(const std::string& obj, double start, double end, double step,
                                        SamplerPtr sampler) {
  sampler = sampler_or_best(obj, std::move(sampler));
  const std::int64_t n = _sample_count(start, end, step);
  std::vector<Position> positions;
  reserve(positions, reservation(n));
  const SampleTimes times{start, step, n};
  OrderedSampler ordered(*sampler, times);
  for (std::size_t i = 0; i < times.size(); ++i) positions.push_back(ordered.at(i));
  return positions;
}

std::vector<double> _keyframe_times(const std::string& obj, double start, double end) {
  std::vector<double> times = cmds->keyframe_times(obj);
  drop_repeated_runs(times);
  std::erase_if(times, [&](double t) { return !(start - kRangeMargin <= t && t <= end + kRangeMargin); });
  if (!std::is_sorted(times.begin(), times.end())) std::sort(times.begin(), times.end());
  times.erase(std::unique(times.begin(), times.end()), times.end());
  return times;
}

std::vector<Position> _sample_at_times(const std::string& obj, const std::vector<double>& times, SamplerPtr sampler) {
  sampler = sampler_or_best(obj, std::move(sampler));
  std::vector<Position> positions;
  positions.reserve(times.size());
  OrderedSampler ordered(*sampler, times);
  for (std::size_t i = 0; i < times.size(); ++i) positions.push_back(ordered.at(i));
  return positions;
}

}  // namespace vantorelix
