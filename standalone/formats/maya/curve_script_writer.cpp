// Curves as a script for Maya's Python.
#include "base/number_text.h"
#include "base/text_sink.h"
#include "standalone/formats/maya/channel_curves.h"
#include "standalone/formats/writer.h"

namespace vantorelix::standalone {

namespace {

constexpr const char* kBeginning =
    R"("""Sets the keys of channels in Maya: run it in the Script Editor. Undo takes it back at once."""
from maya import cmds

)";

constexpr const char* kEnd = R"(]


def set_tangent(plug, time, side, sort, x, y):
    cmds.keyTangent(plug, edit=True, time=(time, time), **{side + "TangentType": sort})
    if sort == "fixed":
        names = ("ix", "iy") if side == "in" else ("ox", "oy")
        cmds.keyTangent(plug, edit=True, time=(time, time), **dict(zip(names, (x, y))))


def set_curve(plug, weighted, before, after, keys):
    cmds.cutKey(plug, clear=True)
    for key in keys:
        cmds.setKeyframe(plug, time=key[0], value=key[1])
    cmds.keyTangent(plug, edit=True, weightedTangents=weighted)
    for time, _, in_sort, out_sort, in_x, in_y, out_x, out_y in keys:
        cmds.keyTangent(plug, edit=True, time=(time, time), lock=False)
        set_tangent(plug, time, "in", in_sort, in_x, in_y)
        set_tangent(plug, time, "out", out_sort, out_x, out_y)
    cmds.setInfinity(plug, preInfinite=before, postInfinite=after)


def set_all():
    if cmds.currentUnit(query=True, time=True) != TIME_UNIT:
        raise RuntimeError("these keys are at frames of %s; set the scene's time unit to that first" % TIME_UNIT)
    before = {"linear": cmds.currentUnit(query=True, linear=True), "angle": cmds.currentUnit(query=True, angle=True)}
    cmds.undoInfo(openChunk=True, chunkName="set keys")
    try:
        cmds.currentUnit(linear=LINEAR_UNIT, angle="rad")
        for curve in CURVES:
            set_curve(*curve)
    finally:
        cmds.currentUnit(**before)
        cmds.undoInfo(closeChunk=True)


set_all()
)";

// Sorts that behave as the automatic one bear its name, which every version knows.
const char* name_of_sort(Tangent tangent) {
  switch (tangent) {
    case Tangent::fixed:
      return "fixed";
    case Tangent::linear:
      return "linear";
    case Tangent::flat:
      return "flat";
    case Tangent::step:
      return "step";
    case Tangent::slow:
      return "slow";
    case Tangent::fast:
      return "fast";
    case Tangent::spline:
      return "spline";
    case Tangent::clamped:
      return "clamped";
    case Tangent::plateau:
      return "plateau";
    case Tangent::step_next:
      return "stepnext";
    default:
      return "auto";
  }
}

const char* name_of_infinity(Infinity infinity) {
  switch (infinity) {
    case Infinity::constant:
      return "constant";
    case Infinity::linear:
      return "linear";
    case Infinity::cycle:
      return "cycle";
    case Infinity::cycle_offset:
      return "cycleRelative";
    case Infinity::oscillate:
      return "oscillate";
  }
  return "constant";
}

// So that Python, too, takes it for a real number: it knows no negative zero among integers.
std::string real(double value) {
  const std::string text = number_text(value);
  return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

class CurveScript {
 public:
  explicit CurveScript(const Scene& scene) : scene_(scene) {}

  Written write(const std::vector<NodeId>& objects) {
    const std::vector<ChannelCurve> curves = channel_curves(scene_, objects, lost_);
    units_ = written_units(scene_, lost_);
    out_ << kBeginning << "TIME_UNIT, LINEAR_UNIT = \"" << units_.time << "\", \"" << units_.length << "\"\n"
         << "# Channel, whether its tangents have weights, what is before and after its keys. Each key: frame, value,\n"
         << "# sorts of its tangents, and of fixed ones in x and y, out x and y. Angles are radians.\nCURVES = [\n";
    for (const ChannelCurve& curve : curves) write_curve(curve);
    out_ << kEnd;
    return {out_.text(), std::move(lost_)};
  }

 private:
  void write_curve(const ChannelCurve& written) {
    const AnimCurve& curve = scene_.curves.at(written.curve);
    out_ << "    (\"" << written.plug << "\", " << (curve.weighted() ? "True" : "False") << ", \""
         << name_of_infinity(curve.pre_infinity()) << "\", \"" << name_of_infinity(curve.post_infinity()) << "\", [\n";
    const auto tangent = [&](double y) { return real(written_tangent(curve, y, units_, written.plug, lost_)); };
    for (const Key& key : curve.keys())
      out_ << "        (" << real(key.time) << ", " << real(key.value) << ", \"" << name_of_sort(key.in) << "\", \""
           << name_of_sort(key.out) << "\", " << real(key.in_x) << ", " << tangent(key.in_y) << ", " << real(key.out_x)
           << ", " << tangent(key.out_y) << "),\n";
    out_ << "    ]),\n";
  }

  const Scene& scene_;
  std::vector<std::string> lost_;
  WrittenUnits units_;
  StringSink out_;
};

}  // namespace

Written write_maya_script(const Scene& scene, const std::vector<NodeId>& objects) {
  return CurveScript(scene).write(objects);
}

}  // namespace vantorelix::standalone
