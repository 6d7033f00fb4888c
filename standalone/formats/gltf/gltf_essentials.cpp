// What of a glTF file's JSON bears on where nodes are.
#include <algorithm>
#include <initializer_list>
#include <nlohmann/json.hpp>

#include "standalone/formats/gltf/gltf_document.h"

namespace vantorelix::standalone {
namespace {

using nlohmann::json;
using Names = std::initializer_list<const char*>;

// Of an object only these; anything else stays what it is.
void keep(json& object, Names names) {
  if (!object.is_object()) return;
  const auto is_kept = [names](const std::string& name) {
    return std::any_of(names.begin(), names.end(), [&](const char* kept) { return name == kept; });
  };
  for (auto member = object.begin(); member != object.end();)
    member = is_kept(member.key()) ? std::next(member) : object.erase(member);
}

// Calls what(element) for each of a list that is a member of the object.
template <class What>
void for_each(json& object, const char* name, What what) {
  if (!object.is_object()) return;
  const auto list = object.find(name);
  if (list != object.end() && list->is_array()) std::for_each(list->begin(), list->end(), what);
}

// Counts brackets outside of strings.
class BracketDepth {
 public:
  // The depth after the byte.
  std::size_t after(char c) {
    if (in_string_) {
      in_string_ = escaped_ || c != '"';
      escaped_ = !escaped_ && c == '\\';
    } else if (c == '"') {
      in_string_ = true;
    } else if (c == '[' || c == '{') {
      ++depth_;
    } else if ((c == ']' || c == '}') && depth_ > 0) {
      --depth_;
    }
    return depth_;
  }

 private:
  std::size_t depth_ = 0;
  bool in_string_ = false, escaped_ = false;
};

}  // namespace

std::size_t line_too_deep(std::string_view text) {
  BracketDepth brackets;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (brackets.after(text[i]) <= kMaxJsonDepth) continue;
    return static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(i), '\n')) + 1;
  }
  return 0;
}

std::string gltf_essentials(std::string_view text) {
  json document = json::parse(text.begin(), text.end(), nullptr, false);
  if (!document.is_object()) return {};
  keep(document, {"asset", "scene", "scenes", "nodes", "meshes", "skins", "animations", "accessors", "bufferViews",
                  "buffers", "extensionsRequired"});
  for_each(document, "scenes", [](json& scene) { keep(scene, {"nodes"}); });
  for_each(document, "nodes", [](json& node) {
    keep(node, {"name", "children", "matrix", "translation", "rotation", "scale", "mesh", "skin"});
  });
  for_each(document, "skins", [](json& skin) { keep(skin, {"joints"}); });
  for_each(document, "meshes", [](json& mesh) {
    keep(mesh, {"primitives"});
    for_each(mesh, "primitives", [](json& part) {
      keep(part, {"attributes"});
      if (part.contains("attributes")) keep(part["attributes"], {"POSITION"});
    });
  });
  return document.dump();
}

}  // namespace vantorelix::standalone
