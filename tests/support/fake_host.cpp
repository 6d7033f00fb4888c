#include "tests/support/fake_host.h"

#include <algorithm>
#include <utility>

#include "host/error.h"

namespace vantorelix::support {

namespace {

std::string last_component(const std::string& path) { return path.substr(path.rfind('|') + 1); }
std::string parent_path(const std::string& path) { return path.substr(0, path.rfind('|')); }
bool is_below(const std::string& path, const std::string& root) {
  return path.size() > root.size() && path.compare(0, root.size() + 1, root + "|") == 0;
}
// "wrist" and "arm|wrist" name "|arm|wrist"; a name that begins with "|" is the full path.
bool names(const std::string& name, const std::string& path) {
  if (name.empty()) return false;
  const std::string tail = name[0] == '|' ? name : "|" + name;
  if (name[0] == '|' || tail.size() > path.size()) return tail == path;
  return path.compare(path.size() - tail.size(), tail.size(), tail) == 0;
}

[[noreturn]] void no_object(const std::string& name) {
  throw host::Error("No object matches name: " + name, host::ErrorKind::value);
}

class FakeArray : public host::VectorArray {
 public:
  explicit FakeArray(Vectors values) : values_(std::move(values)) {}
  FakeArray() : own_(std::make_shared<std::vector<Vector>>()), values_(own_) {}
  void append(const Vector& v) override {
    if (!own_) throw host::Error("a shared array cannot grow");
    own_->push_back(v);
  }
  const Vectors& values() const { return values_; }

 private:
  std::shared_ptr<std::vector<Vector>> own_;
  Vectors values_;
};

class FakeModule : public host::Module {
 public:
  using Functions = std::map<std::string, std::function<void()>>;
  FakeModule(std::string name, Functions functions) : name_(std::move(name)), functions_(std::move(functions)) {}
  bool has_attribute(const std::string& name) override { return functions_.count(name) != 0; }
  void call(const std::string& name) override {
    if (!has_attribute(name))
      throw host::Error("module '" + name_ + "' has no attribute '" + name + "'", host::ErrorKind::attribute);
    functions_.at(name)();
  }

 private:
  std::string name_;
  Functions functions_;
};

}  // namespace

// Holds the node by path: a plug of a node that has gone throws.
class FakeHost::FakePlug : public host::Plug {
 public:
  FakePlug(FakeHost& fake, std::string path, std::string attribute)
      : fake_(fake), path_(std::move(path)), attribute_(std::move(attribute)) {}

  std::shared_ptr<host::Plug> elementByLogicalIndex(unsigned) override {
    return std::make_shared<FakePlug>(fake_, path_, attribute_);
  }
  Vector translation_at(double t, const host::TimeUnit& unit) override {
    if (!(unit == fake_.ui_unit)) throw host::Error("not the unit that was handed out");
    const Vector exact = fake_.position(fake_.node(path_), t);
    const Vector& offset = fake_.context_offset;
    return {exact.x + offset.x, exact.y + offset.y, exact.z + offset.z};
  }
  void expect(std::span<const double> times, const host::TimeUnit& unit) override {
    if (!(unit == fake_.ui_unit)) throw host::Error("not the unit that was handed out");
    fake_.hints.push_back({{times.begin(), times.end()}, fake_.evaluations});
  }
  void set_vector_array(const std::shared_ptr<host::VectorArray>& array) override {
    fake_.refuse(path_, attribute_);
    fake_.node(path_).arrays[attribute_] = dynamic_cast<const FakeArray&>(*array).values();
  }

