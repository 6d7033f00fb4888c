#include "cli/commands/batch.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>
#include <unordered_map>

#include "base/number_text.h"
#include "base/utf8.h"
#include "cli/args/options.h"
#include "cli/args/placeholders.h"
#include "cli/output/columns.h"
#include "cli/output/output_file.h"
#include "cli/terminal/failure.h"
#include "cli/terminal/interrupt.h"
#include "cli/terminal/job.h"

namespace vantorelix::cli {

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

struct Result {
  enum class State { open, skipped, done, failed };
  State state = State::open;
  std::size_t trails = 0, warnings = 0, errors = 0;
  double seconds = 0.0;
};

struct Running {
  std::size_t scene;  // its number
  Clock::time_point begun;
  std::unique_ptr<Job> job;
};

// What the command was told for every scene alike.
std::vector<std::string> shared_words(const CLI::App& command) {
  static const std::vector<std::string> kOwn = {"help", "quiet", "strict",     "color",        "log-format",
                                                "out",  "jobs",  "keep-going", "skip-existing"};
  std::vector<std::string> words;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_positional() || option->get_lnames().empty()) continue;
    const std::string name = option->get_lnames().front();
    if (std::find(kOwn.begin(), kOwn.end(), name) != kOwn.end()) continue;
    for (const std::string& value : option->results()) words.push_back("--" + name + "=" + value);
  }
  return words;
}

bool exists(const std::string& file) {
  std::error_code ignored;
  return fs::exists(file, ignored);
}

class Batch {
 public:
  Batch(const CLI::App& command, const std::vector<BatchScene>& scenes, const BatchOptions& options, Terminal& terminal)
      : command_(command.get_name()),
        words_(shared_words(command)),
        scenes_(scenes),
        options_(options),
        terminal_(terminal),
        results_(scenes.size()) {}

  void run() {
    while (begin_more(), !running_.empty()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      if (interrupted()) stop();
      end_finished();
      terminal_.progress(std::to_string(count(Result::State::done)) + " of " + counted(scenes_.size(), "scene"));
    }
    terminal_.end_progress();
    terminal_.set_scene("");
    if (!terminal_.quiet()) print_table();
    judge();
  }

 private:
  using State = Result::State;

  void begin_more() {
    while (!stopping_ && next_ < scenes_.size() &&
           running_.size() < static_cast<std::size_t>(options_.jobs.value_or(1)))
      begin(next_++);
  }

  void begin(std::size_t number) {
    const BatchScene& scene = scenes_[number];
    if (options_.skip_existing && std::all_of(scene.outputs.begin(), scene.outputs.end(), exists)) {
      results_[number].state = State::skipped;
      return;
    }
    std::vector<std::string> words = {command_, "--log-format=json"};
    words.insert(words.end(), words_.begin(), words_.end());
    for (const std::string& output : scene.outputs) words.push_back("--out=" + output);
    words.insert(words.end(), {"--", scene.scene});
    running_.push_back({number, Clock::now(), std::make_unique<Job>(words)});
  }

  void stop() {
    stopping_ = true;
    for (const Running& each : running_) each.job->stop();
  }

  void end_finished() {
    for (std::size_t i = 0; i < running_.size();) {
      const auto code = running_[i].job->exit_code();
      if (!code) {
        ++i;
        continue;
      }
      end(running_[i], *code);
      running_.erase(running_.begin() + static_cast<std::ptrdiff_t>(i));
    }
  }

  void end(const Running& run, int code) {
    if (code != kDone && stopping_) return;  // as it was told
    const std::string& scene = scenes_[run.scene].scene;
    Result& result = results_[run.scene];
    result.seconds = std::chrono::duration<double>(Clock::now() - run.begun).count();
    terminal_.set_scene(scene);
    std::istringstream lines(run.job->errors());
    for (std::string line; std::getline(lines, line);) pass_on(line, scene, result);
    if (code == kDone) {
      result.state = State::done;
      return terminal_.done(result.trails, result.seconds);
    }
    result.state = State::failed;
    worst_ = std::max(worst_, code);
    if (result.errors == 0) say_error(scene + ": its process ended with exit code " + std::to_string(code), {}, result);
    if (!options_.keep_going) stop();
  }

