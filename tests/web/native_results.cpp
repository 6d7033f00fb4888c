// Does to a scene what web/tests has done to it in the engine as WebAssembly, and writes down all that came of it.
//
//   native_results SCENE TAKE COMMANDS OUT
//
// A line of COMMANDS is a function of the C interface and what it is given, with tabs between; web/tests/commands.ts
// lists them. OUT has a record for each result: a line with its name and its size, then so many bytes. A call that
// fails leaves a record with its error, and the rest goes on.
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "api/c_api.h"

namespace {

using Words = std::vector<std::string>;

constexpr double kOwn = std::numeric_limits<double>::quiet_NaN();  // the scene's own end
// Of every object, two samples a frame, coloured by spacing.
constexpr VlxRequest kEverything = {nullptr, 0, nullptr, 0, 0, 1, 2, 1, kOwn, kOwn};

class Results {
 public:
  explicit Results(const char* path) : out_(path, std::ios::binary) {}

  void add(const std::string& name, std::string_view bytes) {
    out_ << name << '\t' << bytes.size() << '\n';
    out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  void add(const std::string& name, const double* numbers, std::size_t count) {
    add(name, {reinterpret_cast<const char*>(numbers), count * sizeof(double)});
  }
  void add(const std::string& name, const VlxArray& array) { add(name, array.data, array.count); }
  // What a call said of itself: nothing where it did its work.
  bool did(const std::string& name, int failed) {
    if (failed == 0) return true;
    VlxError error{};
    vlx_error(&error);
    add(name + " fails", std::string(error.kind) + '\n' + error.text + '\n' + std::to_string(error.line));
    return false;
  }

 private:
  std::ofstream out_;
};

double number(const std::string& word) { return std::strtod(word.c_str(), nullptr); }

std::vector<double> numbers(const Words& words, std::size_t from) {
  std::vector<double> found;
  for (std::size_t i = from; i < words.size(); ++i) found.push_back(number(words[i]));
  return found;
}

class Exam {
 public:
  Exam(VlxScene* scene, VlxTrailSet* set, std::size_t trails, Results& results)
      : scene_(scene), set_(set), trails_(trails), results_(results) {}

  void run(const std::string& label, const Words& words) {
    const auto command = commands_.find(words.at(0));
    if (command == commands_.end()) throw std::runtime_error("there is no command " + words[0]);
    command->second(label, words);
  }

 private:
  using Text = int (*)(VlxScene*, const char**);

  void text(const std::string& name, Text call) {
    const char* json = nullptr;
    if (results_.did(name, call(scene_, &json))) results_.add(name, json);
  }

  void write_trails(const std::string& label) {
    for (std::size_t i = 0; i < trails_; ++i) {
      const std::string name = label + " trail " + std::to_string(i) + " ";
      VlxTrailArrays arrays{};
      std::size_t revision = 0;
      if (!results_.did(name, vlx_trail_now(set_, i, &arrays, &revision))) continue;
      results_.add(name + "points", arrays.points);
      results_.add(name + "colors", arrays.colors);
      results_.add(name + "keyPoints", arrays.key_points);
      results_.add(name + "keyColors", arrays.key_colors);
      results_.add(name + "keyTimes", arrays.key_times);
    }
  }

  void write_matrices(const std::string& label, const Words& words) {
    const std::vector<double> frames = numbers(words, 2);
    std::vector<double> matrices(16 * frames.size());
    const auto call = words[0] == "above" ? vlx_matrices_above : vlx_world_matrices;
    if (results_.did(label, call(scene_, words.at(1).c_str(), frames.data(), frames.size(), matrices.data())))
      results_.add(label, matrices.data(), matrices.size());
  }

  void write_statics(const std::string& label, const Words& words) {
    const char* json = nullptr;
    if (results_.did(label, vlx_statics(scene_, number(words.at(1)), &json))) results_.add(label, json);
  }

  void write_values(const std::string& label, const Words& words) {
    const std::vector<double> frames = numbers(words, 3);
    std::vector<double> values(frames.size());
    if (results_.did(label, vlx_channel_values(scene_, words.at(1).c_str(), words.at(2).c_str(), frames.data(),
                                               frames.size(), values.data())))
      results_.add(label, values.data(), values.size());
  }

  void write_keys(const std::string& label, const Words& words) {
    VlxArray array{};
    const char* const object = words.at(1).c_str();
    const int failed =
        words.size() > 2 ? vlx_keys(scene_, object, words[2].c_str(), &array) : vlx_key_times(scene_, object, &array);
    if (results_.did(label, failed)) results_.add(label, array);
  }

