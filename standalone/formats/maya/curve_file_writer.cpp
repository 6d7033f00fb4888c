// Curves as a Maya ASCII file.
#include <cstdint>

#include "base/text_sink.h"
#include "standalone/formats/maya/channel_curves.h"
#include "standalone/formats/writer.h"

namespace vantorelix::standalone {

namespace {

constexpr std::size_t kInARow = 8;  // keys

class CurveFile {
 public:
  explicit CurveFile(const Scene& scene) : scene_(scene) {}

  Written write(const std::vector<NodeId>& objects) {
    const std::vector<ChannelCurve> curves = channel_curves(scene_, objects, lost_);
    units_ = written_units(scene_, lost_);
    // Radians, so that no angle is rounded.
    out_ << "//Maya ASCII 2018 scene\n//Codeset: UTF-8\nrequires maya \"2018\";\ncurrentUnit -l " << units_.length
         << " -a rad -t " << units_.time << ";\n";
    for (const ChannelCurve& curve : curves) write_curve(curve);
    for (const ChannelCurve& curve : curves)
      out_ << "connectAttr -f \"" << scene_.names.unique_name(curve.curve) << ".o\" \"" << curve.plug << "\";\n";
    out_ << "// End of curves\n";
    return {out_.text(), std::move(lost_)};
  }

 private:
  void write_curve(const ChannelCurve& written) {
    const AnimCurve& curve = scene_.curves.at(written.curve);
    out_ << "createNode " << scene_.nodes.type(written.curve) << " -n \"" << scene_.names.unique_name(written.curve)
         << "\";\n\tsetAttr \".wgt\" " << (curve.weighted() ? "yes" : "no") << ";\n";
    const auto tangent = [&](double y) { return written_tangent(curve, y, units_, written.plug, lost_); };
    list(curve, "ktv", [](TextSink& out, const Key& key) { out << key.time << ' ' << key.value; });
    list(curve, "kit", [](TextSink& out, const Key& key) { out << static_cast<std::int64_t>(key.in); });
    list(curve, "kot", [](TextSink& out, const Key& key) { out << static_cast<std::int64_t>(key.out); });
    list(curve, "kix", [](TextSink& out, const Key& key) { out << key.in_x; });
    list(curve, "kiy", [&](TextSink& out, const Key& key) { out << tangent(key.in_y); });
    list(curve, "kox", [](TextSink& out, const Key& key) { out << key.out_x; });
    list(curve, "koy", [&](TextSink& out, const Key& key) { out << tangent(key.out_y); });
    out_ << "\tsetAttr \".pre\" " << static_cast<std::int64_t>(curve.pre_infinity()) << ";\n\tsetAttr \".pst\" "
         << static_cast<std::int64_t>(curve.post_infinity()) << ";\n";
  }

  template <class Put>
  void list(const AnimCurve& curve, const char* name, const Put& put) {
    const auto& keys = curve.keys();
    if (keys.empty()) return;
    out_ << "\tsetAttr -s " << static_cast<std::int64_t>(keys.size()) << " \"." << name
         << "[0:" << static_cast<std::int64_t>(keys.size() - 1) << "]\"";
    for (std::size_t i = 0; i < keys.size(); ++i) {
      out_ << (i % kInARow == 0 && i > 0 ? "\n\t\t" : " ");
      put(out_, keys[i]);
    }
    out_ << ";\n";
  }

  const Scene& scene_;
  std::vector<std::string> lost_;
  WrittenUnits units_;
  StringSink out_;
};

}  // namespace

Written write_maya_curves(const Scene& scene, const std::vector<NodeId>& objects) {
  return CurveFile(scene).write(objects);
}

}  // namespace vantorelix::standalone
