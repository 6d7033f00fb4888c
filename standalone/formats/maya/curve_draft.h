// An animation curve while its file states it piece by piece.
#pragma once

#include <string_view>
#include <vector>

#include "standalone/formats/maya/mel_scanner.h"
#include "standalone/scene/scene.h"

namespace vantorelix::standalone {

// An attribute as a file names it: "ktv[0:10]", "ktv[3].kv", "t", "translateX".
struct AttributePath {
  explicit AttributePath(std::string_view text);

  std::string_view name;  // before the first bracket or point
  bool has_index = false;
  double first = 0.0;  // of the index range, as written
  double last = 0.0;
  std::string_view part;  // behind the point, if any
};

// What the file's numbers are worth in the scene's units.
struct CurveUnits {
  double value = 1.0;    // of a key's value
  double tangent = 1.0;  // of a fixed tangent's y
};

class CurveDraft {
 public:
  // Begins with what `curve` has already.
  CurveDraft(const AnimCurve& curve, const CurveUnits& units);

  // Reads the values of one setAttr. False for an attribute that has no bearing on the curve's shape: nothing is read
  // then. Throws FormatError for values that do not fit the attribute.
  bool read(const AttributePath& path, MelScanner& words);

  // Whether anything was read.
  bool changed() const { return changed_; }
  // Whether an attribute held a tangent type or infinity that is unknown, or a rotation that is not Euler's.
  bool unknown_type() const { return unknown_type_; }
  bool quaternion() const { return quaternion_; }
  void assign_to(Scene& scene, NodeId curve) const;

 private:
  // A key, and which of its parts the file has given so far. A tangent type that it has not given is the curve's
  // (`all_`).
  struct Entry {
    Key key;
    bool present = false;  // time or value was given; entries without are holes in the numbering
    bool own_in = false;   // the type of the in tangent was given
    bool own_out = false;
  };

  bool read_curve_wide(std::string_view name, MelScanner& words);
  Entry& entry(double index, MelScanner& words);
  void read_keys(const AttributePath& path, MelScanner& words);
  void set(Entry& entry, std::string_view name, double value);
  Tangent tangent(double number);
  Infinity infinity(double number);

  CurveUnits units_;
  std::vector<Entry> entries_;
  Tangent all_ = Tangent::global;  // the tangent type of keys that have none of their own
  bool weighted_ = true;
  Infinity pre_;
  Infinity post_;
  bool changed_ = false;
  bool unknown_type_ = false;
  bool quaternion_ = false;
};

}  // namespace vantorelix::standalone
