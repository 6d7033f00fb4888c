// The page that shows trails, with the trails in it: one file, which needs nothing else.
//
// The page holds <!--trails--> once. In its place stand two blocks of data, which no script runs:
//
//   <script type="application/json" id="trails-header">{...}</script>
//   <script type="application/octet-stream" id="trails-data">base64 of the sections of trail_data.h</script>
//
// The header is one object. <, >, & and the two line ends that only Unicode has are written as \uXXXX, so that no name
// ends the block; bytes that are not UTF-8 are replaced; a number that is not finite is null.
//
//   format 1, scene, fps, range [first, last], current (frame), unit, up_axis
//   compare          {scene, take (or null)} of the second scene; null where there is none
//   color_mode_chosen  whether an option or a preference named the colour mode
//   key_time_bytes   4 or 8
//   sections         {positions, key_positions, key_times, colors, compared}: bytes from the start of the data
//   bytes            of all sections
//   measures         [{name, unit}], what the measures of the trails are
//   trails           [{viz, source, name, parent (or null), samples_per_frame, color_mode, start_frame, frame_step,
//                    line_width, point_size, show_line, show_dots, ghost, count (samples), low [x, y, z], step [x, y,
//                    z], keys (how many), keys_on_samples, warnings, measures (null where one is not known), compare
//                    (or null): {source, low, step} of the same object in the second scene}]
//   statics          [{name, matrix (16 numbers, row vectors), low, high}]
#pragma once

#include <functional>
#include <string_view>

#include "base/text_sink.h"
#include "session/report.h"

namespace vantorelix::cli {

void write_html(TextSink& out, const session::TrailReport& report);

// The page with `policy` for its own, and in the place of the data what `blocks` writes.
void write_page(TextSink& out, std::string_view policy, const std::function<void()>& blocks);

}  // namespace vantorelix::cli