  void write_curves(const std::string& label, const Words& words) {
    const char* json = nullptr;
    if (results_.did(label, vlx_curves(scene_, words.at(1).c_str(), &json))) results_.add(label, json);
  }

  void edit(const std::string& label, const Words& words) {
    const char* const object = words.at(1).c_str();
    const char* const attribute = words.at(2).c_str();
    const std::vector<double> given = numbers(words, 3);
    const std::string& what = words[0];
    results_.did(label, what == "set"    ? vlx_set_key(scene_, object, attribute, given.at(0), given.at(1))
                        : what == "move" ? vlx_move_key(scene_, object, attribute, given.at(0), given.at(1))
                        : what == "put"  ? vlx_put_key(scene_, object, attribute, given.data())
                                         : vlx_remove_key(scene_, object, attribute, given.at(0)));
  }

  void place(const std::string& label, const Words& words) {
    const std::vector<double> given = numbers(words, 2);
    results_.did(label, vlx_place_key(scene_, words.at(1).c_str(), given.at(0), &given.at(1)));
  }

  void slide(const std::string& label, const Words& words) {
    const std::vector<double> given = numbers(words, 2);
    results_.did(label, vlx_slide_bead(scene_, words.at(1).c_str(), given.at(0), given.at(1), given.at(2) != 0.0,
                                       given.at(3) != 0.0));
  }

  // Edits of keys at a frame, of all channels where none is named.
  void edit_keys(const std::string& label, const Words& words) {
    const char* const object = words.at(1).c_str();
    const char* const attribute = words.at(2).c_str();
    const std::vector<double> given = numbers(words, 3);
    const std::string& what = words[0];
    results_.did(label, what == "moveKeys"     ? vlx_move_keys(scene_, object, attribute, given.at(0), given.at(1))
                        : what == "insertKeys" ? vlx_insert_keys(scene_, object, attribute, given.at(0))
                        : what == "removeKeys" ? vlx_remove_keys(scene_, object, attribute, given.at(0))
                        : what == "setTangent"
                            ? vlx_set_tangent(scene_, object, attribute, given.at(0), given.at(3) != 0.0, given.at(1),
                                              given.at(2), given.at(4) != 0.0)
                            : vlx_set_weighted(scene_, object, attribute, given.at(0) != 0.0));
  }

  void write_tangents(const std::string& label, const Words& words) {
    VlxArray array{};
    if (results_.did(label, vlx_tangents(scene_, words.at(1).c_str(), words.at(2).c_str(), &array)))
      results_.add(label, array);
  }

  // Whether an object can be put elsewhere, or slide, at a frame.
  void write_possible(const std::string& label, const Words& words,
                      int (*call)(VlxScene*, const char*, double, const char**)) {
    const char* json = nullptr;
    if (results_.did(label, call(scene_, words.at(1).c_str(), number(words.at(2)), &json))) results_.add(label, json);
  }

  void write_provisional(const std::string& label, const Words& words) {
    const VlxStretch* stretches = nullptr;
    std::size_t count = 0;
    const std::vector<double> ends = numbers(words, 2);
    if (!results_.did(label,
                      vlx_provisional(scene_, set_, words.at(1).c_str(), ends.at(0), ends.at(1), &stretches, &count)))
      return;
    for (std::size_t i = 0; i < count; ++i)
      results_.add(
          label + " trail " + std::to_string(stretches[i].trail) + " from " + std::to_string(stretches[i].first),
          stretches[i].points);
  }

  // All animation in a form, and what that does not hold.
  void write_file(const std::string& label, const Words& words) {
    VlxWritten written{};
    if (!results_.did(label, vlx_written(scene_, words.at(1).c_str(), nullptr, 0, &written))) return;
    results_.add(label, std::string_view(written.bytes, written.size));
    results_.add(label + " lost", written.lost);
  }

  // Until the trails are exact, or nothing goes on.
  void pump(const std::string& label) {
    VlxProgress progress{};
    do {
      if (!results_.did(label, vlx_pump(scene_, 0.001, &progress))) return;
    } while (progress.pending != 0);
  }

  // The trails of all objects made anew, with so many samples a frame, so often: the seconds that each time takes.
  void time(const std::string& label, const Words& words) {
    std::vector<double> seconds;
    for (int turn = 0; turn < number(words.at(2)); ++turn) {
      VlxRequest request = kEverything;
      request.samples_per_frame = static_cast<std::int64_t>(number(words.at(1)));
      VlxTrailSet* made = nullptr;
      std::size_t count = 0;
      const auto begin = std::chrono::steady_clock::now();
      if (!results_.did(label, vlx_trails(scene_, &request, &made, &count))) return;
      seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
      vlx_let_go(scene_, made);
    }
    results_.add(label, seconds.data(), seconds.size());
  }

