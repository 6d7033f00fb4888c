// Opening a scene file of any format.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

// What is wrong with a file and what to do about it: what() is "file:line: what; what to do".
class FormatError : public std::runtime_error {
 public:
  FormatError(const std::string& file, std::size_t line, const std::string& text);
  const std::string& file() const { return file_; }
  std::size_t line() const { return line_; }  // 0 where it is not known

 private:
  std::string file_;
  std::size_t line_;
};

enum class Format { bvh, maya_ascii, fbx, gltf, samples };
// By the extension of a file's name, in any case: ".bvh", ".ma", ".fbx", ".gltf", ".glb", ".samples". Nothing for any
// other.
std::optional<Format> format_by_extension(const std::filesystem::path& file);
// By what a file begins with. kFirstBytes of it, or all of a shorter file, are enough.
inline constexpr std::size_t kFirstBytes = 4096;
std::optional<Format> format_by_content(std::string_view first_bytes);

// The name of a file that stands for standard input.
inline constexpr std::string_view kStandardInput = "-";

struct ReadOptions {
  // What the file is, whatever its name and content say.
  std::optional<Format> format;
  // Called with the format once it is known, before the scene is read. What it throws comes out of the reading.
  std::function<void(Format)> recognised;
  // Called with the bytes read so far and the file's size (0 when unknown), at most four times a second. What it throws
  // ends the reading and comes out of it.
  std::function<void(std::uint64_t done, std::uint64_t total)> progress;
  // The take (FBX) or clip (glTF) to read: its name, or empty for the first. Formats without takes pay no attention to
  // this and the following.
  std::string take;
  // Frames a second of a glTF scene, which knows seconds only; more than 0.
  double frames_per_second = 24.0;
  // FBX: 'y' or 'z' turns the scene so that this axis points up; 0 leaves the file's own.
  char up_axis = 0;
  // FBX: "mm", "cm", "m", "in", "ft", ... converts to this unit; empty leaves the file's own.
  std::string linear_unit;
  // How many bytes a text may bring of which nobody says the size, as a pipe's: it could go on for ever.
  std::uint64_t max_unannounced = std::uint64_t{4} << 30;
  // Also finds how large the surfaces are that hang on the nodes (kBounds).
  bool bounds = false;
};

// How deep nodes may lie inside each other in a file of any format. What people make comes nowhere near.
inline constexpr std::size_t kMaxDepth = 2000;

// Reads a scene as its format says, else by its extension, and by its content where it has none of those. Throws
// FormatError; where the content is not recognised either, that names what is read. What the file holds that cannot be
// followed ends in Scene::warnings.
Scene read_scene(const std::filesystem::path& file, const ReadOptions& options = {});

// Where the scene's name of a node differs from the one in the file (illegal characters, clashes, an end site), the
// node has the file's bytes under this attribute.
inline constexpr std::string_view kNameInFile = "nameInFile";
// Gives the node that attribute where it has to have it.
void keep_name_in_file(Scene& scene, NodeId node, const std::string& name);
// The node's own name in the file, unchanged. A BVH end site, which has none, is "End Site of <joint>".
std::string name_in_file(const Scene& scene, NodeId node);
// Two corners, low and high, of the box around a node's or shape's surface, in the node's own space, as a vector array.
// Empty where a skin, a blend shape or another deformer moves the surface: no box stands for it.
inline constexpr std::string_view kBounds = "bounds";
// That box where the surface is not known: low, high.
inline constexpr Vector kUnitCube[] = {{-0.5, -0.5, -0.5}, {0.5, 0.5, 0.5}};
// The number of the node in a file that numbers its nodes (glTF), an integer.
inline constexpr std::string_view kNumberInFile = "numberInFile";

// The same from memory; `name` stands in error texts. For tests and fuzzing.
Scene read_bvh(std::string_view text, const std::string& name, const ReadOptions& options = {});
Scene read_maya_ascii(std::string_view text, const std::string& name, const ReadOptions& options = {});
Scene read_fbx(std::string_view bytes, const std::string& name, const ReadOptions& options = {});
Scene read_samples(std::string_view bytes, const std::string& name, const ReadOptions& options = {});
// Buffers of their own lie in `folder` or below it; where it is empty, none are read.
Scene read_gltf(std::string_view bytes, const std::string& name, const std::filesystem::path& folder = {},
                const ReadOptions& options = {});

}  // namespace vantorelix::standalone
