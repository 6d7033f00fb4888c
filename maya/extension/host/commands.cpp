#include "maya/extension/host/commands.h"

#include "maya/extension/host/handles.h"

namespace vantorelix::maya {

namespace {

// cmds.F(positional..., K=keyword...)
template <Text F, Text... K, class... A>
Ref command(const A&... arguments) {
  const Ref function = global_attribute<"cmds", F>();
  return call_with<K...>(function.get(), arguments...);
}

// modelEditor(panel, mode=True, flag=True)
Ref model_editor(const std::string& panel, const char* mode, const std::string& flag) {
  const Ref function = global_attribute<"cmds", "modelEditor">();
  const Ref keywords = tuple_of(mode, flag);
  const Ref first = object_of(panel);
  return call(function.get(), std::array{first.get(), Py_True, Py_True}.data(), 1, keywords.get());
}

}  // namespace

std::vector<std::string> Commands::ls_selection() { return texts_of(command<"ls", "sl", "long">(true, true).get()); }
std::vector<std::string> Commands::ls_type(const std::string& type) {
  return texts_of(command<"ls", "type">(type).get());
}
bool Commands::objExists(const std::string& name) { return truth(command<"objExists">(name).get()); }
std::vector<std::string> Commands::listRelatives_parent(const std::string& node) {
  return texts_of(command<"listRelatives", "parent", "fullPath">(node, true, true).get());
}
std::vector<std::string> Commands::listRelatives_shapes(const std::string& node) {
  return texts_of(command<"listRelatives", "s", "fullPath">(node, true, true).get());
}
void Commands::select_replace(const std::vector<std::string>& names) { command<"select", "replace">(names, true); }
void Commands::select(const std::vector<std::string>& names) { command<"select">(names); }
void Commands::select_clear() { command<"select", "clear">(true); }

std::string Commands::createNode(const std::string& type, const std::string& name) {
  return text_of(command<"createNode", "name">(type, name).get());
}
std::string Commands::rename(const std::string& node, const std::string& name) {
  return text_of(command<"rename">(node, name).get());
}
void Commands::parent(const std::string& node, const std::string& parent) { command<"parent">(node, parent); }
void Commands::group_empty(const std::string& name) { command<"group", "em", "name">(true, name); }
void Commands::delete_(const std::string& node) { command<"delete">(node); }
std::string Commands::curve(const host::Value& degree, const std::vector<Vector>& points, const std::string& name) {
  return text_of(command<"curve", "d", "p", "name">(degree, points, name).get());
}

std::array<double, 16> Commands::getAttr_matrix(const std::string& attribute, double time) {
  const Ref matrix = command<"getAttr", "time">(attribute, time);
  std::array<double, 16> elements{};
  for (const std::size_t i : {12, 13, 14})  // the translation: all that anybody reads
    elements[i] = number_of(checked(PyObject_GetItem(matrix.get(), object_of(i).get())).get());
  return elements;
}
void Commands::setAttr(const std::string& attribute, const host::Value& value) { command<"setAttr">(attribute, value); }
std::vector<double> Commands::keyframe_times(const std::string& node) {
  const Ref times = command<"keyframe", "q", "timeChange">(node, true, true);
  return truth(times.get()) ? numbers_of(times.get()) : std::vector<double>{};
}
double Commands::playbackOptions_min() { return number_of(command<"playbackOptions", "q", "min">(true, true).get()); }
double Commands::playbackOptions_max() { return number_of(command<"playbackOptions", "q", "max">(true, true).get()); }
double Commands::currentTime() { return number_of(command<"currentTime", "q">(true).get()); }

void Commands::evalDeferred(const host::Callback& function) {
  command<"evalDeferred", "lowestPriority">(global(object_of(function.name).get()), true);
}
void Commands::refresh() { command<"refresh">(); }
void Commands::inViewMessage(const host::Value& text) {
  command<"inViewMessage", "amg", "pos", "fade", "alpha">(text, "midCenter", true, 0.9);
}
void Commands::warning(const std::string& text) { command<"warning">(text); }
std::vector<std::string> Commands::getPanel_model() {
  return texts_of(command<"getPanel", "type">("modelPanel").get());
}
bool Commands::modelEditor_query(const std::string& panel, const std::string& flag) {
  return truth(model_editor(panel, "q", flag).get());
}
void Commands::modelEditor_enable(const std::string& panel, const std::string& flag) { model_editor(panel, "e", flag); }

bool Commands::optionVar_exists(const std::string& name) { return truth(command<"optionVar", "exists">(name).get()); }
host::Value Commands::optionVar_query(const std::string& name) {
  return value_of(command<"optionVar", "q">(name).get());
}
void Commands::optionVar_set_int(const std::string& name, std::int64_t value) {
  command<"optionVar", "iv">(tuple_of(name, value));
}
void Commands::optionVar_set_float(const std::string& name, double value) {
  command<"optionVar", "fv">(tuple_of(name, value));
}
void Commands::optionVar_append_string(const std::string& name, const std::string& value) {
  command<"optionVar", "stringValueAppend">(tuple_of(name, value));
}

bool Commands::about_batch() { return truth(command<"about", "batch">(true).get()); }
std::string Commands::about_version() {
  const Ref version = command<"about", "version">(true);
  return truth(version.get()) ? text_of(checked(PyObject_Str(version.get())).get()) : std::string();
}
std::string Commands::internalVar_userAppDir() {
  const Ref folder = command<"internalVar", "userAppDir">(true);
  return truth(folder.get()) ? text_of(folder.get()) : std::string();
}
bool Commands::pluginInfo_loaded(const std::string& name) {
  return truth(command<"pluginInfo", "q", "loaded">(name, true, true).get());
}
void Commands::loadPlugin(const std::string& path) { command<"loadPlugin", "quiet">(path, true); }

}  // namespace vantorelix::maya
