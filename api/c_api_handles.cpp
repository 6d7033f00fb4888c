// What handles of keys in a view do: places in the world, times, tangents, and trails while they are dragged.
#include <cmath>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "api/c_api.h"
#include "api/calls.h"
#include "api/texts.h"
#include "session/editing/beads.h"
#include "session/editing/key_edits.h"
#include "session/editing/placing.h"
#include "session/editing/provisional.h"
#include "standalone/scene/curves/key_tangents.h"

using vantorelix::api::guarded;
using vantorelix::api::hand_out;
using vantorelix::api::own;
namespace api = vantorelix::api;
namespace sa = vantorelix::standalone;
namespace session = vantorelix::session;

namespace {

sa::NodeId curve_of(const VlxScene& scene, const char* object, const std::string& attribute) {
  const api::ChannelOfObject found = api::channel_of(scene, object, attribute);
  const sa::NodeId curve = scene.scene().curves.driving_curve(found.node, found.channel);
  if (curve == sa::kNoNode)
    throw api::NotFound(scene.file() + ": no curve drives " + scene.scene().names.unique_name(found.node) + "." +
                        attribute + "; set a key first");
  return curve;
}

// Of one channel, or of all of an object.
session::Curves curves_of(const VlxScene& scene, const char* object, const char* attribute) {
  const std::string channel = api::text_of(attribute);
  if (channel.empty()) return scene.scene().curves.driving_curves(scene.object(object));
  return {curve_of(scene, object, channel)};
}

// An edit of those curves, as a step with a name.
template <class Work>
int edit(VlxScene* scene, const char* name, const char* object, const char* attribute, const Work& work) {
  return guarded([&] {
    const session::Curves curves = curves_of(*scene, object, attribute);
    scene->change(name, [&](sa::Scene& edited) { work(edited, curves); });
  });
}

double end_or(double frame, double otherwise) { return std::isnan(frame) ? otherwise : frame; }

}  // namespace

int vlx_placing(VlxScene* scene, const char* object, double frame, const char** json) {
  return guarded([&] { hand_out(api::placing_of(*scene, scene->object(object), frame), json); });
}

int vlx_place_key(VlxScene* scene, const char* object, double frame, const double* place) {
  return guarded([&] {
    const sa::NodeId node = scene->object(object);
    scene->change("place key", [&](sa::Scene& edited) {
      session::place(edited, node, frame, {place[0], place[1], place[2]});
    });
  });
}

int vlx_sliding(VlxScene* scene, const char* object, double frame, const char** json) {
  return guarded([&] { hand_out(api::sliding_of(*scene, scene->object(object), frame), json); });
}

int vlx_slide_bead(VlxScene* scene, const char* object, double frame, double to, int alone_before, int alone_after) {
  return guarded([&] {
    const sa::NodeId node = scene->object(object);
    scene->change("change spacing", [&](sa::Scene& edited) {
      session::slide(edited, node, frame, to, {alone_before != 0, alone_after != 0});
    });
  });
}

int vlx_move_keys(VlxScene* scene, const char* object, const char* attribute, double frame, double to) {
  return edit(scene, "move keys", object, attribute,
              [&](sa::Scene& edited, const session::Curves& curves) { session::move_keys(edited, curves, frame, to); });
}

int vlx_insert_keys(VlxScene* scene, const char* object, const char* attribute, double frame) {
  return edit(scene, "insert keys", object, attribute,
              [&](sa::Scene& edited, const session::Curves& curves) { session::insert_keys(edited, curves, frame); });
}

int vlx_remove_keys(VlxScene* scene, const char* object, const char* attribute, double frame) {
  return edit(scene, "remove keys", object, attribute,
              [&](sa::Scene& edited, const session::Curves& curves) { session::remove_keys(edited, curves, frame); });
}

int vlx_set_tangent(VlxScene* scene, const char* object, const char* attribute, double frame, int out, double x,
                    double y, int unified) {
  return guarded([&] {
    const sa::NodeId curve = curve_of(*scene, object, api::text_of(attribute));
    const session::Side side = out != 0 ? session::Side::out : session::Side::in;
    scene->change("set tangent", [&](sa::Scene& edited) {
      session::set_tangent(edited, curve, frame, side, {x, y}, unified != 0);
    });
  });
}

int vlx_set_weighted(VlxScene* scene, const char* object, const char* attribute, int weighted) {
  return guarded([&] {
    const sa::NodeId curve = curve_of(*scene, object, api::text_of(attribute));
    scene->change("weigh tangents", [&](sa::Scene& edited) { session::set_weighted(edited, curve, weighted != 0); });
  });
}

int vlx_tangents(VlxScene* scene, const char* object, const char* attribute, VlxArray* tangents) {
  return guarded([&] {
    const sa::AnimCurve& curve = scene->scene().curves.at(curve_of(*scene, object, api::text_of(attribute)));
    const double rate = curve.frames_per_second();
    std::vector<double>& numbers = api::numbers_handed_out();
    numbers.clear();
    for (const sa::KeyTangents& t : sa::tangents_of(curve))
      numbers.insert(numbers.end(), {t.in_x / rate, t.in_y, t.out_x / rate, t.out_y});
    *tangents = {numbers.data(), numbers.size()};
  });
}

int vlx_felt_range(VlxScene* scene, const char* object, const char* attribute, double frame, double* range) {
  return guarded([&] {
    const sa::FrameRange felt = session::felt_around(scene->scene(), curves_of(*scene, object, attribute), frame);
    range[0] = felt.first;
    range[1] = felt.last;
  });
}

int vlx_provisional(VlxScene* scene, VlxTrailSet* set, const char* object, double first, double last,
                    const VlxStretch** stretches, std::size_t* count) {
  static std::vector<session::Stretch> found;
  static std::vector<VlxStretch> shown;
  return guarded([&] {
    constexpr double kFar = std::numeric_limits<double>::infinity();
    found = scene->provisional(*own(set), scene->object(object), {end_or(first, -kFar), end_or(last, kFar)});
    shown.clear();
    for (const session::Stretch& s : found) shown.push_back({s.trail, s.first, api::array_of(s.points)});
    *stretches = shown.data();
    *count = shown.size();
  });
}
