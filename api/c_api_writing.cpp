// Animation out again.
#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "api/c_api.h"
#include "api/calls.h"
#include "base/json_writer.h"
#include "base/text_sink.h"
#include "standalone/formats/writer.h"

using vantorelix::api::guarded;
namespace sa = vantorelix::standalone;

namespace {

using Objects = std::vector<sa::NodeId>;

struct Form {
  std::string_view name;
  sa::Written (*write)(const VlxScene&, const Objects&);
};
constexpr std::array<Form, 4> kForms = {{
    {"ma", [](const VlxScene& scene, const Objects& objects) { return sa::write_maya_curves(scene.scene(), objects); }},
    {"py", [](const VlxScene& scene, const Objects& objects) { return sa::write_maya_script(scene.scene(), objects); }},
    {"bvh",
     [](const VlxScene& scene, const Objects& objects) {
       return sa::write_bvh(scene.scene(), objects, {scene.first(), scene.last()});
     }},
    {"glb", [](const VlxScene& scene,
               const Objects& objects) { return sa::write_gltf(scene.scene(), objects, scene.file()); }},
}};

std::string names_of_forms() {
  std::string names;
  for (const Form& form : kForms)
    names += (names.empty() ? "'" : &form == &kForms.back() ? " or '" : ", '") + std::string(form.name) + "'";
  return names;
}

const Form& form_named(std::string_view name) {
  const auto found = std::find_if(kForms.begin(), kForms.end(), [name](const Form& form) { return form.name == name; });
  if (found == kForms.end())
    throw std::runtime_error("there is no form '" + std::string(name) + "' to write; name " + names_of_forms());
  return *found;
}

std::string list_of(const std::vector<std::string>& texts) {
  vantorelix::StringSink out;
  vantorelix::JsonWriter json(out);
  json.value(texts);
  return out.text();
}

}  // namespace

int vlx_written(VlxScene* scene, const char* form, const char* const* objects, std::size_t count, VlxWritten* written) {
  static std::string bytes, lost;
  return guarded([&] {
    Objects nodes;
    std::transform(objects, objects + count, std::back_inserter(nodes),
                   [&](const char* name) { return scene->object(name); });
    sa::Written made = form_named(form).write(*scene, count == 0 ? scene->objects() : nodes);
    bytes = std::move(made.bytes);
    lost = list_of(made.lost);
    *written = {bytes.c_str(), bytes.size(), lost.c_str()};
  });
}