 private:
  FakeHost& fake_;
  std::string path_;
  std::string attribute_;
};

FakeHost::FakeHost() {
  motion = [](const std::string&, double t) { return Vector{t, 0.0, 0.0}; };
  on_load_plugin = [](const std::string& path) {
    throw host::Error("Plug-in, \"" + path + "\", was not found on MAYA_PLUG_IN_PATH.");
  };
}

// --- scene -----------------------------------------------------------------------------------------------------

FakeHost::Node& FakeHost::add(const std::string& path, const std::string& type) {
  const std::string full = path[0] == '|' ? path : "|" + path;
  const std::string above = parent_path(full);
  if (!above.empty() && !find(above)) add(above);
  nodes.push_back({full, type});
  return nodes.back();
}

FakeHost::Node* FakeHost::find(const std::string& name) {
  Node* found = nullptr;
  for (Node& candidate : nodes) {
    if (!names(name, candidate.path)) continue;
    if (found) throw host::Error("More than one object matches name: " + name, host::ErrorKind::value);
    found = &candidate;
  }
  return found;
}

FakeHost::Node& FakeHost::node(const std::string& name) {
  Node* found = find(name);
  if (!found) no_object(name);
  return *found;
}

void FakeHost::remove(const std::string& name) {
  const std::string path = node(name).path;
  nodes.remove_if([&](const Node& n) { return n.path == path || is_below(n.path, path); });
}

Vector FakeHost::position(const Node& n, double t) {
  ++evaluations;
  now += advance_per_evaluation;
  if (on_evaluation) on_evaluation();
  return n.motion ? n.motion(t) : motion(n.path, t);
}

void FakeHost::refuse(const std::string& path, const std::string& attribute) {
  const bool named = std::any_of(refused.begin(), refused.end(), [&](const std::string& entry) {
    const auto dot = entry.rfind('.');
    if (dot == std::string::npos) return entry == attribute;
    return entry.substr(dot + 1) == attribute && names(entry.substr(0, dot), path);
  });
  if (named) throw host::Error("The attribute '" + last_component(path) + "." + attribute + "' is refused.");
}

std::string FakeHost::shortest_name(const Node& n) const {
  for (auto bar = n.path.rfind('|'); bar != 0; bar = n.path.rfind('|', bar - 1)) {
    const std::string name = n.path.substr(bar + 1);
    const auto matches = [&](const Node& other) { return names(name, other.path); };
    if (std::count_if(nodes.begin(), nodes.end(), matches) == 1) return name;
  }
  const std::string top = n.path.substr(1);
  const auto matches = [&](const Node& other) { return names(top, other.path); };
  return std::count_if(nodes.begin(), nodes.end(), matches) == 1 ? top : n.path;
}

std::string FakeHost::free_path(const std::string& path) const {
  const auto taken = [&](const std::string& p) {
    return std::any_of(nodes.begin(), nodes.end(), [&](const Node& n) { return n.path == p; });
  };
  std::string result = path;
  for (int i = 1; taken(result); ++i) result = path + std::to_string(i);
  return result;
}

void FakeHost::move(Node& n, const std::string& path) {
  const std::string old = n.path;
  const std::string target = old == path ? path : free_path(path);
  for (Node& each : nodes)
    if (is_below(each.path, old)) each.path = target + each.path.substr(old.size());
  n.path = target;
}

std::vector<std::string> FakeHost::ls_selection() {
  std::vector<std::string> result;
  for (const std::string& name : selection)
    if (const Node* n = find(name)) result.push_back(n->path);
  return result;
}

std::vector<std::string> FakeHost::ls_type(const std::string& type) {
  std::vector<std::string> result;
  for (const Node& n : nodes)
    if (n.type == type) result.push_back(shortest_name(n));
  return result;
}

bool FakeHost::objExists(const std::string& name) {
  return std::any_of(nodes.begin(), nodes.end(), [&](const Node& n) { return names(name, n.path); });
}

std::vector<std::string> FakeHost::listRelatives_parent(const std::string& name) {
  const std::string above = parent_path(node(name).path);
  return above.empty() ? std::vector<std::string>{} : std::vector<std::string>{above};
}

std::vector<std::string> FakeHost::listRelatives_shapes(const std::string& name) {
  const std::string path = node(name).path;
  std::vector<std::string> result;
  for (const Node& n : nodes)
    if (parent_path(n.path) == path && n.type != "transform") result.push_back(n.path);
  return result;
}

void FakeHost::select_replace(const std::vector<std::string>& names_) {
  for (const std::string& name : names_) node(name);
  selection = names_;
}
void FakeHost::select(const std::vector<std::string>& names_) { select_replace(names_); }
void FakeHost::select_clear() { selection.clear(); }

std::string FakeHost::createNode(const std::string& type, const std::string& name) {
  if (node_types.count(type) == 0) throw host::Error("Unknown object type: " + type);
  if (type == "transform") return shortest_name(add(free_path("|" + name)));
  const std::string suffix = "Shape";
  const bool has_suffix = name.size() > suffix.size() && name.substr(name.size() - suffix.size()) == suffix;
  const std::string transform = has_suffix ? name.substr(0, name.size() - suffix.size()) : "transform1";
  const std::string above = add(free_path("|" + transform)).path;
  return shortest_name(add(above + "|" + name, type));
}

std::string FakeHost::rename(const std::string& name, const std::string& new_name) {
  Node& n = node(name);
  move(n, parent_path(n.path) + "|" + new_name);
  return shortest_name(n);
}

void FakeHost::parent(const std::string& name, const std::string& parent_name) {
  Node& n = node(name);
  move(n, node(parent_name).path + "|" + last_component(n.path));
}

void FakeHost::group_empty(const std::string& name) { add(free_path("|" + name)); }
void FakeHost::delete_(const std::string& name) { remove(name); }

std::string FakeHost::curve(const host::Value& degree, const std::vector<Vector>& points, const std::string& name) {
  const std::string path = add(free_path("|" + name)).path;
  add(path + "|" + last_component(path) + "Shape", "nurbsCurve");
  curves.push_back({last_component(path), degree, points});
  return shortest_name(node(path));
}

// --- attributes ------------------------------------------------------------------------------------------------

std::array<double, 16> FakeHost::getAttr_matrix(const std::string& attribute, double t) {
  const std::string name = attribute.substr(0, attribute.rfind(".worldMatrix[0]"));
  if (name == attribute) no_object(attribute);
  const Vector p = position(node(name), t);
  return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, p.x, p.y, p.z, 1};
}