  VlxScene* scene_;
  VlxTrailSet* set_;
  std::size_t trails_;
  Results& results_;
  const std::map<std::string, std::function<void(const std::string&, const Words&)>> commands_ = {
      {"description", [this](const std::string& label, const Words&) { text(label, vlx_description); }},
      {"objects", [this](const std::string& label, const Words&) { text(label, vlx_objects); }},
      {"cameras", [this](const std::string& label, const Words&) { text(label, vlx_cameras); }},
      {"history", [this](const std::string& label, const Words&) { text(label, vlx_history); }},
      {"trails", [this](const std::string& label, const Words&) { write_trails(label); }},
      {"matrices", [this](const std::string& label, const Words& words) { write_matrices(label, words); }},
      {"above", [this](const std::string& label, const Words& words) { write_matrices(label, words); }},
      {"statics", [this](const std::string& label, const Words& words) { write_statics(label, words); }},
      {"values", [this](const std::string& label, const Words& words) { write_values(label, words); }},
      {"keys", [this](const std::string& label, const Words& words) { write_keys(label, words); }},
      {"curves", [this](const std::string& label, const Words& words) { write_curves(label, words); }},
      {"set", [this](const std::string& label, const Words& words) { edit(label, words); }},
      {"move", [this](const std::string& label, const Words& words) { edit(label, words); }},
      {"put", [this](const std::string& label, const Words& words) { edit(label, words); }},
      {"remove", [this](const std::string& label, const Words& words) { edit(label, words); }},
      {"place", [this](const std::string& label, const Words& words) { place(label, words); }},
      {"slide", [this](const std::string& label, const Words& words) { slide(label, words); }},
      {"moveKeys", [this](const std::string& label, const Words& words) { edit_keys(label, words); }},
      {"insertKeys", [this](const std::string& label, const Words& words) { edit_keys(label, words); }},
      {"removeKeys", [this](const std::string& label, const Words& words) { edit_keys(label, words); }},
      {"setTangent", [this](const std::string& label, const Words& words) { edit_keys(label, words); }},
      {"setWeighted", [this](const std::string& label, const Words& words) { edit_keys(label, words); }},
      {"tangents", [this](const std::string& label, const Words& words) { write_tangents(label, words); }},
      {"placing", [this](const std::string& label, const Words& words) { write_possible(label, words, vlx_placing); }},
      {"sliding", [this](const std::string& label, const Words& words) { write_possible(label, words, vlx_sliding); }},
      {"provisional", [this](const std::string& label, const Words& words) { write_provisional(label, words); }},
      {"written", [this](const std::string& label, const Words& words) { write_file(label, words); }},
      {"undo", [this](const std::string& label, const Words&) { results_.did(label, vlx_undo(scene_)); }},
      {"redo", [this](const std::string& label, const Words&) { results_.did(label, vlx_redo(scene_)); }},
      {"follow", [this](const std::string& label, const Words&) { results_.did(label, vlx_follow(scene_)); }},
      {"pump", [this](const std::string& label, const Words&) { pump(label); }},
      {"time", [this](const std::string& label, const Words& words) { time(label, words); }},
  };
};

Words split(const std::string& line) {
  Words words;
  std::istringstream in(line);
  for (std::string word; std::getline(in, word, '\t');) words.push_back(word);
  return words;
}

void examine(const char* file, const char* take, const char* commands, Results& results) {
  const VlxReading reading{take, "", "", 0.0, 1};
  VlxScene* scene = nullptr;
  if (!results.did("open", vlx_open(file, &reading, &scene))) return;
  vlx_keep_history(scene, 1);
  const VlxRequest request = kEverything;
  VlxTrailSet* set = nullptr;
  std::size_t trails = 0;
  if (results.did("make", vlx_trails(scene, &request, &set, &trails))) {
    Exam exam(scene, set, trails, results);
    std::ifstream in(commands);
    int row = 0;
    for (std::string line; std::getline(in, line);) {
      const Words words = split(line);
      exam.run(std::to_string(row++) + " " + words.at(0), words);
    }
  }
  vlx_close(scene);
}

}  // namespace

int main(int count, char** words) {
  if (count != 5) {
    std::cerr << "usage: native_results SCENE TAKE COMMANDS OUT\n";
    return 2;
  }
  Results results(words[4]);
  try {
    examine(words[1], words[2], words[3], results);
  } catch (const std::exception& error) {
    std::cerr << "native_results: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
