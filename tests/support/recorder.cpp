#include "tests/support/recorder.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tests/support/tape.h"

namespace vantorelix::support {

namespace {

// --- the four faces ------------------------------------------------------------------------------------------------

class Commands : public host::CommandLayer {
 public:
  Commands(Tape& tape, host::CommandLayer& inner) : tape_(tape), inner_(inner) {}

  std::vector<std::string> ls_selection() override {
    tape_.call("cmds.ls", kw("sl", true), kw("long", true));
    return inner_.ls_selection();
  }
  std::vector<std::string> ls_type(const std::string& type) override {
    tape_.call("cmds.ls", kw("type", type));
    return inner_.ls_type(type);
  }
  bool objExists(const std::string& name) override {
    tape_.call("cmds.objExists", name);
    return inner_.objExists(name);
  }
  std::vector<std::string> listRelatives_parent(const std::string& node) override {
    tape_.call("cmds.listRelatives", node, kw("parent", true), kw("fullPath", true));
    return inner_.listRelatives_parent(node);
  }
  std::vector<std::string> listRelatives_shapes(const std::string& node) override {
    tape_.call("cmds.listRelatives", node, kw("s", true), kw("fullPath", true));
    return inner_.listRelatives_shapes(node);
  }
  void select_replace(const std::vector<std::string>& names) override {
    tape_.call("cmds.select", names, kw("replace", true));
    inner_.select_replace(names);
  }
  void select(const std::vector<std::string>& names) override {
    tape_.call("cmds.select", names);
    inner_.select(names);
  }
  void select_clear() override {
    tape_.call("cmds.select", kw("clear", true));
    inner_.select_clear();
  }
  std::string createNode(const std::string& type, const std::string& name) override {
    tape_.call("cmds.createNode", type, kw("name", name));
    return inner_.createNode(type, name);
  }
  std::string rename(const std::string& node, const std::string& name) override {
    tape_.call("cmds.rename", node, name);
    return inner_.rename(node, name);
  }
  void parent(const std::string& node, const std::string& parent) override {
    tape_.call("cmds.parent", node, parent);
    inner_.parent(node, parent);
  }
  void group_empty(const std::string& name) override {
    tape_.call("cmds.group", kw("em", true), kw("name", name));
    inner_.group_empty(name);
  }
  void delete_(const std::string& node) override {
    tape_.call("cmds.delete", node);
    inner_.delete_(node);
  }
  std::string curve(const host::Value& degree, const std::vector<Vector>& points, const std::string& name) override {
    tape_.call("cmds.curve", kw("d", degree), kw("p", points.size()), kw("name", name));
    return inner_.curve(degree, points, name);
  }
  std::array<double, 16> getAttr_matrix(const std::string& attribute, double time) override {
    tape_.call("cmds.getAttr", attribute, kw("time", time));
    return inner_.getAttr_matrix(attribute, time);
  }
  void setAttr(const std::string& attribute, const host::Value& value) override {
    tape_.call("cmds.setAttr", attribute, value);
    inner_.setAttr(attribute, value);
  }
  std::vector<double> keyframe_times(const std::string& node) override {
    tape_.call("cmds.keyframe", node, kw("q", true), kw("timeChange", true));
    return inner_.keyframe_times(node);
  }
  double playbackOptions_min() override {
    tape_.call("cmds.playbackOptions", kw("q", true), kw("min", true));
    return inner_.playbackOptions_min();
  }
  double playbackOptions_max() override {
    tape_.call("cmds.playbackOptions", kw("q", true), kw("max", true));
    return inner_.playbackOptions_max();
  }
  double currentTime() override {
    tape_.call("cmds.currentTime", kw("q", true));
    return inner_.currentTime();
  }
  void evalDeferred(const host::Callback& function) override {
    tape_.call("cmds.evalDeferred", function, kw("lowestPriority", true));
    inner_.evalDeferred(function);
  }
  void refresh() override {
    tape_.call("cmds.refresh");
    inner_.refresh();
  }
  void inViewMessage(const host::Value& text) override {
    tape_.call("cmds.inViewMessage", kw("amg", text), kw("pos", "midCenter"), kw("fade", true), kw("alpha", 0.9));
    inner_.inViewMessage(text);
  }
  void warning(const std::string& text) override {
    tape_.call("cmds.warning", text);
    inner_.warning(text);
  }
  std::vector<std::string> getPanel_model() override {
    tape_.call("cmds.getPanel", kw("type", "modelPanel"));
    return inner_.getPanel_model();
  }
  bool modelEditor_query(const std::string& panel, const std::string& flag) override {
    tape_.call("cmds.modelEditor", panel, kw("q", true), kw(flag.c_str(), true));
    return inner_.modelEditor_query(panel, flag);
  }
  void modelEditor_enable(const std::string& panel, const std::string& flag) override {
    tape_.call("cmds.modelEditor", panel, kw("e", true), kw(flag.c_str(), true));
    inner_.modelEditor_enable(panel, flag);
  }
  bool optionVar_exists(const std::string& name) override {
    tape_.call("cmds.optionVar", kw("exists", name));
    return inner_.optionVar_exists(name);
  }
  host::Value optionVar_query(const std::string& name) override {
    tape_.call("cmds.optionVar", kw("q", name));
    return inner_.optionVar_query(name);
  }
  void optionVar_set_int(const std::string& name, std::int64_t value) override {
    tape_.call("cmds.optionVar", pair("iv", name, value));
    inner_.optionVar_set_int(name, value);
  }
  void optionVar_set_float(const std::string& name, double value) override {
    tape_.call("cmds.optionVar", pair("fv", name, value));
    inner_.optionVar_set_float(name, value);
  }
  void optionVar_append_string(const std::string& name, const std::string& value) override {
    tape_.call("cmds.optionVar", pair("stringValueAppend", name, value));
    inner_.optionVar_append_string(name, value);
  }
  bool about_batch() override {
    tape_.call("cmds.about", kw("batch", true));
    return inner_.about_batch();
  }
  std::string about_version() override {
    tape_.call("cmds.about", kw("version", true));
    return inner_.about_version();
  }
  std::string internalVar_userAppDir() override {
    tape_.call("cmds.internalVar", kw("userAppDir", true));
    return inner_.internalVar_userAppDir();
  }
  bool pluginInfo_loaded(const std::string& name) override {
    tape_.call("cmds.pluginInfo", name, kw("q", true), kw("loaded", true));
    return inner_.pluginInfo_loaded(name);
  }
  void loadPlugin(const std::string& path) override {
    tape_.call("cmds.loadPlugin", path, kw("quiet", true));
    inner_.loadPlugin(path);
  }

