// What the fuzzers do with a scene that a reader accepted.
#pragma once

#include <vector>

#include "host/error.h"
#include "standalone/formats/reader.h"
#include "standalone/formats/writer.h"
#include "standalone/scene/evaluation/evaluator.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

inline ReadOptions with_bounds() {
  ReadOptions options;
  options.bounds = true;
  return options;
}

// Asks for what the program would: positions by both ways, keys, names, drivers. Few nodes and frames, so that a run
// spends its time in the reader. Traps where the two ways disagree.
inline void use(const Scene& scene) {
  int left = 8;
  for (const NodeId node : scene.nodes.all()) {
    if (!scene.nodes.is_transform(node)) continue;
    if (left-- == 0) break;
    Evaluator evaluator(scene.evaluation, node);
    for (const double frame : {scene.settings.playback_min(), 0.0, 0.5, 7.25, scene.settings.playback_max()}) {
      const Vector a = evaluator.translation(frame);
      const Vector b = scene.evaluation.world_matrix(node, frame).translation();
      const auto same = [](double x, double y) { return x == y || (x != x && y != y); };
      if (!same(a.x, b.x) || !same(a.y, b.y) || !same(a.z, b.z)) __builtin_trap();
    }
    name_in_file(scene, node);
    scene.names.long_name(node);
    scene.curves.key_times(node);
    scene.evaluation.is_animated(node);
    scene.evaluation.not_followed(node);
  }
  scene.warnings.all();
}

// What a reader accepted is written in the same form, which it accepts again; traps where it does not.
template <class Write, class Read>
void write_and_read(const Scene& scene, const Write& write, const Read& read) {
  std::vector<NodeId> objects;
  for (const NodeId node : scene.nodes.all())
    if (scene.nodes.is_transform(node)) objects.push_back(node);
  Written written;
  try {
    written = write(objects);
  } catch (const CannotWrite&) {
    return;
  }
  try {
    read(written.bytes);
  } catch (const FormatError&) {
    __builtin_trap();
  }
}

}  // namespace vantorelix::standalone
