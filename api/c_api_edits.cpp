// Keys: reading and changing them, taking that back, and trails that follow.
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "api/c_api.h"
#include "api/calls.h"
#include "api/texts.h"
#include "base/number_text.h"
#include "session/edits.h"

using vantorelix::api::guarded;
using vantorelix::api::hand_out;
using vantorelix::api::own;
namespace api = vantorelix::api;
namespace sa = vantorelix::standalone;
namespace session = vantorelix::session;

using Kind = session::LiveEvent::Kind;

namespace {

// An edit of a channel of an object at a frame. What is given is a value or another frame, as the kind of edit has it.
int edit(VlxScene* scene, Kind kind, const char* object, const char* attribute, double frame, double given) {
  return guarded([&] {
    const api::ChannelOfObject found = api::channel_of(*scene, object, attribute);
    session::LiveEvent event;
    event.kind = kind;
    event.where = scene->file();
    event.node = found.node;
    event.channel = found.channel;
    event.frame = frame;
    event.value = event.to = given;
    scene->edit(event);
  });
}

void append(const sa::Key& key, std::vector<double>& numbers) {
  numbers.insert(numbers.end(), {key.time, key.value, static_cast<double>(key.in), static_cast<double>(key.out),
                                 key.in_x, key.in_y, key.out_x, key.out_y});
}

sa::Tangent tangent_of(double number) {
  constexpr double kSorts[] = {0, 1, 2, 3, 5, 6, 7, 9, 10, 16, 17, 18, 19, 20, 21};
  if (std::find(std::begin(kSorts), std::end(kSorts), number) == std::end(kSorts))
    throw std::runtime_error("there is no tangent of the sort " + vantorelix::number_text(number) +
                             "; give one of those in api/c_api.h");
  return static_cast<sa::Tangent>(number);
}

}  // namespace

int vlx_key_times(VlxScene* scene, const char* object, VlxArray* times) {
  return guarded([&] {
    std::vector<double>& numbers = api::numbers_handed_out();
    numbers = scene->scene().curves.key_times(scene->object(object));
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    *times = {numbers.data(), numbers.size()};
  });
}

int vlx_curves(VlxScene* scene, const char* object, const char** json) {
  return guarded([&] { hand_out(api::curves_of(*scene, scene->object(object)), json); });
}

int vlx_keys(VlxScene* scene, const char* object, const char* attribute, VlxArray* keys) {
  return guarded([&] {
    const api::ChannelOfObject found = api::channel_of(*scene, object, attribute);
    std::vector<double>& numbers = api::numbers_handed_out();
    numbers.clear();
    const auto& curves = scene->scene().curves;
    const sa::NodeId curve = curves.driving_curve(found.node, found.channel);
    if (curve != sa::kNoNode)
      for (const sa::Key& key : curves.at(curve).keys()) append(key, numbers);
    *keys = {numbers.data(), numbers.size()};
  });
}

int vlx_channel_values(VlxScene* scene, const char* object, const char* attribute, const double* frames,
                       std::size_t count, double* values) {
  return guarded([&] {
    const api::ChannelOfObject found = api::channel_of(*scene, object, attribute);
    for (std::size_t i = 0; i < count; ++i)
      values[i] = scene->scene().evaluation.channel_at(found.node, found.channel, frames[i]);
  });
}

int vlx_set_key(VlxScene* scene, const char* object, const char* attribute, double frame, double value) {
  return edit(scene, Kind::set_key, object, attribute, frame, value);
}

int vlx_move_key(VlxScene* scene, const char* object, const char* attribute, double frame, double to) {
  return edit(scene, Kind::move_key, object, attribute, frame, to);
}

int vlx_remove_key(VlxScene* scene, const char* object, const char* attribute, double frame) {
  return edit(scene, Kind::remove_key, object, attribute, frame, 0.0);
}

int vlx_put_key(VlxScene* scene, const char* object, const char* attribute, const double* numbers) {
  return guarded([&] {
    const api::ChannelOfObject found = api::channel_of(*scene, object, attribute);
    sa::Key key{numbers[0], numbers[1], tangent_of(numbers[2]), tangent_of(numbers[3]), numbers[4], numbers[5],
                numbers[6], numbers[7]};
    scene->put_key(found.node, found.channel, key);
  });
}

int vlx_keep_history(VlxScene* scene, int kept) {
  return guarded([&] { scene->keep_history(kept != 0); });
}

int vlx_open_step(VlxScene* scene, const char* name) {
  return guarded([&] { scene->history().open_chunk(name); });
}

int vlx_close_step(VlxScene* scene) {
  return guarded([&] { scene->history().close_chunk(); });
}

int vlx_undo(VlxScene* scene) {
  return guarded([&] { scene->undo(); });
}

int vlx_redo(VlxScene* scene) {
  return guarded([&] { scene->redo(); });
}

int vlx_history(VlxScene* scene, const char** json) {
  return guarded([&] { hand_out(api::history_of(*scene), json); });
}

int vlx_follow(VlxScene* scene) {
  return guarded([&] { scene->follow(); });
}

int vlx_pump(VlxScene* scene, double seconds, VlxProgress* progress) {
  return guarded([&] {
    const api::Progress made = scene->pump(seconds);
    *progress = {made.pending ? 1 : 0, made.worked ? 1 : 0, made.item, made.items};
  });
}

int vlx_trail_now(VlxTrailSet* set, std::size_t index, VlxTrailArrays* arrays, std::size_t* revision) {
  return guarded([&] {
    *arrays = api::arrays_of(own(set)->report().trails.at(index));
    *revision = own(set)->revision(index);
  });
}