 private:
  Tape& tape_;
  host::CommandLayer& inner_;
};

class RecordedArray : public host::VectorArray {
 public:
  RecordedArray(Tape& tape, std::shared_ptr<host::VectorArray> inner, std::size_t size)
      : tape_(tape), inner_(std::move(inner)), size_(size) {}

  void append(const Vector& v) override {
    tape_.call("array.append", v);
    inner_->append(v);
    ++size_;
  }
  const std::shared_ptr<host::VectorArray>& inner() const { return inner_; }
  std::size_t size() const { return size_; }

 private:
  Tape& tape_;
  std::shared_ptr<host::VectorArray> inner_;
  std::size_t size_;
};

class RecordedPlug : public host::Plug {
 public:
  RecordedPlug(Tape& tape, std::shared_ptr<host::Plug> inner) : tape_(tape), inner_(std::move(inner)) {}

  std::shared_ptr<host::Plug> elementByLogicalIndex(unsigned index) override {
    tape_.call("plug.elementByLogicalIndex", static_cast<std::int64_t>(index));
    return std::make_shared<RecordedPlug>(tape_, inner_->elementByLogicalIndex(index));
  }
  Vector translation_at(double t, const host::TimeUnit& unit) override {
    tape_.call("plug.translation_at", t);
    return inner_->translation_at(t, unit);
  }
  // No call of the host's: passed on, and not recorded.
  void expect(std::span<const double> times, const host::TimeUnit& unit) override { inner_->expect(times, unit); }
  void set_vector_array(const std::shared_ptr<host::VectorArray>& array) override {
    const auto& recorded = dynamic_cast<const RecordedArray&>(*array);
    tape_.call("plug.setMObject", recorded.size());
    inner_->set_vector_array(recorded.inner());
  }

 private:
  Tape& tape_;
  std::shared_ptr<host::Plug> inner_;
};

class Objects : public host::ObjectModel {
 public:
  Objects(Tape& tape, host::ObjectModel& inner) : tape_(tape), inner_(inner) {}

  std::shared_ptr<host::Plug> findPlug(const std::string& node, const std::string& attribute) override {
    tape_.call("om.findPlug", node, attribute);
    return std::make_shared<RecordedPlug>(tape_, inner_.findPlug(node, attribute));
  }
  host::TimeUnit uiUnit() override {
    tape_.call("om.MTime.uiUnit");
    return inner_.uiUnit();
  }
  std::shared_ptr<host::VectorArray> vector_array(const Vectors& values) override {
    tape_.call("om.MVectorArray", values->size());
    return std::make_shared<RecordedArray>(tape_, inner_.vector_array(values), values->size());
  }
  std::shared_ptr<host::VectorArray> vector_array() override {
    tape_.call("om.MVectorArray");
    return std::make_shared<RecordedArray>(tape_, inner_.vector_array(), 0);
  }
  bool isReadingFile() override {
    tape_.call("om.MFileIO.isReadingFile");
    return inner_.isReadingFile();
  }
  bool isWritingFile() override {
    tape_.call("om.MFileIO.isWritingFile");
    return inner_.isWritingFile();
  }
  bool isOpeningFile() override {
    tape_.call("om.MFileIO.isOpeningFile");
    return inner_.isOpeningFile();
  }
  bool isNewingFile() override {
    tape_.call("om.MFileIO.isNewingFile");
    return inner_.isNewingFile();
  }
  host::Value addNodeRemovedCallback(const host::Callback& function, const std::string& type) override {
    tape_.call("om.MDGMessage.addNodeRemovedCallback", function, type);
    return inner_.addNodeRemovedCallback(function, type);
  }
  void removeCallback(const host::Value& identifier) override {
    tape_.call("om.MMessage.removeCallback", identifier);
    inner_.removeCallback(identifier);
  }

