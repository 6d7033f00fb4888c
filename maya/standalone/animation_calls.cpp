// Curves, keys and scene time.
#include "host/error.h"
#include "maya/standalone/calls.h"
#include "standalone/scene/attributes/channel_names.h"

namespace vantorelix::standalone {

using host::Error;
using host::Value;

namespace {

// By what a value of the curve is multiplied for scripts: degrees for radians.
double factor(const AnimCurve& curve) { return curve.kind() == CurveKind::angular ? kDegrees : 1.0; }

const Key* key_at(const AnimCurve& curve, double frame) {
  for (const Key& key : curve.keys())
    if (key.time == frame) return &key;
  return nullptr;
}

// [time, value, in tangent, out tangent] of each key.
Value keys(Session& session, const Arguments& a) {
  const AnimCurve& curve = session.scene().curves.at(a.node(0));
  std::vector<Value> all;
  for (const Key& key : curve.keys())
    all.push_back(
        Value::list({key.time, key.value * factor(curve), static_cast<int>(key.in), static_cast<int>(key.out)}));
  return Value::list(std::move(all));
}

// On a channel: (node, attribute, frame, value). Makes its curve with the first; returns the curve.
Value set_channel_key(Session& session, const Arguments& a) {
  Scene& scene = session.scene();
  const NodeId node = a.node(0);
  const Channel channel = channel_named(scene, node, a.text(1));
  if (channel == Channel::count)
    throw Error("setKeyframe: '" + a.text(1) + "' cannot be keyed; name one channel of a transform, as translateX.");
  const NodeId curve = scene.curves.driving_curve(node, channel);
  const double scale = curve == kNoNode ? (is_angle(channel) ? kDegrees : 1.0) : factor(scene.curves.at(curve));
  if (curve == kNoNode) return node_or_none(scene.curves.set_key(node, channel, a.number(2), a.number(3) / scale));
  scene.curves.set_key(curve, a.number(2), a.number(3) / scale);
  return node_or_none(curve);
}

// (curve, frame, value)
Value set_curve_key(Session& session, const Arguments& a) {
  Scene& scene = session.scene();
  scene.curves.set_key(a.node(0), a.number(1), a.number(2) / factor(scene.curves.at(a.node(0))));
  return {};
}

// (curve, frame, new frame, new value, in, out): each of the last four may be none, for as it is.
Value change_key(Session& session, const Arguments& a) {
  Scene& scene = session.scene();
  const NodeId curve = a.node(0);
  const Key* found = key_at(scene.curves.at(curve), a.number(1));
  if (!found) return false;
  Key key = *found;
  if (a.has(2)) key.time = a.number(2);
  if (a.has(3)) key.value = a.number(3) / factor(scene.curves.at(curve));
  if (a.has(4)) key.in = static_cast<Tangent>(a.integer(4));
  if (a.has(5)) key.out = static_cast<Tangent>(a.integer(5));
  if (key.time != a.number(1) && key_at(scene.curves.at(curve), key.time))
    throw Error("keyframe: there is a key at the new time already; remove it first, or choose another time.");
  // The new key first: the last key of a curve takes the curve with it.
  scene.curves.set_key(curve, key);
  if (key.time != a.number(1)) scene.curves.remove_key(curve, a.number(1));
  return true;
}

Value set_infinity(Session& session, const Arguments& a) {
  const AnimCurve& curve = session.scene().curves.at(a.node(0));
  const Infinity pre = a.has(1) ? static_cast<Infinity>(a.integer(1)) : curve.pre_infinity();
  const Infinity post = a.has(2) ? static_cast<Infinity>(a.integer(2)) : curve.post_infinity();
  session.scene().curves.set_infinity(a.node(0), pre, post);
  return {};
}

Value infinity(Session& session, const Arguments& a) {
  const AnimCurve& curve = session.scene().curves.at(a.node(0));
  return Value::list({static_cast<int>(curve.pre_infinity()), static_cast<int>(curve.post_infinity())});
}

Value driving_curve(Session& session, const Arguments& a) {
  const Channel channel = channel_named(session.scene(), a.node(0), a.text(1));
  if (channel == Channel::count) return {};
  return node_or_none(session.scene().curves.driving_curve(a.node(0), channel));
}

}  // namespace

const Calls& animation_calls() {
  static const Calls calls = {
      {"driving_curve", driving_curve},
      {"driving_curves",
       [](Session& s, const Arguments& a) { return list_of(s.scene().curves.driving_curves(a.node(0))); }},
      {"key_times", [](Session& s, const Arguments& a) { return list_of(s.scene().curves.key_times(a.node(0))); }},
      {"keys", keys},
      {"set_channel_key", set_channel_key},
      {"set_curve_key", set_curve_key},
      {"change_key", change_key},
      {"remove_key",
       [](Session& s, const Arguments& a) { return Value(s.scene().curves.remove_key(a.node(0), a.number(1))); }},
      {"evaluate",
       [](Session& s, const Arguments& a) {
         const AnimCurve& curve = s.scene().curves.at(a.node(0));
         return Value(curve.evaluate(a.number(1)) * factor(curve));
       }},
      {"infinity", infinity},
      {"set_infinity", set_infinity},

      {"playback_range",
       [](Session& s, const Arguments&) {
         return list_of(std::vector<double>{s.scene().settings.playback_min(), s.scene().settings.playback_max()});
       }},
      {"set_playback_range",
       [](Session& s, const Arguments& a) {
         return s.scene().settings.set_playback_range(a.number(0), a.number(1)), Value();
       }},
      {"current_time", [](Session& s, const Arguments&) { return Value(s.scene().settings.current_time()); }},
      {"set_current_time",
       [](Session& s, const Arguments& a) { return s.scene().settings.set_current_time(a.number(0)), Value(); }},
      {"frames_per_second", [](Session& s, const Arguments&) { return Value(s.scene().settings.frames_per_second()); }},
      {"linear_unit", [](Session& s, const Arguments&) { return Value(s.scene().settings.linear_unit()); }},
      {"up_axis", [](Session& s, const Arguments&) { return Value(std::string(1, s.scene().settings.up_axis())); }},
  };
  return calls;
}

}  // namespace vantorelix::standalone
