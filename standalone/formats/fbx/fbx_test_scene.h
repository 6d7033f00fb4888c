// FBX files as text, for the tests of their reader.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "standalone/formats/reader.h"

namespace vantorelix::standalone {

// What a key does up to the next one, as FBX numbers it.
inline constexpr int kFbxStep = 0x2, kFbxStepNext = 0x102, kFbxLinear = 0x4, kFbxAuto = 0x108, kFbxBroken = 0xC08,
                     kFbxWeighted = 0x3000C08;

struct FbxKey {
  double frame;
  double value;
  int flags = kFbxLinear;
  float right_slope = 0.0f, next_left_slope = 0.0f;  // a second
  int right_weight = 3333, next_left_weight = 3333;  // ten-thousandths of the span
};

// Version 7.5, 24 frames a second, and in the "Lcl" properties everything at rest, unless told otherwise.
class FbxText {
 public:
  static constexpr double kTicks = 46186158000.0 / 24.0;
  struct Property {
    std::string name;
    std::vector<double> values;
  };
  using Properties = std::vector<Property>;

  FbxText& setting(const std::string& name, double value) {
    settings_ << property({name, {value}});
    return *this;
  }
  // Under the node named `parent`, or at the top.
  FbxText& node(const std::string& name, const std::string& parent = "", const Properties& properties = {},
                const std::string& kind = "Null") {
    const int id = begin("Model", "Model", name, kind);
    nodes_[name] = id;
    put(properties);
    connect(id, parent.empty() ? 0 : nodes_.at(parent));
    if (kind == "LimbNode") {
      const int attribute = begin("NodeAttribute", "NodeAttribute", "", kind);
      objects_ << "TypeFlags: \"Skeleton\"\n}\n";
      connect(attribute, id);
    }
    return *this;
  }
  // On a node that is there; its curves name it "<node> camera".
  FbxText& camera(const std::string& node, const Properties& properties) {
    const int id = begin("NodeAttribute", "NodeAttribute", "", "Camera");
    nodes_[node + " camera"] = id;
    put(properties);
    connect(id, nodes_.at(node));
    return *this;
  }
  FbxText& take(const std::string& name, double first, double last) {
    take_ = begin("AnimationStack", "AnimStack", name, "");
    objects_ << "Properties70: {\n" << time("LocalStart", first) << time("LocalStop", last) << "}\n}\n";
    return layer("BaseLayer");
  }
  FbxText& layer(const std::string& name, const Properties& properties = {}) {
    layer_ = begin("AnimationLayer", "AnimLayer", name, "");
    driven_.clear();
    put(properties);
    connect(layer_, take_);
    return *this;
  }
  // `beyond`: the letters of what comes before and after the keys, as in "RM"; with a number how often.
  FbxText& curve(const std::string& node, const std::string& property, char axis, const std::vector<FbxKey>& keys,
                 const std::string& beyond = "CC", int repeats = -1) {
    const int driven = driven_node(node, property);
    const int id = begin("AnimationCurve", "AnimCurve", "", "");
    put_keys(keys);
    objects_ << "Pre-Extrapolation: {\nType: " << beyond[0] << "\nRepetition: " << repeats
             << "\n}\nPost-Extrapolation: {\nType: " << beyond[1] << "\nRepetition: " << repeats << "\n}\n}\n";
    connections_ << "C: \"OP\"," << id << "," << driven << ", \"d|" << axis << "\"\n";
    return *this;
  }
  // One triangle as the geometry of a node.
  FbxText& triangle(const std::string& node, const std::array<double, 9>& corners) {
    const int id = begin("Geometry", "Geometry", node, "Mesh");
    objects_ << "Vertices: *9 {\na: ";
    for (std::size_t i = 0; i < corners.size(); ++i) objects_ << (i == 0 ? "" : ",") << corners[i];
    objects_ << "\n}\nPolygonVertexIndex: *3 {\na: 0,1,-3\n}\n}\n";
    connect(id, nodes_.at(node));
    geometries_[node] = id;
    return *this;
  }
  // A "Skin" or "BlendShape" on a node's geometry.
  FbxText& deformer(const std::string& node, const std::string& kind) {
    const int id = begin("Deformer", "Deformer", "", kind);
    objects_ << "Version: 101\n}\n";
    connect(id, geometries_.at(node));
    return *this;
  }
  FbxText& constraint(const std::string& type, const std::string& node) {
    const int id = begin("Constraint", "Constraint", "hold", type);
    objects_ << "Type: \"" << type << "\"\nProperties70: {\nP: \"Active\", \"bool\", \"\", \"\",1\n}\n}\n";
    connections_ << "C: \"OP\"," << nodes_.at(node) << "," << id << ", \"Constrained object (Child)\"\n";
    return *this;
  }
  // The property of one node drives the same one of another.
  FbxText& drive(const std::string& from, const std::string& to, const std::string& name) {
    connections_ << "C: \"PP\"," << nodes_.at(from) << ",\"" << name << "\"," << nodes_.at(to) << ",\"" << name
                 << "\"\n";
    return *this;
  }
  // A connection between any two nodes, even one that makes no sense.
  FbxText& hang(const std::string& node, const std::string& parent) {
    connect(nodes_.at(node), nodes_.at(parent));
    return *this;
  }

