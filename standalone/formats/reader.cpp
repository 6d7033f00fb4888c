#include "standalone/formats/reader.h"

#include <algorithm>
#include <initializer_list>

#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {

FormatError::FormatError(const std::string& file, std::size_t line, const std::string& text)
    : std::runtime_error(file + (line == 0 ? ": " : ":" + std::to_string(line) + ": ") + text),
      file_(file),
      line_(line) {}

namespace {

// A source of which the first bytes were read already.
class BegunSource : public ByteSource {
 public:
  explicit BegunSource(ByteSource& rest) : rest_(rest), first_(kFirstBytes, '\0') {
    std::size_t got = 0, more = 1;
    while (got < kFirstBytes && more != 0) got += more = rest.read(first_.data() + got, kFirstBytes - got);
    first_.resize(got);
  }
  std::string_view first() const { return first_; }

  std::size_t read(char* to, std::size_t limit) override {
    if (taken_ == first_.size()) return rest_.read(to, limit);
    const std::size_t got = first_.copy(to, limit, taken_);
    taken_ += got;
    return got;
  }
  std::uint64_t size() const override { return rest_.size(); }
  const std::string& name() const override { return rest_.name(); }

 private:
  ByteSource& rest_;
  std::string first_;
  std::size_t taken_ = 0;
};

Scene read_as(Format format, ByteSource& source, const std::filesystem::path& folder, const ReadOptions& options) {
  if (options.recognised) options.recognised(format);
  switch (format) {
    case Format::fbx:
      return read_fbx(WholeFile(source, options).bytes(), source.name(), options);
    case Format::gltf:
      return read_gltf(WholeFile(source, options).bytes(), source.name(), folder.empty() ? "." : folder, options);
    case Format::samples:
      return read_samples(WholeFile(source, options).bytes(), source.name(), options);
    case Format::bvh:
      return read_bvh(source, options);
    case Format::maya_ascii:
      break;
  }
  return read_maya_ascii(source, options);
}

std::string_view after_blanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
}

// Without the lines in front that begin with `comment`.
std::string_view after_comments(std::string_view text, std::string_view comment) {
  for (text = after_blanks(text); text.starts_with(comment); text = after_blanks(text))
    text.remove_prefix(std::min(text.find_first_of("\r\n"), text.size()));
  return text;
}

}  // namespace

std::optional<Format> format_by_extension(const std::filesystem::path& file) {
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  if (extension == ".samples") return Format::samples;
  if (extension == ".bvh") return Format::bvh;
  if (extension == ".ma") return Format::maya_ascii;
  if (extension == ".fbx") return Format::fbx;
  if (extension == ".gltf" || extension == ".glb") return Format::gltf;
  return std::nullopt;
}

std::optional<Format> format_by_content(std::string_view first_bytes) {
  const auto begins = [](std::string_view text, std::initializer_list<std::string_view> words) {
    return std::any_of(words.begin(), words.end(), [&](std::string_view word) { return text.starts_with(word); });
  };
  if (begins(first_bytes, {"glTF"})) return Format::gltf;
  if (begins(first_bytes, {"Kaydara FBX Binary"})) return Format::fbx;
  if (begins(first_bytes, {"\xEF\xBB\xBF"})) first_bytes.remove_prefix(3);
  const std::string_view text = after_blanks(first_bytes);
  if (begins(text, {"HIERARCHY"})) return Format::bvh;
  if (begins(text, {"//Maya ASCII"}) || begins(after_comments(text, "//"), {"requires ", "createNode ", "fileInfo "}))
    return Format::maya_ascii;
  if (begins(text, {"; FBX "}) || begins(after_comments(text, ";"), {"FBXHeaderExtension"})) return Format::fbx;
  if (begins(text, {"{"}) && text.substr(0, text.find('\n')).find("\"vantorelix-samples\"") != std::string_view::npos)
    return Format::samples;
  if (begins(text, {"{"}) && begins(after_blanks(text.substr(1)), {"\""})) return Format::gltf;
  return std::nullopt;
}

Scene read_scene(const std::filesystem::path& file, const ReadOptions& options) {
  FileSource source(file, options);
  if (const auto format = options.format ? options.format : format_by_extension(file))
    return read_as(*format, source, file.parent_path(), options);
  BegunSource begun(source);
  const auto format = format_by_content(begun.first());
  if (!format)
    throw FormatError(file.string(), 0,
                      "scene files of this kind are not read; give a BVH clip (.bvh), a Maya ASCII scene (.ma), an FBX "
                      "scene (.fbx), a glTF scene (.gltf, .glb) or samples (.samples)");
  return read_as(*format, begun, file.parent_path(), options);
}

Scene read_bvh(std::string_view text, const std::string& name, const ReadOptions& options) {
  MemorySource source(text, name);
  return read_bvh(source, options);
}

Scene read_maya_ascii(std::string_view text, const std::string& name, const ReadOptions& options) {
  MemorySource source(text, name);
  return read_maya_ascii(source, options);
}

void keep_name_in_file(Scene& scene, NodeId node, const std::string& name) {
  if (scene.names.short_name(node) != name) scene.attributes.add(node, kNameInFile, host::Value(name));
}

std::string name_in_file(const Scene& scene, NodeId node) {
  if (!scene.attributes.has(node, kNameInFile)) return std::string(scene.names.short_name(node));
  return scene.attributes.value(node, kNameInFile).text();
}

}  // namespace vantorelix::standalone
