// glTF files put together piece by piece, for the tests of their reader.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "standalone/formats/reader.h"

namespace vantorelix::standalone {

inline std::string base64(const std::string& bytes) {
  static constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t group = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0u);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      result += i + k <= bytes.size() ? kDigits[group >> (18 - 6 * k) & 63] : '=';
    }
  }
  return result;
}

template <class T>
std::string bytes_of(const std::vector<T>& values) {
  std::string result(values.size() * sizeof(T), '\0');
  if (!values.empty()) std::memcpy(result.data(), values.data(), result.size());
  return result;
}

class GltfFile {
 public:
  // JSON of the node's properties: R"("name": "a", "children": [1])". Its number is that of the call.
  GltfFile& node(const std::string& properties) {
    nodes_.push_back("{" + properties + "}");
    return *this;
  }
  std::size_t view(const std::string& bytes, const std::string& more = "") {
    while (buffer_.size() % 4 != 0) buffer_ += '\0';
    views_.push_back(R"({"buffer": 0, "byteOffset": )" + std::to_string(buffer_.size()) + R"(, "byteLength": )" +
                     std::to_string(bytes.size()) + more + "}");
    buffer_ += bytes;
    return views_.size() - 1;
  }
  std::size_t accessor(const std::string& properties) {
    accessors_.push_back("{" + properties + "}");
    return accessors_.size() - 1;
  }
  std::size_t values(const std::string& bytes, int component, const std::string& type, std::size_t count,
                     const std::string& more = "") {
    return accessor(R"("bufferView": )" + std::to_string(view(bytes)) + R"(, "componentType": )" +
                    std::to_string(component) + R"(, "type": ")" + type + R"(", "count": )" + std::to_string(count) +
                    more);
  }
  std::size_t scalars(const std::vector<float>& v) { return values(bytes_of(v), 5126, "SCALAR", v.size()); }
  std::size_t triples(const std::vector<float>& v) { return values(bytes_of(v), 5126, "VEC3", v.size() / 3); }
  std::size_t quadruples(const std::vector<float>& v) { return values(bytes_of(v), 5126, "VEC4", v.size() / 4); }

  GltfFile& clip(const std::string& name) {
    clips_.push_back({name, {}, {}});
    return *this;
  }
  // Adds to the last clip; the first one needs no name.
  GltfFile& channel(int node, const std::string& path, std::size_t times, std::size_t values,
                    const std::string& interpolation = "LINEAR") {
    if (clips_.empty()) clip("");
    Clip& c = clips_.back();
    c.channels.push_back(R"({"sampler": )" + std::to_string(c.samplers.size()) + R"(, "target": {"node": )" +
                         std::to_string(node) + R"(, "path": ")" + path + "\"}}");
    c.samplers.push_back(R"({"input": )" + std::to_string(times) + R"(, "output": )" + std::to_string(values) +
                         R"(, "interpolation": ")" + interpolation + "\"}");
    return *this;
  }
  // Further members of the whole.
  GltfFile& add(const std::string& members) {
    more_ += ", " + members;
    return *this;
  }
  GltfFile& buffer(const std::string& json) {
    own_buffer_ = json;
    return *this;
  }

  std::string text() const {
    return json(R"("uri": "data:application/octet-stream;base64,)" + base64(buffer_) + "\", ");
  }
  std::string binary() const {
    std::string text = json("");
    while (text.size() % 4 != 0) text += ' ';
    std::string bin = buffer_;
    while (bin.size() % 4 != 0) bin += '\0';
    const std::uint32_t size = static_cast<std::uint32_t>(12 + 8 + text.size() + 8 + bin.size());
    return "glTF" + word(2) + word(size) + word(static_cast<std::uint32_t>(text.size())) + "JSON" + text +
           word(static_cast<std::uint32_t>(bin.size())) + std::string("BIN\0", 4) + bin;
  }

 private:
  struct Clip {
    std::string name;
    std::vector<std::string> channels, samplers;
  };

  static std::string word(std::uint32_t v) {
    std::string result;
    for (int i = 0; i < 4; ++i) result += static_cast<char>(v >> (8 * i));
    return result;
  }
  static std::string list(const std::vector<std::string>& items) {
    std::string result = "[";
    for (const std::string& item : items) result += (result.size() == 1 ? "" : ", ") + item;
    return result + "]";
  }
  std::string json(const std::string& uri) const {
    std::vector<std::string> clips;
    for (const Clip& c : clips_) {
      clips.push_back((c.name.empty() ? "{" : R"({"name": ")" + c.name + "\", ") + R"("channels": )" +
                      list(c.channels) + R"(, "samplers": )" + list(c.samplers) + "}");
    }
    const std::string buffer =
        own_buffer_.empty() ? "{" + uri + R"("byteLength": )" + std::to_string(buffer_.size()) + "}" : own_buffer_;
    return R"({"asset": {"version": "2.0"}, "nodes": )" + list(nodes_) + R"(, "animations": )" + list(clips) +
           R"(, "accessors": )" + list(accessors_) + R"(, "bufferViews": )" + list(views_) + R"(, "buffers": [)" +
           buffer + "]" + more_ + "}";
  }

  std::vector<std::string> nodes_, views_, accessors_;
  std::vector<Clip> clips_;
  std::string buffer_, more_, own_buffer_;
};

inline std::string gltf_error(const std::string& bytes, const ReadOptions& options = {}) {
  try {
    read_gltf(bytes, "scene.gltf", {}, options);
  } catch (const FormatError& error) {
    return error.what();
  }
  return "no error";
}

// A scene that must hold nothing to warn of.
inline Scene clean_gltf(const std::string& bytes, const ReadOptions& options = {}) {
  Scene scene = read_gltf(bytes, "scene.gltf", {}, options);
  for (const Warning& warning : scene.warnings.all()) ADD_FAILURE() << warning.kind;
  return scene;
}

inline void expect_place(const Scene& scene, const std::string& name, double frame, const Vector& wanted,
                         double tolerance = 1e-12) {
  const Vector p = scene.evaluation.world_matrix(scene.names.require(name), frame).translation();
  EXPECT_NEAR(p.x, wanted.x, tolerance) << name << " at " << frame;
  EXPECT_NEAR(p.y, wanted.y, tolerance) << name << " at " << frame;
  EXPECT_NEAR(p.z, wanted.z, tolerance) << name << " at " << frame;
}

}  // namespace vantorelix::standalone
