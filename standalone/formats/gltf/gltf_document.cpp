// Opening glTF: the container, the library, and the buffers that animation needs, each read when it is asked for.
#include "standalone/formats/gltf/gltf_document.h"

#include <cgltf.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

#include "standalone/formats/text_input.h"

namespace vantorelix::standalone {
namespace {

cgltf_options options_with(GltfMemory& memory) {
  cgltf_options options = {};
  options.memory.alloc_func = [](void* user, cgltf_size size) { return static_cast<GltfMemory*>(user)->take(size); };
  options.memory.free_func = [](void* user, void* taken) { static_cast<GltfMemory*>(user)->give_back(taken); };
  options.memory.user_data = &memory;
  return options;
}

constexpr std::size_t kJsonBegin = 20;  // in the binary container

// Whether the library found the container whole and refused what is in it.
bool is_about_content(cgltf_result result) {
  return result == cgltf_result_invalid_json || result == cgltf_result_invalid_gltf;
}

// Whether a relative path stays below the folder it starts from.
bool stays_below(const std::string& path) {
  if (path.empty() || path.find('\0') != std::string::npos || path.find(':') != std::string::npos) return false;
  if (path[0] == '/' || path[0] == '\\') return false;
  std::size_t begin = 0;
  while (begin <= path.size()) {
    const std::size_t end = std::min(path.find_first_of("/\\", begin), path.size());
    if (path.substr(begin, end - begin) == "..") return false;
    begin = end + 1;
  }
  return true;
}

}  // namespace

std::size_t gltf_length_at(std::string_view bytes, std::size_t place) {
  std::uint32_t length = 0;
  for (std::size_t i = 0; i < 4; ++i) length |= std::uint32_t{static_cast<unsigned char>(bytes[place + i])} << (8 * i);
  return length;
}

std::string gltf_text(const char* raw) {
  if (raw == nullptr) return {};
  if (std::strchr(raw, '\\') == nullptr) return raw;
  const auto text = nlohmann::json::parse('"' + std::string(raw) + '"', nullptr, false);
  return text.is_string() ? text.get<std::string>() : raw;
}

GltfMemory::~GltfMemory() {
  for (void* memory : taken_) std::free(memory);
}

void* GltfMemory::take(std::size_t size) {
  if (!allowance_.take(1, size + 1)) return nullptr;
  void* const memory = std::malloc(size);
  if (memory != nullptr) taken_.insert(memory);
  return memory;
}

void* GltfMemory::hand_over(void* memory) {
  taken_.erase(memory);
  return memory;
}

void GltfMemory::give_back(void* memory) {
  taken_.erase(memory);
  std::free(memory);
}

GltfDocument::GltfDocument(std::string_view bytes, std::string name, std::filesystem::path folder)
    : bytes_(bytes), name_(std::move(name)), folder_(std::move(folder)), data_(nullptr, cgltf_free) {
  allowance_.add_input(bytes_.size());
  parse();
}

GltfDocument::~GltfDocument() = default;

void GltfDocument::fail(const std::string& text) const { throw FormatError(name_, 0, text); }

void GltfDocument::take(std::uint64_t count, std::uint64_t size) {
  if (!allowance_.take(count, size)) {
    fail("the file asks for more memory than " + std::to_string(GltfAllowance::kTimes) +
         " times its size; it is damaged, or many channels share one set of keys: export it again");
  }
}

std::string_view GltfDocument::json() const {
  if (!bytes_.starts_with("glTF") || bytes_.size() < kJsonBegin) return bytes_;
  return bytes_.substr(kJsonBegin, gltf_length_at(bytes_, 12));
}

// What follows the JSON text in a container; empty where nothing does.
std::string_view GltfDocument::binary_part() const {
  constexpr std::size_t kHeader = 8;
  const std::string_view text = json();
  const std::size_t begin = static_cast<std::size_t>(text.data() - bytes_.data()) + text.size();
  if (bytes_.size() - begin < kHeader) return {};
  const std::string_view part = bytes_.substr(begin + kHeader);
  return part.substr(0, gltf_length_at(bytes_, begin));
}

void GltfDocument::parse() {
  if (bytes_.starts_with("\xEF\xBB\xBF")) bytes_.remove_prefix(3);
  if (const std::size_t line = line_too_deep(json()); line != 0) {
    throw FormatError(name_, line,
                      "more than " + std::to_string(kMaxJsonDepth) +
                          " brackets inside each other in the JSON text; is this a glTF file? Export it again");
  }
  const cgltf_options options = options_with(memory_);
  cgltf_data* data = nullptr;
  const cgltf_result result = cgltf_parse(&options, bytes_.data(), bytes_.size(), &data);
  if (result != cgltf_result_success) data = is_about_content(result) ? parse_essentials() : nullptr;
  if (data == nullptr) fail_for(result);
  data_.reset(data);
  if (data->asset.version == nullptr) fail("there is no 'asset' with a 'version'; is this a glTF file?");
}

// Without what moves nothing; null where that is refused, too.
cgltf_data* GltfDocument::parse_essentials() {
  const std::string text = gltf_essentials(json());
  if (text.empty()) return nullptr;
  cgltf_options options = options_with(memory_);
  options.type = cgltf_file_type_gltf;
  cgltf_data* data = nullptr;
  if (cgltf_parse(&options, text.data(), text.size(), &data) != cgltf_result_success) return nullptr;
  data->json = nullptr;  // the text goes now; everything else is a copy
  data->json_size = 0;
  const std::string_view binary = binary_part();
  if (!binary.empty()) {
    data->bin = binary.data();
    data->bin_size = binary.size();
  }
  return data;
}

void GltfDocument::fail_for(int result) {
  switch (result) {
    case cgltf_result_data_too_short:
      fail("the file ends in the middle; it is cut off, export it again");
    case cgltf_result_unknown_format:
      fail("the binary container is not one of glTF 2.0; is this a .glb file? Export it again");
    case cgltf_result_legacy_gltf:
      fail("this is glTF 1.0; convert it to glTF 2.0");
    case cgltf_result_out_of_memory:
      take(UINT64_MAX, 1);
      break;
    default:
      break;
  }
  const GltfFault fault = find_fault(json());
  throw FormatError(name_, fault.line, fault.text);
}

std::string_view GltfDocument::bytes_of(const cgltf_buffer_view& view) {
  const std::string label = "buffer view " + std::to_string(&view - data_->buffer_views);
  const bool in_container = view.buffer->uri == nullptr && view.buffer == data_->buffers && data_->bin != nullptr;
  if (view.has_meshopt_compression && view.buffer->uri == nullptr && !in_container) {
    fail(label + " is compressed by EXT_meshopt_compression, which is not read; export without compression");
  }
  const std::string_view all = bytes_of(*view.buffer);
  if (view.offset > all.size() || view.size > all.size() - view.offset) {
    fail(label + " reaches beyond the end of its buffer; the file is damaged, export it again");
  }
  return all.substr(view.offset, view.size);
}

std::string_view GltfDocument::bytes_of(const cgltf_buffer& buffer) {
  const auto known = loaded_.find(&buffer);
  if (known != loaded_.end()) return {known->second.get(), buffer.size};
  const std::string label = "buffer " + std::to_string(&buffer - data_->buffers);
  if (buffer.uri == nullptr) {
    if (&buffer != data_->buffers || data_->bin == nullptr) {
      fail(label + " has neither a 'uri' nor bytes in the file; export it again");
    }
    if (buffer.size > data_->bin_size) fail(label + " is longer than the binary part of the file; export it again");
    return {static_cast<const char*>(data_->bin), buffer.size};
  }
  Bytes content =
      std::string_view(buffer.uri).starts_with("data:") ? decoded(buffer, label) : read_external(buffer, label);
  return {loaded_.emplace(&buffer, std::move(content)).first->second.get(), buffer.size};
}

GltfDocument::Bytes GltfDocument::decoded(const cgltf_buffer& buffer, const std::string& label) {
  constexpr std::string_view kMark = ";base64,";
  const std::string uri = gltf_text(buffer.uri);
  const std::size_t mark = uri.substr(0, 1024).find(kMark);
  if (mark == std::string::npos) fail(label + " is embedded, but not as base64; export it again");
  const std::size_t begin = mark + kMark.size();
  if (buffer.size > (uri.size() - begin) / 4 * 3 + 3) {
    fail(label + " holds fewer bytes than it says; the file is damaged, export it again");
  }
  const cgltf_options options = options_with(memory_);
  void* content = nullptr;
  if (cgltf_load_buffer_base64(&options, buffer.size, uri.c_str() + begin, &content) != cgltf_result_success) {
    fail(label + " is not complete base64 text; the file is damaged, export it again");
  }
  return {static_cast<char*>(memory_.hand_over(content)), std::free};
}

GltfDocument::Bytes GltfDocument::read_external(const cgltf_buffer& buffer, const std::string& label) {
  std::string path = gltf_text(buffer.uri);
  path.resize(cgltf_decode_uri(path.data()));
  const std::string named = label + " is the file " + shown(path);
  if (folder_.empty()) fail(named + ", and files beside this one cannot be read here; embed the buffer");
  if (!stays_below(path)) {
    fail(named + ", but only files in the scene's folder or below it are read; copy it there and name it so");
  }
  const std::filesystem::path file = folder_ / std::filesystem::path(std::u8string(path.begin(), path.end()));
  std::error_code error;
  if (!std::filesystem::exists(file, error)) fail(named + ", which is missing; put it beside the scene");
  if (!std::filesystem::is_regular_file(file, error))
    fail(named + ", which is not an ordinary file; export the scene again");
  const std::uint64_t size = std::filesystem::file_size(file, error);
  if (error || size < buffer.size) {
    fail(named + " and should be " + std::to_string(buffer.size) + " bytes, but has " + std::to_string(size) +
         "; export the scene again");
  }
  if (counted_.insert(file.lexically_normal()).second) allowance_.add_input(size);
  take(buffer.size, 1);
  const ReadOptions unheard;
  FileSource source(file, unheard);
  Bytes content(static_cast<char*>(std::malloc(buffer.size)), std::free);
  if (!content && buffer.size != 0) throw std::bad_alloc();
  std::size_t done = 0;
  while (done < buffer.size) {
    const std::size_t got = source.read(content.get() + done, buffer.size - done);
    if (got == 0) fail(named + ", which ends too early; export the scene again");
    done += got;
  }
  return content;
}

}  // namespace vantorelix::standalone