 private:
  Tape& tape_;
  host::ObjectModel& inner_;
};

class Animation : public host::AnimationModel {
 public:
  Animation(Tape& tape, host::AnimationModel& inner) : tape_(tape), inner_(inner) {}

  bool isPlaying() override {
    tape_.call("oma.MAnimControl.isPlaying");
    return inner_.isPlaying();
  }
  double currentTime() override {
    tape_.call("oma.MAnimControl.currentTime");
    return inner_.currentTime();
  }
  host::Value addAnimCurveEditedCallback(const host::Callback& function) override {
    tape_.call("oma.MAnimMessage.addAnimCurveEditedCallback", function);
    return inner_.addAnimCurveEditedCallback(function);
  }
  host::Value addAnimKeyframeEditedCallback(const host::Callback& function) override {
    tape_.call("oma.MAnimMessage.addAnimKeyframeEditedCallback", function);
    return inner_.addAnimKeyframeEditedCallback(function);
  }

 private:
  Tape& tape_;
  host::AnimationModel& inner_;
};

class RecordedModule : public host::Module {
 public:
  RecordedModule(Tape& tape, std::string name, std::shared_ptr<host::Module> inner)
      : tape_(tape), name_(std::move(name)), inner_(std::move(inner)) {}

  bool has_attribute(const std::string& name) override {
    tape_.call("hasattr", Plain{name_}, name);
    return inner_->has_attribute(name);
  }
  void call(const std::string& name) override {
    tape_.call(name_ + "." + name);
    inner_->call(name);
  }

 private:
  Tape& tape_;
  std::string name_;
  std::shared_ptr<host::Module> inner_;
};

class Services : public host::Interpreter {
 public:
  Services(Tape& tape, host::Interpreter& inner) : tape_(tape), inner_(inner) {}

  double time() override {
    tape_.call("time.time");
    return inner_.time();
  }
  void print(const std::string& line) override {
    tape_.call("print", line);
    inner_.print(line);
  }
  std::shared_ptr<host::Module> import_module(const std::string& name) override {
    tape_.statement("import " + name);
    return std::make_shared<RecordedModule>(tape_, name, inner_.import_module(name));
  }
  void call_imported(const std::string& module, const std::string& name) override {
    tape_.statement("from " + module + " import " + name + "; " + name + "()");
    inner_.call_imported(module, name);
  }
  std::string module_file() override {
    tape_.statement("__file__");
    return inner_.module_file();
  }
  std::vector<host::Value> module_search_path() override {
    tape_.statement("sys.path");
    return inner_.module_search_path();
  }
  std::optional<std::string> environment(const std::string& name) override {
    tape_.call("os.environ.get", name);
    return inner_.environment(name);
  }
  void set_environment(const std::string& name, const std::string& value) override {
    tape_.statement("os.environ[" + piece(name) + "] = " + piece(value));
    inner_.set_environment(name, value);
  }

 private:
  Tape& tape_;
  host::Interpreter& inner_;
};

}  // namespace

struct Recorder::Data {
  explicit Data(const Handles& host)
      : cmds(tape, *host.cmds), om(tape, *host.om), oma(tape, *host.oma), interpreter(tape, *host.interpreter) {}

  Tape tape;
  Commands cmds;
  Objects om;
  Animation oma;
  Services interpreter;
};

Recorder::Recorder(const Handles& host) : data_(std::make_unique<Data>(host)) {}
Recorder::~Recorder() = default;

Handles Recorder::handles() const { return {&data_->cmds, &data_->om, &data_->oma, &data_->interpreter}; }

std::vector<std::string> Recorder::log(const std::vector<std::string_view>& without) const {
  std::vector<std::string> lines;
  std::copy_if(data_->tape.lines.begin(), data_->tape.lines.end(), std::back_inserter(lines), [&](const auto& line) {
    return std::none_of(without.begin(), without.end(), [&](std::string_view text) { return begins_with(line, text); });
  });
  return lines;
}

std::size_t Recorder::count(std::string_view text) const {
  const auto& lines = data_->tape.lines;
  return static_cast<std::size_t>(
      std::count_if(lines.begin(), lines.end(), [&](const auto& line) { return begins_with(line, text); }));
}

std::size_t Recorder::call_count() const { return data_->tape.calls; }

void Recorder::clear() {
  data_->tape.lines.clear();
  data_->tape.calls = 0;
}

void Recorder::set_recording(bool on) { data_->tape.recording = on; }

void Recorder::fail_call(std::size_t k, Failure failure) { fail_line("", k, failure); }

void Recorder::fail_line(std::string text, std::size_t n, Failure failure) {
  data_->tape.rules.push_back({std::move(text), n, failure});
}

void Recorder::stop_failing() { data_->tape.rules.clear(); }

}  // namespace vantorelix::support
