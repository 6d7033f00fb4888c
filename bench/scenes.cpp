#include "bench/scenes.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace vantorelix::bench {

using standalone::Channel;
using standalone::kWorld;
using standalone::NodeId;
using standalone::Scene;

namespace {

constexpr int kKeys = 5;
constexpr std::array kKeyed = {Channel::translateX, Channel::translateY, Channel::translateZ,
                               Channel::rotateX,    Channel::rotateY,    Channel::rotateZ};

double key_value(int object, int channel, int key) {
  const double wave = std::sin(1.7 * key + 0.9 * channel + 0.37 * object);
  return channel < 3 ? 10.0 * wave : 45.0 * wave * std::numbers::pi / 180.0;
}

NodeId add_keyed(Scene& scene, int object, NodeId parent, int frames) {
  const NodeId node = scene.nodes.create("transform", "object" + std::to_string(object), parent);
  for (int channel = 0; channel < 6; ++channel)
    for (int key = 0; key < kKeys; ++key)
      scene.curves.set_key(node, kKeyed[static_cast<std::size_t>(channel)], 1.0 + (frames - 1.0) * key / (kKeys - 1),
                           key_value(object, channel, key));
  return node;
}

void append(std::string& text, const char* format, double value) {
  std::array<char, 64> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), format, value);
  text.append(buffer.data(), static_cast<std::size_t>(length));
}

void append_limb(std::string& text, int limb, int joints) {
  for (int depth = 0; depth < joints; ++depth) {
    text += "JOINT limb" + std::to_string(limb) + "_" + std::to_string(depth) + "\n{\nOFFSET ";
    append(text, "%.3f ", limb - 2.0);
    append(text, "%.3f 0.5\n", 3.0 + 0.1 * depth);
    text += "CHANNELS 3 Zrotation Xrotation Yrotation\n";
  }
  text += "End Site\n{\nOFFSET 0 1 0\n}\n";
  for (int depth = 0; depth < joints; ++depth) text += "}\n";
}

}  // namespace

Stage separate_objects(int objects, int frames) {
  Stage stage;
  stage.scene.settings.set_playback_range(1, frames);
  for (int i = 0; i < objects; ++i) stage.objects.push_back(add_keyed(stage.scene, i, kWorld, frames));
  return stage;
}

Stage chain(int links, int frames) {
  Stage stage;
  stage.scene.settings.set_playback_range(1, frames);
  NodeId last = kWorld;
  for (int i = 0; i < links; ++i) last = add_keyed(stage.scene, i, last, frames);
  stage.objects = {last};
  return stage;
}

Stage binary_tree(int objects, int frames) {
  Stage stage;
  stage.scene.settings.set_playback_range(1, frames);
  for (int i = 0; i < objects; ++i) {
    const NodeId parent = i == 0 ? kWorld : stage.objects[static_cast<std::size_t>((i - 1) / 2)];
    stage.objects.push_back(add_keyed(stage.scene, i, parent, frames));
  }
  return stage;
}

std::string bvh_text(int joints, int frames) {
  constexpr int kLimbs = 5;
  std::string text = "HIERARCHY\nROOT hips\n{\nOFFSET 0 0 0\n";
  text += "CHANNELS 6 Xposition Yposition Zposition Zrotation Xrotation Yrotation\n";
  for (int limb = 0; limb < kLimbs; ++limb)
    append_limb(text, limb, (joints - 1) / kLimbs + (limb < (joints - 1) % kLimbs ? 1 : 0));
  text += "}\nMOTION\nFrames: " + std::to_string(frames) + "\nFrame Time: 0.0333333\n";
  const int channels = 6 + 3 * (joints - 1);
  for (int frame = 0; frame < frames; ++frame) {
    for (int channel = 0; channel < channels; ++channel) {
      if (channel != 0) text += ' ';
      append(text, "%.4f", 40.0 * std::sin(0.02 * frame + 0.37 * channel));
    }
    text += '\n';
  }
  return text;
}

}  // namespace vantorelix::bench
