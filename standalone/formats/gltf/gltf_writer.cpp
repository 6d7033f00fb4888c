// The glTF file that a scene was opened from, with the animation that it has now.
//
// Its JSON keeps all bytes but those of what changes: keys of edited channels go into accessors of their own behind the
// others, and into bytes behind those of the first buffer. What they replace stays where it is, unused.
#include <cgltf.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "base/number_text.h"
#include "standalone/formats/gltf/gltf_changes.h"
#include "standalone/formats/gltf/gltf_document.h"
#include "standalone/formats/gltf/json_text.h"
#include "standalone/formats/reader.h"
#include "standalone/formats/text_input.h"
#include "standalone/formats/writer.h"

namespace vantorelix::standalone {

namespace {

using nlohmann::json;

constexpr std::size_t kMaxFile = 0xffffffffu;

template <class T>
std::string bytes_of(const std::vector<T>& numbers) {
  std::string bytes(numbers.size() * sizeof(T), '\0');
  if (!numbers.empty()) std::memcpy(bytes.data(), numbers.data(), bytes.size());
  return bytes;
}

void pad(std::string& bytes, char with) { bytes.append((4 - bytes.size() % 4) % 4, with); }

std::string word(std::size_t number) {
  std::string bytes;
  for (int k = 0; k < 4; ++k) bytes += static_cast<char>(number >> (8 * k) & 0xff);
  return bytes;
}

// The keys of what changed, as JSON and bytes.
class Additions {
 public:
  // `bytes` are those of the first buffer.
  Additions(std::size_t accessors, std::size_t views, std::string bytes)
      : accessor_(accessors), view_(views), bytes_(std::move(bytes)) {}

  // The members of a sampler.
  struct Sampler {
    std::string input, output, interpolation;
  };
  Sampler add(const GltfKeys& keys, std::size_t width) {
    const auto number = [](float value) { return number_text(static_cast<double>(value)); };
    Sampler made;
    made.input = add(keys.times, 1, "SCALAR",
                     ",\"min\":[" + number(keys.times.front()) + "],\"max\":[" + number(keys.times.back()) + "]");
    made.output = add(keys.values, width, width == 4 ? "VEC4" : "VEC3", "");
    made.interpolation = "\"" + keys.interpolation + "\"";
    return made;
  }

  const std::vector<std::string>& accessors() const { return accessors_; }
  const std::vector<std::string>& views() const { return views_; }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string add(const std::vector<float>& numbers, std::size_t width, const char* type, const std::string& more) {
    pad(bytes_, '\0');
    const std::string own = bytes_of(numbers);
    views_.push_back("{\"buffer\":0,\"byteOffset\":" + std::to_string(bytes_.size()) +
                     ",\"byteLength\":" + std::to_string(own.size()) + "}");
    bytes_ += own;
    accessors_.push_back("{\"bufferView\":" + std::to_string(view_++) + ",\"componentType\":5126,\"count\":" +
                         std::to_string(numbers.size() / width) + ",\"type\":\"" + type + "\"" + more + "}");
    return std::to_string(accessor_++);
  }

  std::size_t accessor_, view_;
  std::vector<std::string> accessors_, views_;
  std::string bytes_;
};

class GltfFileWriter {
 public:
  GltfFileWriter(const Scene& scene, std::string_view bytes, const std::string& name,
                 const std::filesystem::path& folder)
      : scene_(scene),
        bytes_(bytes.substr(bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0)),
        name_(name),
        document_(bytes, name, folder),
        text_(document_.json()),
        dom_(json::parse(document_.json(), nullptr, false)) {
    if (dom_.is_discarded())
      throw CannotWrite(name_ +
                        ": the JSON of the file is not quite right, so that it cannot be changed; export it again");
  }

  Written write(const std::vector<GltfChange>& changes, std::vector<std::string> lost) {
    const std::string first = first_buffer();
    Additions additions(count("accessors"), count("bufferViews"), first);
    for (const GltfChange& change : changes) put(change, additions);
    tell_files(lost);
    if (is_container() && changes.empty()) return {std::string(bytes_), std::move(lost)};
    add_all("accessors", additions.accessors());
    add_all("bufferViews", additions.views());
    put_clip();
    put_buffer(additions.bytes());
    return {container(additions.bytes()), std::move(lost)};
  }

