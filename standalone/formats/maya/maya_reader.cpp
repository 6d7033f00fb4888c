// Maya ASCII scenes: everything but setAttr and connectAttr.
#include "standalone/formats/maya/maya_reader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "base/mathematics/mathematics.h"
#include "base/number.h"
#include "host/error.h"
#include "standalone/formats/maya/maya_units.h"

namespace vantorelix::standalone {
namespace {

constexpr std::size_t kMaxNodes = 4'000'000;
// Damaged files could make every statement a kind of its own.
constexpr std::size_t kMaxNotes = 200;

constexpr std::array<std::pair<std::string_view, CurveKind>, 4> kCurveTypes = {{{"animCurveTL", CurveKind::linear},
                                                                                {"animCurveTA", CurveKind::angular},
                                                                                {"animCurveTU", CurveKind::unitless},
                                                                                {"animCurveTT", CurveKind::time}}};

// Statements that place nothing and move nothing.
constexpr std::array<std::string_view, 14> kHarmless = {"requires",
                                                        "fileInfo",
                                                        "relationship",
                                                        "rename",
                                                        "workspace",
                                                        "dataStructure",
                                                        "namespace",
                                                        "applyMetadata",
                                                        "aliasAttr",
                                                        "editDisplayLayerGlobals",
                                                        "editRenderLayerGlobals",
                                                        "createDisplayLayer",
                                                        "lightlink",
                                                        "sets"};

bool is_switched_on(const std::string& word) { return word != "off" && word != "no" && word != "false" && word != "0"; }

}  // namespace

MayaReader::MayaReader(ByteSource& source, const ReadOptions& options, std::size_t window)
    : in_(source, options, window), words_(in_), bounds_(options.bounds), radians_(base::kDegree) {}

Scene MayaReader::read() {
  check_kind_of_file();
  while (words_.next_statement(word_)) {
    const std::string command = word_.text;
    try {
      read_statement(command);
    } catch (const host::Error& error) {
      note("'" + command + "' could not be carried out: " + error.what());
    }
  }
  finish();
  return std::move(scene_);
}

void MayaReader::check_kind_of_file() {
  in_.ready();
  const std::string_view start(in_.begin(), static_cast<std::size_t>(in_.end() - in_.begin()));
  written_by_maya_ = start.starts_with("//Maya ASCII");
  if (start.starts_with("FOR4") || start.starts_with("FOR8")) {
    in_.fail("this is a binary Maya scene under another name; save it as Maya ASCII");
  }
}

void MayaReader::read_statement(const std::string& command) {
  using Handler = void (MayaReader::*)();
  static constexpr std::array<std::pair<std::string_view, Handler>, 10> kHandlers = {
      {{"setAttr", &MayaReader::read_set_attr},
       {"createNode", &MayaReader::read_create_node},
       {"connectAttr", &MayaReader::read_connect},
       {"disconnectAttr", &MayaReader::read_disconnect},
       {"addAttr", &MayaReader::read_add_attribute},
       {"select", &MayaReader::read_select},
       {"parent", &MayaReader::read_parent},
       {"lockNode", &MayaReader::read_lock_node},
       {"currentUnit", &MayaReader::read_current_unit},
       {"file", &MayaReader::read_file_reference}}};
  const auto handler =
      std::find_if(kHandlers.begin(), kHandlers.end(), [&](const auto& entry) { return entry.first == command; });
  if (handler != kHandlers.end()) {
    known_statement_ = true;
    (this->*handler->second)();
  } else if (command == "playbackOptions") {
    std::string script = command;
    while (script.size() < 4096 && words_.next(word_)) script += " " + word_.text;
    read_playback(script);
  } else if (std::find(kHarmless.begin(), kHarmless.end(), command) != kHarmless.end()) {
    known_statement_ = true;
  } else {
    note("the statement " + shown(command) + " is not read; bake what it moves before saving");
  }
}

void MayaReader::read_current_unit() {
  while (words_.next(word_)) {
    const std::string flag = word_.text;
    if (flag == "-l" || flag == "-linear") {
      const auto unit = linear_unit_named(argument());
      if (!unit) in_.fail(shown(argument_.text) + " is not a linear unit; use mm, cm, m, km, in, ft, yd or mi");
      scene_.settings.set_linear_unit(unit->name);
      centimetres_ = unit->centimetres;
    } else if (flag == "-a" || flag == "-angle") {
      const auto unit = angular_unit_named(argument());
      if (!unit) in_.fail(shown(argument_.text) + " is not an angular unit; use deg or rad");
      radians_ = *unit;
    } else if (flag == "-t" || flag == "-time") {
      const auto rate = frame_rate_named(argument());
      if (!rate) in_.fail(shown(argument_.text) + " is not a time unit; use film, pal, ntsc, 120fps, sec or the like");
      scene_.settings.set_frames_per_second(*rate);
    }
  }
}

void MayaReader::read_file_reference() {
  bool opens = false;
  std::string node, path;
  while (words_.next(word_)) {
    if (word_.text == "-r" || word_.text == "-reference") {
      opens = true;
    } else if (word_.text == "-rfn" || word_.text == "-referenceNode") {
      node = argument();
    } else if (word_.is_flag()) {
      argument();
    } else {
      path = word_.text;
    }
  }
  if (opens) {
    note("the reference " + shown(node) + " to '" + path +
         "' is not opened, and what it would bring is missing; import it into the scene");
  }
}

void MayaReader::read_create_node() {
  std::string type, name, parent;
  bool shared = false;
  while (words_.next(word_)) {
    if (word_.text == "-n" || word_.text == "-name") {
      name = argument();
    } else if (word_.text == "-p" || word_.text == "-parent") {
      parent = argument();
    } else if (word_.text == "-s" || word_.text == "-shared") {
      shared = true;
    } else if (!word_.is_flag()) {
      type = word_.text;
    }
  }
  if (type.empty()) in_.fail(words_.line(), "createNode has no type; the file is damaged, export it again");
  if (++node_count_ > kMaxNodes) in_.fail("more than 4000000 nodes; is this a Maya ASCII file?");
  if (fresh_curve_ != kNoNode) {
    const auto draft = drafts_.find(fresh_curve_);
    if (draft != drafts_.end()) {
      assign(fresh_curve_, draft->second);
      drafts_.erase(draft);
    }
  }
  current_name_ = name;
  current_ = shared && parent.empty() && !name.empty() ? find(name) : kNoNode;
  if (current_ == kNoNode) current_ = create(type, name, parent);
  fresh_curve_ = scene_.curves.is_curve(current_) ? current_ : kNoNode;
}

NodeId MayaReader::create(const std::string& type, const std::string& name, const std::string& parent) {
  for (const auto& [curve_type, kind] : kCurveTypes) {
    if (type == curve_type) return scene_.curves.create(kind, name);
  }
  bool missing = false;
  const NodeId above = parent.empty() ? kWorld : parent_named(parent, missing);
  const std::size_t depth = above < depth_.size() ? depth_[above] + 1u : 1u;
  if (depth > kMaxDepth) in_.fail("more than 2000 nodes inside each other; is this a Maya ASCII file?");
  const NodeId node = scene_.nodes.create(type, name, above);
  if (!scene_.nodes.is_registered_type(type) && scene_.nodes.is_transform(node)) {
    note("the node type " + shown(type) +
         " is not known and is placed as a plain transform; bake it before saving if it moves its children");
  }
  if (depth_.size() <= node) depth_.resize(node + std::size_t{1}, 0);
  depth_[node] = static_cast<std::uint16_t>(depth);
  if (missing && scene_.nodes.is_transform(node)) {
    if (placeholder_ == kNoNode) placeholder_ = scene_.nodes.create("reference", "missingParent");
    hold_as_unfollowed(placeholder_, node);
  }
  if (!name.empty()) keep_name_in_file(scene_, node, name);
  return node;
}

NodeId MayaReader::parent_named(const std::string& name, bool& missing) {
  NodeId node = find(name);
  if (node != kNoNode && !scene_.nodes.is_transform(node)) node = moved_into_dag(node);
  if (node != kNoNode) return node;
  missing = true;
  note("a node's parent is not in the file, and the node stands at the top; import the reference that has the parent");
  return kWorld;
}

// A node of an unknown type with children must be a transform, whatever it was taken for when it was made: replaces it
// by one, under a new id, with its name, connections and values. kNoNode for a node of any other type.
NodeId MayaReader::moved_into_dag(NodeId node) {
  const std::string type = scene_.nodes.type(node), name(scene_.names.short_name(node)),
                    in_file = name_in_file(scene_, node);
  if (scene_.nodes.is_registered_type(type) || scene_.curves.is_curve(node) || type.ends_with("Shape")) return kNoNode;
  note("the node type " + shown(type) +
       " is not known and is placed as a plain transform; bake it before saving if it moves its children");
  const NodeId above = scene_.nodes.is_shape(node) ? scene_.nodes.parent(node) : kWorld;
  // SceneNodes::create puts a node of an unknown type into the DAG only where it is given a parent.
  const NodeId first_parent = scene_.nodes.create("transform", "");
  const NodeId moved = scene_.nodes.create(type, "", first_parent);
  for (const Connection& c : scene_.connections.into(node))
    scene_.connections.connect(c.source, c.source_attribute, moved, c.attribute);
  scene_.nodes.lock(node, false);
  scene_.nodes.remove(node);
  scene_.nodes.set_parent(moved, above);
  scene_.nodes.remove(first_parent);
  scene_.nodes.rename(moved, name);
  keep_name_in_file(scene_, moved, in_file);
  for (const auto& [channel, value] : held_channels_[node]) scene_.attributes.set_channel(moved, channel, value);
  held_channels_.erase(node);
  if (depth_.size() <= moved) depth_.resize(moved + std::size_t{1}, 0);
  depth_[moved] = static_cast<std::uint16_t>(above < depth_.size() ? depth_[above] + 1u : 1u);
  if (current_ == node) current_ = moved;
  return moved;
}

void MayaReader::read_select() {
  current_ = kNoNode;
  current_name_.clear();
  while (words_.next(word_)) {
    if (word_.is_flag()) continue;
    current_name_ = word_.text;
    current_ = find(word_.text);
  }
}

void MayaReader::read_add_attribute() {
  std::string full, short_form, type;
  double value = 0.0;
  while (words_.next(word_)) {
    if (word_.text == "-ln" || word_.text == "-longName") {
      full = argument();
    } else if (word_.text == "-sn" || word_.text == "-shortName") {
      short_form = argument();
    } else if (word_.text == "-at" || word_.text == "-attributeType") {
      type = argument();
    } else if (word_.text == "-dv" || word_.text == "-defaultValue") {
      const std::string& text = argument();
      parse_number(text.data(), text.data() + text.size(), value);
    }
  }
  static constexpr std::array<std::string_view, 10> kNumbers = {
      "bool", "byte", "short", "long", "enum", "double", "float", "time", "doubleLinear", "doubleAngle"};
  const bool number = std::find(kNumbers.begin(), kNumbers.end(), type) != kNumbers.end();
  if (current_ == kNoNode || full.empty() || !number || !std::isfinite(value)) return;
  scene_.attributes.add(current_, full, host::Value(value));
  if (!short_form.empty() && short_form != full) declared_[std::to_string(current_) + "." + short_form] = full;
}

void MayaReader::read_parent() {
  std::vector<std::string> names;
  bool world = false, instance = false;
  while (words_.next(word_)) {
    if (word_.text == "-w" || word_.text == "-world") {
      world = true;
    } else if (word_.text == "-add" || word_.text == "-addObject") {
      instance = true;
    } else if (!word_.is_flag() && names.size() < 1000) {
      names.push_back(word_.text);
    }
  }
  bool missing = false;
  NodeId above = kWorld;
  if (!world && !names.empty()) {
    above = parent_named(names.back(), missing);
    names.pop_back();
  }
  if (instance) {
    if (!missing) add_instances(names, above);
    return;
  }
  const std::size_t depth = above < depth_.size() ? depth_[above] + 1u : 1u;
  if (depth > kMaxDepth) in_.fail("more than 2000 nodes inside each other; is this a Maya ASCII file?");
  for (const std::string& name : names) {
    const NodeId node = find(name);
    if (missing || node == kNoNode) continue;
    scene_.nodes.set_parent(node, above);
    if (node < depth_.size()) depth_[node] = static_cast<std::uint16_t>(depth);
  }
}

void MayaReader::read_lock_node() {
  bool locked = true;
  NodeId node = current_;
  while (words_.next(word_)) {
    if (word_.text == "-l" || word_.text == "-lock") {
      locked = is_switched_on(argument());
    } else if (word_.is_flag()) {
      argument();
    } else {
      node = find(word_.text);
    }
  }
  if (node != kNoNode) scene_.nodes.lock(node, locked);
}

// "playbackOptions -min 1 -max 120 -ast 1 -aet 200 ", wherever it stands in the script.
void MayaReader::read_playback(std::string_view script) {
  const std::size_t start = script.find("playbackOptions");
  if (start == std::string_view::npos) return;
  double first = scene_.settings.playback_min(), last = scene_.settings.playback_max();
  const std::string_view text = script.substr(start, script.find(';', start) - start);
  const auto value_of = [text](std::string_view flag, double& value) {
    const std::size_t place = text.find(flag);
    if (place == std::string_view::npos) return false;
    const char* p = text.data() + place + flag.size();
    const char* const end = text.data() + text.size();
    while (p != end && *p == ' ') ++p;
    return parse_number(p, end, value) != p && std::isfinite(value);
  };
  const bool has_first = value_of(" -min ", first) || value_of(" -minTime ", first);
  const bool has_last = value_of(" -max ", last) || value_of(" -maxTime ", last);
  if (!has_first || !has_last || first > last) return;
  scene_.settings.set_playback_range(first, last);
  has_range_ = true;
}

void MayaReader::finish() {
  if (!known_statement_) in_.fail("the file holds no statement of a Maya ASCII scene; check that it is one");
  if (written_by_maya_ && !words_.has_closing_line()) {
    note(
        "the closing line '// End of ...' is missing: the file may be cut off, and what came after is not here; copy "
        "or export it again");
  }
  for (const auto& [curve, draft] : drafts_) assign(curve, draft);
  drafts_.clear();
  // A scene that does not say what it plays plays what it has.
  if (!has_range_ && first_key_ <= last_key_) scene_.settings.set_playback_range(first_key_, last_key_);
  name_all("character", "the character set", "the character sets");
  name_all("animClip", "the clip", "the clips");
  note_time_warp();
  note_limits();
  mark_deformed_surfaces();
  make_instances();
}

// What of this type there is and is not played, by name.
void MayaReader::name_all(const std::string& type, const std::string& one, const std::string& several) {
  const auto nodes = scene_.nodes.of_type(type);
  if (nodes.empty()) return;
  note((nodes.size() == 1 ? one : several) + " " + names_of(nodes) +
       (nodes.size() == 1 ? " is not played; bake it before saving" : " are not played; bake them before saving"));
}

std::string MayaReader::names_of(const std::vector<NodeId>& nodes) const {
  constexpr std::size_t kNamed = 8;
  std::string names;
  for (std::size_t i = 0; i < std::min(nodes.size(), kNamed); ++i)
    names += (i == 0 ? "'" : ", '") + std::string(scene_.names.short_name(nodes[i])) + "'";
  if (nodes.size() > kNamed) names += " and " + std::to_string(nodes.size() - kNamed) + " more";
  return names;
}

NodeId MayaReader::find(std::string_view name) {
  if (name.starts_with(":")) name.remove_prefix(1);
  if (name.empty()) return kNoNode;
  try {
    const NodeId node = scene_.names.find(name);
    return node == kNoNode && !instances_.empty() ? find_by_second_path(name) : node;
  } catch (const host::Error&) {
    note(
        "several nodes have a name that is used without its path, and it is not known which one is meant; rename them");
    return kNoNode;
  }
}

void MayaReader::split(std::string_view plug, std::string_view& node, std::string_view& attribute) {
  const std::size_t dot = plug.find('.');
  node = plug.substr(0, dot);
  attribute = dot == std::string_view::npos ? std::string_view() : plug.substr(dot + 1);
}

std::string_view MayaReader::declared(NodeId node, std::string_view attribute) const {
  if (declared_.empty()) return attribute;
  const auto found = declared_.find(std::to_string(node) + "." + std::string(attribute));
  return found == declared_.end() ? attribute : std::string_view(found->second);
}

void MayaReader::note(const std::string& kind) {
  if (notes_.contains(kind) || notes_.size() < kMaxNotes) {
    notes_.insert(kind);
    scene_.warnings.add(kind);
  } else {
    scene_.warnings.add("something of yet another kind was not read; is the file damaged?");
  }
}

const std::string& MayaReader::argument() {
  argument_.text.clear();
  words_.next(argument_);
  return argument_.text;
}

Scene read_maya_ascii(ByteSource& source, const ReadOptions& options, std::size_t window) {
  return MayaReader(source, options, window).read();
}

}  // namespace vantorelix::standalone
