// A glTF file as the library reads it, with the bytes behind it. For the files of this folder only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

struct cgltf_accessor;
struct cgltf_buffer;
struct cgltf_buffer_view;
struct cgltf_data;

namespace vantorelix::standalone {

// How much memory reading a file may take: kTimes the bytes of the file and of its external buffers, and kAlways
// besides. A damaged file that asks for more is refused before the memory is claimed.
class GltfAllowance {
 public:
  static constexpr std::uint64_t kTimes = 256;
  static constexpr std::uint64_t kAlways = 64u << 20;
  // What a node of a scene takes, with its name and attributes.
  static constexpr std::uint64_t kNode = 2048;

  void add_input(std::uint64_t bytes) { left_ += bytes * kTimes; }
  // False when `count` things of this size are too much, or more than there are addresses for.
  bool take(std::uint64_t count, std::uint64_t size) {
    if (count > left_ / size || count > SIZE_MAX / size) return false;
    left_ -= count * size;
    return true;
  }

 private:
  std::uint64_t left_ = kAlways;
};

// The memory that the library takes. What it has not given back goes with this: the library forgets some of it when it
// refuses a file.
class GltfMemory {
 public:
  explicit GltfMemory(GltfAllowance& allowance) : allowance_(allowance) {}
  GltfMemory(const GltfMemory&) = delete;
  GltfMemory& operator=(const GltfMemory&) = delete;
  ~GltfMemory();

  // Null when it is too much.
  void* take(std::size_t size);
  // To a caller that frees it.
  void* hand_over(void* memory);
  void give_back(void* memory);

 private:
  GltfAllowance& allowance_;
  std::unordered_set<void*> taken_;
};

// The numbers of an accessor. Floats are read where they lie in the file's bytes, which must outlive this; others are
// converted and kept in `own_`.
class GltfNumbers {
 public:
  GltfNumbers(const char* floats, std::size_t stride) : floats_(floats), stride_(stride) {}
  GltfNumbers(std::vector<double> own, std::size_t width) : own_(std::move(own)), stride_(width) {}

  double operator()(std::size_t element, std::size_t component) const {
    if (floats_ == nullptr) return own_[element * stride_ + component];
    float number;  // at any address
    std::memcpy(&number, floats_ + element * stride_ + component * sizeof number, sizeof number);
    return static_cast<double>(number);
  }
  // Whether the first `elements` elements, of `width` numbers each, are finite.
  bool are_finite(std::size_t elements, std::size_t width) const;

 private:
  const char* floats_ = nullptr;
  std::vector<double> own_;
  std::size_t stride_;  // from element to element: bytes of floats, or numbers
};

class GltfDocument {
 public:
  // `bytes` is the whole file, .gltf or .glb, and stays the caller's; external buffers lie in `folder` or below it, and
  // are refused where it is empty. Throws FormatError.
  GltfDocument(std::string_view bytes, std::string name, std::filesystem::path folder);
  ~GltfDocument();
  GltfDocument(const GltfDocument&) = delete;
  GltfDocument& operator=(const GltfDocument&) = delete;

  const cgltf_data& data() const { return *data_; }
  const std::string& name() const { return name_; }  // as error texts call it
  // The JSON text, without the container around it; of a damaged container, whatever of it is there.
  std::string_view json() const;
  // Throws FormatError where they are not all there. Good as long as the document.
  std::string_view bytes_of(const cgltf_buffer& buffer);

  // "accessor 7": as error texts call it.
  std::string label(const cgltf_accessor& accessor) const;
  // The numbers of an accessor, sparse ones in place: floats as they are, normalised integers as the fractions they
  // stand for. Only the types that animation has. Throws FormatError for anything that does not lie within its buffer,
  // and for numbers that are not finite. Good as long as the document.
  GltfNumbers numbers(const cgltf_accessor& accessor);

  // Throws FormatError when `count` things of `size` bytes are more than such a file may ask for.
  void take(std::uint64_t count, std::uint64_t size);
  [[noreturn]] void fail(const std::string& text) const;

 private:
  using Bytes = std::unique_ptr<char, void (*)(void*)>;  // as many as the buffer says

  void parse();
  cgltf_data* parse_essentials();
  [[noreturn]] void fail_for(int result);
  std::string_view binary_part() const;
  std::string_view bytes_of(const cgltf_buffer_view& view);
  Bytes decoded(const cgltf_buffer& buffer, const std::string& label);
  // `first` is where they lie; null for zeros.
  std::vector<double> decoded_numbers(const cgltf_accessor& accessor, const char* first, std::size_t width,
                                      std::size_t size);
  Bytes read_external(const cgltf_buffer& buffer, const std::string& label);
  void place_sparse(const cgltf_accessor& accessor, std::size_t width, std::vector<double>& values);

  std::string_view bytes_;
  std::string name_;
  std::filesystem::path folder_;
  GltfAllowance allowance_;
  GltfMemory memory_{allowance_};
  std::unique_ptr<cgltf_data, void (*)(cgltf_data*)> data_;
  std::map<const cgltf_buffer*, Bytes> loaded_;
  std::set<std::filesystem::path> counted_;  // external files
};

// The length that a container gives at this place, which lies within its bytes.
std::size_t gltf_length_at(std::string_view bytes, std::size_t place);

// A string of the file without its JSON escapes; empty for null.
std::string gltf_text(const char* raw);

// Why the library refuses this JSON, as far as it can be told, and the line (0 for none).
struct GltfFault {
  std::size_t line = 0;
  std::string text;
};
GltfFault find_fault(std::string_view json);

// The same JSON with nothing in it but what places, moves and bounds nodes: the library refuses whole files for forms
// that it does not know in lights, materials and instances. Empty where the text is not a JSON object.
std::string gltf_essentials(std::string_view json);
// Brackets inside each other beyond which the text is refused: the library's time grows with the square of them.
inline constexpr std::size_t kMaxJsonDepth = 256;
// The line in which a text goes deeper than that; 0 where none does.
std::size_t line_too_deep(std::string_view json);

// A node that is its own ancestor, or parents.size(), which also stands for no parent.
std::size_t find_circle(const std::vector<std::size_t>& parents);
std::string circle_text(std::size_t node);

}  // namespace vantorelix::standalone
