// The host's object model: fast plug evaluation, vector-array data, animation control, message callbacks.
//
// One method is one unbranching run of object-model calls, given in its comment in the order in which a scripting
// host makes them. Every method may throw Error or Interrupt. All are required, on the host's main thread.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "base/vector.h"
#include "host/callback.h"
#include "host/value.h"

namespace vantorelix::host {

// A time unit token, opaque to the engine: read once, handed back with every time.
using TimeUnit = Value;

// A vector array under construction or complete. Owned by whoever holds it.
class VectorArray {
 public:
  virtual ~VectorArray() = default;
  // append(MVector(v.x, v.y, v.z))
  virtual void append(const Vector& v) = 0;
};

// One plug of one node. Stays valid until the node is deleted; then its methods throw.
class Plug {
 public:
  virtual ~Plug() = default;
  // elementByLogicalIndex(index)
  virtual std::shared_ptr<Plug> elementByLogicalIndex(unsigned index) = 0;
  // The translation row of a matrix plug at a time, in frames of `unit`:
  // MTime(t, unit); MDGContext(time); asMObject(context); MFnMatrixData(data).matrix(); getElement(3, 0..2).
  // The hot path: called once a sample.
  virtual Vector translation_at(double t, const TimeUnit& unit) = 0;
  // A hint, and no call of the object model: the times for which translation_at will be called next, in this order. It
  // takes the place of the hint before it. A host may work several of them out at once when the first is asked for;
  // it evaluates nothing for the hint alone, and gives the same results to whoever asks for other times, or for none.
  // The times are the caller's, and only there during the call.
  virtual void expect(std::span<const double> /*times*/, const TimeUnit& /*unit*/) {}
  // MFnVectorArrayData().create(array); setMObject(data). Replaces the plug's whole array. The plug may keep the
  // array's storage: nobody appends to it afterwards.
  virtual void set_vector_array(const std::shared_ptr<VectorArray>& array) = 0;
};

// The handle `om`.
class ObjectModel {
 public:
  virtual ~ObjectModel() = default;
  // MSelectionList(); add(node); getDependNode(0); MFnDependencyNode(dep); findPlug(attribute, False).
  virtual std::shared_ptr<Plug> findPlug(const std::string& node, const std::string& attribute) = 0;
  // MTime.uiUnit()
  virtual TimeUnit uiUnit() = 0;
  // MVectorArray(values): the whole sequence at once. May throw where the host cannot convert it. The host may
  // keep a share of `values` instead of a copy.
  virtual std::shared_ptr<VectorArray> vector_array(const Vectors& values) = 0;
  // MVectorArray(): empty.
  virtual std::shared_ptr<VectorArray> vector_array() = 0;

  // MFileIO.isReadingFile(), isWritingFile(), isOpeningFile(), isNewingFile()
  virtual bool isReadingFile() = 0;
  virtual bool isWritingFile() = 0;
  virtual bool isOpeningFile() = 0;
  virtual bool isNewingFile() = 0;

  // MDGMessage.addNodeRemovedCallback(function, type): returns an identifier to hand to removeCallback.
  virtual Value addNodeRemovedCallback(const Callback& function, const std::string& type) = 0;
  // MMessage.removeCallback(identifier), for identifiers of this interface and of AnimationModel.
  virtual void removeCallback(const Value& identifier) = 0;
};

// The handle `oma`.
class AnimationModel {
 public:
  virtual ~AnimationModel() = default;
  // MAnimControl.isPlaying()
  virtual bool isPlaying() = 0;
  // MAnimControl.currentTime().asUnits(MTime.uiUnit()): frames.
  virtual double currentTime() = 0;
  // MAnimMessage.addAnimCurveEditedCallback(function)
  virtual Value addAnimCurveEditedCallback(const Callback& function) = 0;
  // MAnimMessage.addAnimKeyframeEditedCallback(function)
  virtual Value addAnimKeyframeEditedCallback(const Callback& function) = 0;
};

}  // namespace vantorelix::host