 private:
  bool is_container() const { return bytes_.starts_with("glTF"); }
  std::size_t count(const char* list) const { return dom_.contains(list) ? dom_.at(list).size() : 0; }
  bool has_buffer_with_uri() const { return count("buffers") != 0 && dom_.at("buffers").at(0).contains("uri"); }

  std::string first_buffer() {
    if (document_.data().buffers_count == 0) return {};
    return std::string(document_.bytes_of(document_.data().buffers[0]));
  }

  JsonText::Span list(JsonText::Span object, const char* name) const {
    const auto found = text_.member(object, name);
    if (!found) throw CannotWrite(name_ + ": '" + name + "' is not to be found in the file's JSON; export it again");
    return *found;
  }
  JsonText::Span element(JsonText::Span object, const char* name, std::size_t index) const {
    return text_.elements(list(object, name)).at(index);
  }

  // The clip that was read; nothing where the file has none.
  const json* clip() const {
    return scene_.settings.takes().empty() ? nullptr : &dom_.at("animations").at(scene_.settings.take());
  }

  // The channel of the clip that is followed.
  std::optional<std::size_t> channel_of(const GltfChange& change) const {
    if (clip() == nullptr || !clip()->contains("channels")) return std::nullopt;
    const json& channels = clip()->at("channels");
    for (std::size_t i = 0; i < channels.size(); ++i) {
      const json target = channels.at(i).value("target", json::object());
      if (target.value("node", json()) == json(change.node) && target.value("path", "") == change.path) return i;
    }
    return std::nullopt;
  }

  void put(const GltfChange& change, Additions& additions) {
    const Additions::Sampler made = additions.add(change.keys, change.path == std::string("rotation") ? 4 : 3);
    const std::optional<std::size_t> channel = channel_of(change);
    if (!channel) {
      channels_.push_back("{\"sampler\":" + std::to_string(add_sampler(made)) + ",\"target\":{\"node\":" +
                          std::to_string(change.node) + ",\"path\":\"" + change.path + "\"}}");
      return;
    }
    const JsonText::Span animation = element(text_.root(), "animations", scene_.settings.take());
    const json& channels = clip()->at("channels");
    const json& sampler = channels.at(*channel).at("sampler");
    const auto users = std::count_if(channels.begin(), channels.end(),
                                     [&](const json& one) { return one.value("sampler", json()) == sampler; });
    if (users == 1) return change_sampler(element(animation, "samplers", sampler.get<std::size_t>()), made);
    text_.replace(list(element(animation, "channels", *channel), "sampler"), std::to_string(add_sampler(made)));
  }

  // Those that other channels use, too, stay as they are.
  std::size_t add_sampler(const Additions::Sampler& made) {
    const std::size_t known = clip() != nullptr && clip()->contains("samplers") ? clip()->at("samplers").size() : 0;
    samplers_.push_back("{\"input\":" + made.input + ",\"output\":" + made.output +
                        ",\"interpolation\":" + made.interpolation + "}");
    return known + samplers_.size() - 1;
  }

  void change_sampler(JsonText::Span sampler, const Additions::Sampler& made) {
    text_.replace(list(sampler, "input"), made.input);
    text_.replace(list(sampler, "output"), made.output);
    if (const auto named = text_.member(sampler, "interpolation"))
      text_.replace(*named, made.interpolation);
    else
      text_.append(sampler, "\"interpolation\":" + made.interpolation);
  }

  static std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) text += (text.empty() ? "" : ",") + item;
    return text;
  }

  void add_to(JsonText::Span object, const char* name, const std::vector<std::string>& items) {
    if (items.empty()) return;
    if (const auto there = text_.member(object, name))
      text_.append(*there, joined(items));
    else
      text_.append(object, "\"" + std::string(name) + "\":[" + joined(items) + "]");
  }
  void add_all(const char* name, const std::vector<std::string>& items) { add_to(text_.root(), name, items); }

