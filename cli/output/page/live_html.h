// The live page: the engine in it, and where it is to open a scene at once, that.
//
//   <script type="text/plain" id="engine-worker">the script of its Worker</script>
//   <script type="application/octet-stream" id="engine-wasm">base64 of the engine as WebAssembly, by gzip</script>
//   <script type="application/json" id="scene-header">{...}</script>
//   <script type="application/octet-stream" id="scene-data">base64 of the scene's files, one after the other</script>
//
// The header is one object, in which texts are as those of html.h:
//
//   format 1, name, files [{name, bytes}] with the scene first
//   reading          {take, axis, unit, fps}: empty or 0 where nobody chose
//   trails           {patterns, exclude, ignoreCase, all, samplesPerFrame, colorMode, first, last}, likewise; null for
//                    the last three
//   frame, lineWidth, pointSize, showLine, showDots, ghost: likewise null
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/text_sink.h"
#include "session/selection.h"

namespace vantorelix::cli {

struct LiveFile {
  std::string name;  // relative to the scene's folder, with "/" between folders
  std::string bytes;
};

struct LiveScene {
  std::string name;  // the file as it was named
  std::vector<LiveFile> files;
  std::string take, axis, unit;
  double fps = 0.0;
  session::Selection selection;
  std::int64_t samples_per_frame = 0;
  std::optional<std::int64_t> color_mode;
  std::optional<double> first, last, frame, line_width, point_size;
  std::optional<bool> show_line, show_dots, ghost;
};

// Throws Failure where the program was built without the engine for pages.
void check_engine();

// With a scene, or null for a page that waits for one. Throws as check_engine.
void write_live_html(TextSink& out, const LiveScene* scene);

}  // namespace vantorelix::cli
