// Listening to a host: every call it gets as one readable line, and any call made to fail.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/state/state.h"

namespace vantorelix::support {

// What an injected failure throws.
enum class Failure { error, interrupt };

// Beginnings of the lines that most tests leave out.
inline constexpr std::string_view kClock = "time.time()";
inline constexpr std::string_view kEvaluations = "plug.translation_at(";
inline constexpr std::string_view kPrints = "print(";

// Stands before a host and passes every call on, after writing it down the way a script would make it:
//   cmds.setAttr('|a|aShape.lineWidth', 2.5)    om.findPlug('|a|aShape', 'points')    plug.translation_at(3.0)
//   om.MVectorArray(<250>)    plug.setMObject(<250>)    cmds.evalDeferred(_rebuild_step, lowestPriority=True)
//   time.time()    print('...')    import Vantorelix    os.environ.get('NAME')
// Sequences of triples are shortened to their length. A call that is made to fail is written down too, and does not
// reach the host. The host must outlive the recorder, the recorder all plugs and arrays handed out.
class Recorder {
 public:
  explicit Recorder(const Handles& host);
  ~Recorder();
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  Handles handles() const;

  // The lines so far, without those that begin with one of the given texts.
  std::vector<std::string> log(const std::vector<std::string_view>& without = {}) const;
  // The log without clock readings and evaluations: what is left is a call of the script's own text.
  std::vector<std::string> calls() const { return log({kClock, kEvaluations}); }
  // How many lines begin with `text`.
  std::size_t count(std::string_view text) const;
  // Number of calls since the start or the last clear(), recorded or not.
  std::size_t call_count() const;
  // Forgets the lines and counts from 0 again; failures that are set stay.
  void clear();
  // Whether lines are kept: a sweep over many thousand calls needs only their number.
  void set_recording(bool on);

  // Makes the k-th call from now on fail, the next one being 1. The error's text is "injected failure at call k: "
  // and the line, where k counts as call_count() does.
  void fail_call(std::size_t k, Failure failure = Failure::error);
  // Makes calls whose line begins with `text` fail: the n-th from now on, or all of them for n = 0.
  void fail_line(std::string text, std::size_t n = 0, Failure failure = Failure::error);
  // Lets every call through again.
  void stop_failing();

 private:
  struct Data;
  std::unique_ptr<Data> data_;
};

}  // namespace vantorelix::support