  void put_clip() {
    if (clip() == nullptr) {
      if (!channels_.empty())
        add_all("animations", {"{\"channels\":[" + joined(channels_) + "],\"samplers\":[" + joined(samplers_) + "]}"});
      return;
    }
    const JsonText::Span animation = element(text_.root(), "animations", scene_.settings.take());
    add_to(animation, "channels", channels_);
    add_to(animation, "samplers", samplers_);
  }

  // The first buffer becomes the container's own.
  void put_buffer(const std::string& bytes) {
    const std::string length = std::to_string(bytes.size());
    if (count("buffers") == 0) {
      if (!bytes.empty()) add_all("buffers", {"{\"byteLength\":" + length + "}"});
      return;
    }
    const JsonText::Span buffer = element(text_.root(), "buffers", 0);
    text_.replace(list(buffer, "byteLength"), length);
    if (has_buffer_with_uri()) text_.remove_member(buffer, "uri");
  }

  void tell_files(std::vector<std::string>& lost) const {
    const auto tell = [&](const char* list, std::size_t from) {
      for (std::size_t i = from; i < count(list); ++i) {
        const std::string uri = dom_.at(list).at(i).is_object() ? dom_.at(list).at(i).value("uri", "") : "";
        if (!uri.empty() && !uri.starts_with("data:"))
          lost.push_back("the file still refers to " + shown(uri) +
                         ", which has to lie where it lies for the first one");
      }
    };
    tell("buffers", 1);
    tell("images", 0);
  }

  std::string container(std::string binary) const {
    std::string text = text_.changed();
    pad(text, ' ');
    pad(binary, '\0');
    std::string chunks = word(text.size()) + "JSON" + text;
    if (!binary.empty()) chunks += word(binary.size()) + std::string("BIN\0", 4) + binary;
    chunks += further_chunks();
    if (chunks.size() > kMaxFile - 12) throw CannotWrite("the file would be larger than 4 GB, which glTF cannot be");
    return "glTF" + word(2) + word(chunks.size() + 12) + chunks;
  }

  // What follows the container's own buffer.
  std::string_view further_chunks() const {
    constexpr std::size_t kHead = 8;
    if (!is_container()) return {};
    const std::string_view text = document_.json();
    std::size_t at = static_cast<std::size_t>(text.data() - bytes_.data()) + text.size();
    if (bytes_.size() - at < kHead || bytes_.substr(at + 4, 4) != std::string_view("BIN\0", 4))
      return bytes_.substr(at);
    at += kHead + std::min(gltf_length_at(bytes_, at), bytes_.size() - at - kHead);
    return bytes_.substr(at);
  }

  const Scene& scene_;
  std::string_view bytes_;
  std::string name_;
  GltfDocument document_;
  JsonText text_;
  json dom_;
  std::vector<std::string> channels_, samplers_;  // that are new
};

}  // namespace

Written write_gltf(const Scene& scene, const std::vector<NodeId>& objects, const std::filesystem::path& file) {
  if (!is_gltf_scene(scene, objects))
    throw CannotWrite("only a scene that was opened from a glTF file can be written as one");
  ReadOptions options;
  options.frames_per_second = scene.settings.frames_per_second();
  if (!scene.settings.takes().empty()) options.take = scene.settings.takes()[scene.settings.take()].name;
  FileSource source(file, options);
  const WholeFile whole(source, options);
  const std::filesystem::path folder = file.parent_path().empty() ? "." : file.parent_path();
  const Scene opened = read_gltf(whole.bytes(), source.name(), folder, options);
  std::vector<std::string> lost;
  try {
    const std::vector<GltfChange> changes = gltf_changes(scene, opened, source.name(), objects, lost);
    return GltfFileWriter(scene, whole.bytes(), source.name(), folder).write(changes, std::move(lost));
  } catch (const nlohmann::json::exception&) {
    throw CannotWrite(source.name() + ": the JSON of the file is not that of glTF everywhere; export it again");
  }
}

}  // namespace vantorelix::standalone
