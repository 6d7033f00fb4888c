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

struct Form {
  std::string_view name;
  sa::Written (*write)(const sa::Scene&, const std::vector<sa::NodeId>&);
};
constexpr std::array<Form, 2> kForms = {{{"ma", sa::write_maya_curves}, {"py", sa::write_maya_script}}};

const Form& form_named(std::string_view name) {
  const auto found = std::find_if(kForms.begin(), kForms.end(), [name](const Form& form) { return form.name == name; });
  if (found == kForms.end())
    throw std::runtime_error("there is no form '" + std::string(name) + "' to write; name \"ma\" or \"py\"");
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
  static std::string text, lost;
  return guarded([&] {
    std::vector<sa::NodeId> nodes;
    std::transform(objects, objects + count, std::back_inserter(nodes),
                   [&](const char* name) { return scene->object(name); });
    sa::Written made = form_named(form).write(scene->scene(), count == 0 ? scene->objects() : nodes);
    text = std::move(made.text);
    lost = list_of(made.lost);
    *written = {text.c_str(), lost.c_str()};
  });
}