void FakeHost::setAttr(const std::string& attribute, const host::Value& value) {
  const auto dot = attribute.rfind('.');
  Node* n = find(attribute.substr(0, dot));
  if (!n) no_object(attribute);
  refuse(n->path, attribute.substr(dot + 1));
  n->attributes[attribute.substr(dot + 1)] = value;
}

std::vector<double> FakeHost::keyframe_times(const std::string& name) { return node(name).keys; }
double FakeHost::playbackOptions_min() { return range_first; }
double FakeHost::playbackOptions_max() { return range_last; }
double FakeHost::currentTime() { return current_frame; }

std::shared_ptr<host::Plug> FakeHost::findPlug(const std::string& name, const std::string& attribute) {
  const Node* n = find(name);
  if (!n) throw host::Error("(kInvalidParameter): Object does not exist");
  refuse(n->path, attribute);
  return std::make_shared<FakePlug>(*this, n->path, attribute);
}

host::TimeUnit FakeHost::uiUnit() { return ui_unit; }

std::shared_ptr<host::VectorArray> FakeHost::vector_array(const Vectors& values) {
  if (!converts_sequences) throw host::Error("this sequence cannot be converted", host::ErrorKind::type);
  return std::make_shared<FakeArray>(values);
}
std::shared_ptr<host::VectorArray> FakeHost::vector_array() { return std::make_shared<FakeArray>(); }

// --- deferred calls, messages, session -------------------------------------------------------------------------

void FakeHost::evalDeferred(const host::Callback& function) { deferred.push_back(function); }

bool FakeHost::run_deferred() {
  if (deferred.empty()) return false;
  const host::Callback next = deferred.front();
  deferred.pop_front();
  next.function();
  return true;
}

std::size_t FakeHost::run_all_deferred(std::size_t limit) {
  std::size_t ran = 0;
  while (ran < limit && run_deferred()) ++ran;
  return ran;
}

double FakeHost::time() {
  const double read = now;
  now += advance_per_reading;
  return read;
}

void FakeHost::refresh() { ++refreshes; }
void FakeHost::inViewMessage(const host::Value& text) { messages.push_back(text); }
void FakeHost::warning(const std::string& text) { warnings.push_back(text); }
void FakeHost::print(const std::string& line) { prints.push_back(line); }
bool FakeHost::isReadingFile() { return reading; }
bool FakeHost::isWritingFile() { return writing; }
bool FakeHost::isOpeningFile() { return opening; }
bool FakeHost::isNewingFile() { return newing; }
bool FakeHost::isPlaying() { return playing; }
bool FakeHost::about_batch() { return batch; }
std::string FakeHost::about_version() { return version; }
std::string FakeHost::internalVar_userAppDir() { return user_app_dir; }