  // Says what a scene's process said, and names the scene where that did not.
  void pass_on(const std::string& line, const std::string& scene, Result& result) {
    const auto said = nlohmann::json::parse(line, nullptr, false);
    const std::string level = said.is_object() ? said.value("level", "") : "";
    if (level == "done") {
      result.trails = said.value("trails", std::size_t{0});
      return;
    }
    const std::string message = level.empty() ? line : said.value("message", "");
    const std::string text = message.starts_with(scene + ":") ? message : scene + ": " + message;
    const Place place = level.empty() ? Place() : Place{said.value("file", ""), said.value("line", std::size_t{0})};
    if (level == "note") return terminal_.note(text);
    if (level != "warning") return say_error(text, place, result);
    ++result.warnings;
    terminal_.warn(text, place);
  }

  void say_error(const std::string& text, const Place& place, Result& result) {
    ++result.errors;
    terminal_.error(text, place);
  }

  std::size_t count(State state) const {
    return static_cast<std::size_t>(
        std::count_if(results_.begin(), results_.end(), [&](const Result& each) { return each.state == state; }));
  }

  void print_table() const {
    std::vector<std::vector<std::string>> rows = {{"scene", "trails", "seconds", "warnings", "errors", ""}};
    for (std::size_t i = 0; i < scenes_.size(); ++i) {
      const Result& result = results_[i];
      const bool worked = result.state == State::done || result.state == State::failed;
      const char* how = result.state == State::done      ? ""
                        : result.state == State::failed  ? "! failed"
                        : result.state == State::skipped ? "skipped, its files exist"
                                                         : "not done";
      rows.push_back({valid_utf8(scenes_[i].scene), result.state == State::done ? std::to_string(result.trails) : "-",
                      worked ? fixed(result.seconds, 2) : "-", worked ? std::to_string(result.warnings) : "-",
                      worked ? std::to_string(result.errors) : "-", how});
    }
    std::printf("%s", columns(rows, {false, true, true, true, true, false}).c_str());
  }

  // What it comes to in the end.
  void judge() const {
    if (interrupted())
      throw PartlyDone("interrupted; the files of " + std::to_string(count(State::done)) + " of " +
                       counted(scenes_.size(), "scene") + " were written");
    const std::size_t failed = count(State::failed), open = count(State::open);
    if (failed == 0) return;
    const std::string text = std::to_string(failed) + " of " + counted(scenes_.size(), "scene") + " failed" +
                             (open == 0 ? ""
                                        : ", and " + std::to_string(open) + " " + (open == 1 ? "was" : "were") +
                                              " not done; --keep-going goes on after a failure");
    if (worst_ == kUsage && !options_.keep_going) throw UsageError(text);
    throw Failure(text);
  }

  const std::string command_;
  const std::vector<std::string> words_;
  const std::vector<BatchScene>& scenes_;
  const BatchOptions& options_;
  Terminal& terminal_;
  std::vector<Result> results_;
  std::vector<Running> running_;
  std::size_t next_ = 0;
  bool stopping_ = false;
  int worst_ = 0;
};

}  // namespace

void add_batch_options(CLI::App& command, BatchOptions& options) {
  add_integer(command, "--jobs", options.jobs, 1, 1024, "How many scenes are worked on at a time (default: 1)");
  command.add_flag("--keep-going", options.keep_going, "Do the other scenes when one fails");
  command.add_flag("--skip-existing", options.skip_existing, "Leave out scenes whose files all exist");
}

std::vector<BatchScene> batch_of(const std::vector<std::string>& scenes, const std::vector<std::string>& outputs) {
  std::vector<BatchScene> batch;
  std::unordered_map<std::string, std::string> writers;  // the scene that writes a file
  for (const std::string& scene : scenes) {
    batch.push_back({scene, {}});
    for (const std::string& output : outputs) {
      if (scenes.size() > 1 && !names_scene(output))
        throw UsageError("--out " + output + ": would be the file of " + std::to_string(scenes.size()) +
                         " scenes; put {stem} into its name, which stands for the scene's");
      const std::string file = fill_in(output, scene);
      if (OutputFile::means_stdout(file))
        throw UsageError("--out " + file + ": standard output cannot take several scenes; name a file with {stem}");
      std::error_code ignored;
      const auto [at, alone] = writers.emplace(fs::weakly_canonical(file, ignored).string(), scene);
      if (!alone)
        throw UsageError("--out " + output + ": " + at->second + " and " + scene + " would both be written to " + file +
                         "; do them in separate calls, or tell their files apart by {name}");
      batch.back().outputs.push_back(file);
    }
  }
  return batch;
}

void run_batch(const CLI::App& command, const std::vector<BatchScene>& scenes, const BatchOptions& options,
               Terminal& terminal) {
  Batch(command, scenes, options, terminal).run();
}

}  // namespace vantorelix::cli