  std::string text() const {
    return "; FBX 7.5.0 project file\nFBXHeaderExtension: {\nFBXHeaderVersion: 1003\nFBXVersion: 7500\n}\n"
           "GlobalSettings: {\nVersion: 1000\nProperties70: {\n" +
           settings_.str() + "P: \"TimeMode\", \"enum\", \"\", \"\",11\n}\n}\nObjects: {\n" + objects_.str() +
           "}\nConnections: {\n" + connections_.str() + "}\nTakes: {\nCurrent: \"\"\n}\n";
  }

 private:
  static std::string property(const Property& p) {
    std::ostringstream out;
    out.precision(17);
    const bool is_integer = p.values.size() == 1 && p.values[0] == static_cast<int>(p.values[0]);
    out << "P: \"" << p.name << "\", \""
        << (p.values.size() == 3 ? "Vector3D"
            : is_integer         ? "int"
                                 : "double")
        << "\", \"\", \"A\"";
    for (const double value : p.values) out << "," << value;
    out << "\n";
    return out.str();
  }
  static std::string time(const std::string& name, double frame) {
    return "P: \"" + name + "\", \"KTime\", \"Time\", \"\"," + ticks(frame) + "\n";
  }
  static std::string ticks(double frame) { return std::to_string(std::llround(frame * kTicks)); }

  int begin(const std::string& element, const std::string& space, const std::string& name, const std::string& kind) {
    const int id = ++last_id_;
    objects_ << element << ": " << id << ", \"" << space << "::" << name << "\", \"" << kind << "\" {\n";
    return id;
  }
  void put(const Properties& properties) {
    objects_ << "Properties70: {\n";
    for (const Property& p : properties) objects_ << property(p);
    objects_ << "}\n}\n";
  }
  void connect(int id, int parent) { connections_ << "C: \"OO\"," << id << "," << parent << "\n"; }

  int driven_node(const std::string& node, const std::string& name) {
    int& id = driven_[{node, name}];
    if (id != 0) return id;
    id = begin("AnimationCurveNode", "AnimCurveNode", "T", "");
    const double rest = name == "Lcl Scaling" ? 1.0 : 0.0;
    put({{"d|X", {rest}}, {"d|Y", {rest}}, {"d|Z", {rest}}});
    connect(id, layer_);
    connections_ << "C: \"OP\"," << id << "," << nodes_.at(node) << ", \"" << name << "\"\n";
    return id;
  }
  void put_keys(const std::vector<FbxKey>& keys) {
    std::ostringstream times, values, flags, data, counts;
    values.precision(17);
    const char* comma = "";
    for (const FbxKey& key : keys) {
      times << comma << ticks(key.frame);
      values << comma << key.value;
      flags << comma << key.flags;
      data << comma << std::bit_cast<std::int32_t>(key.right_slope) << ","
           << std::bit_cast<std::int32_t>(key.next_left_slope) << "," << (key.next_left_weight << 16 | key.right_weight)
           << ",0";
      counts << comma << 1;
      comma = ",";
    }
    const auto array = [&](const char* name, std::size_t count, const std::ostringstream& list) {
      objects_ << name << ": *" << count << " {\na: " << list.str() << "\n}\n";
    };
    array("KeyTime", keys.size(), times);
    array("KeyValueFloat", keys.size(), values);
    array("KeyAttrFlags", keys.size(), flags);
    array("KeyAttrDataFloat", keys.size() * 4, data);
    array("KeyAttrRefCount", keys.size(), counts);
  }

  std::ostringstream settings_, objects_, connections_;
  std::map<std::string, int> nodes_, geometries_;
  std::map<std::pair<std::string, std::string>, int> driven_;
  int last_id_ = 1000, take_ = 0, layer_ = 0;
};

inline Scene read(const FbxText& file, const ReadOptions& options = {}) {
  return read_fbx(file.text(), "scene.fbx", options);
}

inline std::string fbx_error(const std::string& bytes, const ReadOptions& options = {}) {
  try {
    read_fbx(bytes, "scene.fbx", options);
  } catch (const FormatError& error) {
    return error.what();
  }
  return "no error";
}

inline Vector place(const Scene& scene, const std::string& name, double frame = 0.0) {
  return scene.evaluation.world_matrix(scene.names.require(name), frame).translation();
}

inline void expect_at(const Scene& scene, const std::string& name, double frame, double x, double y, double z) {
  const Vector p = place(scene, name, frame);
  EXPECT_NEAR(p.x, x, 1e-6) << name << " at " << frame;
  EXPECT_NEAR(p.y, y, 1e-6) << name << " at " << frame;
  EXPECT_NEAR(p.z, z, 1e-6) << name << " at " << frame;
}

// A ball and two takes that move it along x and y.
inline FbxText ramp() {
  return std::move(FbxText()
                       .node("ball")
                       .take("walk", 1, 12)
                       .curve("ball", "Lcl Translation", 'X', {{0, 0}, {10, 20}})
                       .take("run", 0, 30)
                       .curve("ball", "Lcl Translation", 'Y', {{0, 0}, {10, 40}}));
}

}  // namespace vantorelix::standalone
