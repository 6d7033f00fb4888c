#include "engine/trails/nodes.h"

#include <utility>
#include <vector>

#include "host/error.h"

namespace vantorelix {

std::string _short_name(const std::string& path) { return path.substr(path.rfind('|') + 1); }

std::string _first_shape(const std::string& transform) {
  std::vector<std::string> shapes = cmds->listRelatives_shapes(transform);
  if (shapes.empty())
    throw host::Error("'" + transform + "' has no shape; make its trail again", host::ErrorKind::type);
  return std::move(shapes.front());
}

std::string _source_of(const Settings& settings) {
  const host::Value source = settings.at("source");
  if (const std::string* name = source.as_text()) return *name;
  throw host::Error("a trail's \"source\" must be a node name, not " + source.repr() + "; make the trail again",
                    host::ErrorKind::type);
}

}  // namespace vantorelix
