// The numbers behind an accessor. The library's own way trusts the file's offsets and reads floats wherever they lie.
#include <cgltf.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "standalone/formats/gltf/gltf_document.h"

namespace vantorelix::standalone {
namespace {

template <class T>
T value_at(const char* p) {
  T value;
  std::memcpy(&value, p, sizeof value);
  return value;
}

std::size_t size_of(cgltf_component_type type) {
  switch (type) {
    case cgltf_component_type_r_8:
    case cgltf_component_type_r_8u:
      return 1;
    case cgltf_component_type_r_16:
    case cgltf_component_type_r_16u:
      return 2;
    case cgltf_component_type_r_32u:
    case cgltf_component_type_r_32f:
      return 4;
    default:
      return 0;
  }
}

// Integers are normalised.
double component(const char* p, cgltf_component_type type) {
  switch (type) {
    case cgltf_component_type_r_8:
      return std::max(value_at<std::int8_t>(p) / 127.0, -1.0);
    case cgltf_component_type_r_8u:
      return value_at<std::uint8_t>(p) / 255.0;
    case cgltf_component_type_r_16:
      return std::max(value_at<std::int16_t>(p) / 32767.0, -1.0);
    case cgltf_component_type_r_16u:
      return value_at<std::uint16_t>(p) / 65535.0;
    default:
      return static_cast<double>(value_at<float>(p));
  }
}

std::size_t index_at(const char* p, cgltf_component_type type) {
  switch (type) {
    case cgltf_component_type_r_8u:
      return value_at<std::uint8_t>(p);
    case cgltf_component_type_r_16u:
      return value_at<std::uint16_t>(p);
    default:
      return value_at<std::uint32_t>(p);
  }
}

// In a row, at any address.
bool all_finite(const char* floats, std::size_t count) {
  bool finite = true;
  for (std::size_t i = 0; i < count; ++i)
    finite &= std::abs(value_at<float>(floats + i * sizeof(float))) <= std::numeric_limits<float>::max();
  return finite;
}

bool all_finite(const double* numbers, std::size_t count) {
  return std::all_of(numbers, numbers + count, [](double number) { return std::isfinite(number); });
}

// Elements of `size` bytes, `stride` apart.
struct Elements {
  std::size_t offset, size, stride, count;

  bool lie_within(std::string_view bytes) const {
    if (count == 0) return true;
    return offset <= bytes.size() && size <= bytes.size() - offset &&
           (count - 1) <= (bytes.size() - offset - size) / stride;
  }
};

}  // namespace

bool GltfNumbers::are_finite(std::size_t elements, std::size_t width) const {
  if (floats_ == nullptr) return all_finite(own_.data(), own_.size());
  if (stride_ == width * sizeof(float)) return all_finite(floats_, elements * width);
  bool finite = true;
  for (std::size_t i = 0; i < elements; ++i) finite &= all_finite(floats_ + i * stride_, width);
  return finite;
}

std::string GltfDocument::label(const cgltf_accessor& accessor) const {
  return "accessor " + std::to_string(&accessor - data_->accessors);
}

GltfNumbers GltfDocument::numbers(const cgltf_accessor& accessor) {
  const cgltf_component_type type = accessor.component_type;
  const std::size_t width = cgltf_num_components(accessor.type), size = size_of(type);
  if (size == 0 || type == cgltf_component_type_r_32u) {
    fail(label(accessor) + " is of a component type that animation does not have; export the file again");
  }
  if (type != cgltf_component_type_r_32f && !accessor.normalized) {
    fail(label(accessor) + " holds integers that are not marked as normalized; export the file again");
  }
  const char* first = nullptr;  // none: zeros
  if (accessor.buffer_view != nullptr) {
    const std::string_view bytes = bytes_of(*accessor.buffer_view);
    const Elements all = {accessor.offset, width * size, accessor.stride, accessor.count};
    if (all.stride < all.size || !all.lie_within(bytes)) {
      fail(label(accessor) + " reaches beyond the end of its buffer view; the file is damaged, export it again");
    }
    first = bytes.data() + all.offset;
  }
  take(accessor.count, width * sizeof(double));  // also where they stay: channels that share them look through them all
  const bool as_they_lie = first != nullptr && type == cgltf_component_type_r_32f && !accessor.is_sparse;
  GltfNumbers numbers = as_they_lie ? GltfNumbers(first, accessor.stride)
                                    : GltfNumbers(decoded_numbers(accessor, first, width, size), width);
  if (!numbers.are_finite(accessor.count, width))
    fail(label(accessor) + " holds a number that is not finite; correct it or export again");
  return numbers;
}

std::vector<double> GltfDocument::decoded_numbers(const cgltf_accessor& accessor, const char* first, std::size_t width,
                                                  std::size_t size) {
  std::vector<double> values(accessor.count * width, 0.0);
  if (first != nullptr) {
    for (std::size_t i = 0; i < accessor.count; ++i, first += accessor.stride) {
      for (std::size_t k = 0; k < width; ++k)
        values[i * width + k] = component(first + k * size, accessor.component_type);
    }
  }
  if (accessor.is_sparse) place_sparse(accessor, width, values);
  return values;
}

void GltfDocument::place_sparse(const cgltf_accessor& accessor, std::size_t width, std::vector<double>& values) {
  const std::string part = "the sparse part of " + label(accessor);
  const cgltf_accessor_sparse& sparse = accessor.sparse;
  const cgltf_component_type index_type = sparse.indices_component_type;
  const bool is_index = index_type == cgltf_component_type_r_8u || index_type == cgltf_component_type_r_16u ||
                        index_type == cgltf_component_type_r_32u;
  if (!is_index) fail(part + " has indices that are not unsigned integers; export the file again");
  const std::size_t index_size = size_of(index_type), size = size_of(accessor.component_type);
  const std::string_view indices = bytes_of(*sparse.indices_buffer_view);
  const std::string_view replacements = bytes_of(*sparse.values_buffer_view);
  const Elements index = {sparse.indices_byte_offset, index_size, index_size, sparse.count};
  const Elements element = {sparse.values_byte_offset, width * size, width * size, sparse.count};
  if (sparse.count > accessor.count || !index.lie_within(indices) || !element.lie_within(replacements)) {
    fail(part + " reaches beyond the end of its buffer view; the file is damaged, export it again");
  }
  for (std::size_t i = 0; i < sparse.count; ++i) {
    const std::size_t at = index_at(indices.data() + index.offset + i * index_size, index_type);
    if (at >= accessor.count) fail(part + " has an index beyond its end; the file is damaged, export it again");
    const char* const from = replacements.data() + element.offset + i * element.stride;
    for (std::size_t k = 0; k < width; ++k) {
      values[at * width + k] = component(from + k * size, accessor.component_type);
    }
  }
}

}  // namespace vantorelix::standalone
