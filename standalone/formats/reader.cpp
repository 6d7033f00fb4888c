#include "standalone/formats/reader.h"

#include <algorithm>

#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {

FormatError::FormatError(const std::string& file, std::size_t line, const std::string& text)
    : std::runtime_error(file + (line == 0 ? ": " : ":" + std::to_string(line) + ": ") + text),
      file_(file),
      line_(line) {}

Scene read_scene(const std::filesystem::path& file, const ReadOptions& options) {
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  const bool gltf = extension == ".gltf" || extension == ".glb";
  if (extension != ".bvh" && extension != ".ma" && extension != ".fbx" && !gltf) {
    throw FormatError(file.string(), 0,
                      "scene files of this kind are not read; give a BVH clip (.bvh), a Maya ASCII scene (.ma), an FBX "
                      "scene (.fbx) or a glTF scene (.gltf, .glb)");
  }
  FileSource source(file, options);
  if (extension == ".fbx") return read_fbx(WholeFile(source, options).bytes(), source.name(), options);
  if (gltf) {
    const std::filesystem::path folder = file.parent_path();
    return read_gltf(WholeFile(source, options).bytes(), source.name(), folder.empty() ? "." : folder, options);
  }
  return extension == ".bvh" ? read_bvh(source, options) : read_maya_ascii(source, options);
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