std::vector<std::string> FakeHost::getPanel_model() {
  std::vector<std::string> result;
  for (const Panel& p : panels) result.push_back(p.name);
  return result;
}

FakeHost::Panel& FakeHost::panel(const std::string& name) {
  const auto found = std::find_if(panels.begin(), panels.end(), [&](const Panel& p) { return p.name == name; });
  if (found == panels.end()) throw host::Error("modelEditor: Object '" + name + "' not found.");
  return *found;
}
bool FakeHost::modelEditor_query(const std::string& name, const std::string& flag) { return panel(name).flags[flag]; }
void FakeHost::modelEditor_enable(const std::string& name, const std::string& flag) { panel(name).flags[flag] = true; }

// --- callbacks -------------------------------------------------------------------------------------------------

host::Value FakeHost::subscribe(const std::string& kind, const host::Callback& function) {
  subscriptions.insert({next_identifier_, {kind, function}});
  return next_identifier_++;
}
host::Value FakeHost::addAnimCurveEditedCallback(const host::Callback& function) {
  return subscribe("curve", function);
}
host::Value FakeHost::addAnimKeyframeEditedCallback(const host::Callback& function) {
  return subscribe("key", function);
}
host::Value FakeHost::addNodeRemovedCallback(const host::Callback& function, const std::string& type) {
  return subscribe("removed:" + type, function);
}
void FakeHost::removeCallback(const host::Value& identifier) {
  if (!identifier.as_int() || subscriptions.erase(*identifier.as_int()) == 0)
    throw host::Error("no callback " + identifier.repr());
}

void FakeHost::fire(const std::string& kind) {
  const auto all = subscriptions;  // a subscriber may remove itself
  for (const auto& [identifier, subscription] : all)
    if (subscription.kind == kind) subscription.function.function();
}

// --- settings, plug-ins, modules -------------------------------------------------------------------------------

bool FakeHost::optionVar_exists(const std::string& name) { return options.count(name) != 0; }
host::Value FakeHost::optionVar_query(const std::string& name) {
  const auto found = options.find(name);
  return found == options.end() ? host::Value(0) : found->second;
}
void FakeHost::optionVar_set_int(const std::string& name, std::int64_t value) { options[name] = value; }
void FakeHost::optionVar_set_float(const std::string& name, double value) { options[name] = value; }
void FakeHost::optionVar_append_string(const std::string& name, const std::string& value) {
  const auto found = options.find(name);
  std::vector<host::Value> items;
  if (found != options.end() && found->second.as_list()) items = **found->second.as_list();
  if (found != options.end() && found->second.as_text()) items = {found->second};
  items.emplace_back(value);
  options[name] = host::Value::list(std::move(items));
}

bool FakeHost::pluginInfo_loaded(const std::string& name) { return loaded_plugins.count(name) != 0; }
void FakeHost::loadPlugin(const std::string& path) { on_load_plugin(path); }

std::shared_ptr<host::Module> FakeHost::import_module(const std::string& name) {
  const auto found = modules.find(name);
  if (found == modules.end()) throw host::Error("No module named '" + name + "'", host::ErrorKind::import);
  return std::make_shared<FakeModule>(name, found->second);
}

void FakeHost::call_imported(const std::string& module, const std::string& name) {
  const auto imported = import_module(module);
  if (!imported->has_attribute(name))
    throw host::Error("cannot import name '" + name + "' from '" + module + "'", host::ErrorKind::import);
  imported->call(name);
}

std::string FakeHost::module_file() { return file; }
std::vector<host::Value> FakeHost::module_search_path() { return search_path; }
std::optional<std::string> FakeHost::environment(const std::string& name) {
  const auto found = environment_variables.find(name);
  return found == environment_variables.end() ? std::nullopt : std::make_optional(found->second);
}
void FakeHost::set_environment(const std::string& name, const std::string& value) {
  environment_variables[name] = value;
}

}  // namespace vantorelix::support
