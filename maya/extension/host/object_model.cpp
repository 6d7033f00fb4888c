#include "maya/extension/host/object_model.h"

#include "maya/extension/host/handles.h"
#include "maya/extension/values/sources.h"

namespace vantorelix::maya {

namespace {

using host::Callback;
using host::Value;

// om.C, the class as it is now.
template <Text C>
Ref om_class() {
  return global_attribute<"om", C>();
}

// om.C(arguments...)
template <Text C, class... A>
Ref construct(const A&... arguments) {
  const Ref type = om_class<C>();
  const std::array<PyObject*, sizeof...(arguments) + 1> borrowed = {arguments...};
  return call(type.get(), borrowed.data(), sizeof...(arguments));
}

// om.C.M() or oma.C.M(), a static method without arguments.
template <Text Handle, Text C, Text M>
Ref static_call() {
  const Ref holder = global_attribute<Handle, C>();
  const Ref function = attribute(holder.get(), name<M>());
  return call(function.get(), nullptr, 0);
}

template <Text Handle, Text C, Text M, class... A>
Ref register_callback(const Callback& function, const A&... arguments) {
  const Ref holder = global_attribute<Handle, C>();
  const Ref add = attribute(holder.get(), name<M>());
  return call_with<>(add.get(), global(object_of(function.name).get()), arguments...);
}

class PythonArray : public host::VectorArray {
 public:
  explicit PythonArray(Ref array) : array_(std::move(array)) {}

  PyObject* get() const { return array_.get(); }

  void append(const Vector& v) override {
    const Ref add = attribute(array_.get(), name<"append">());
    const Ref vector = call_with<>(om_class<"MVector">().get(), v.x, v.y, v.z);
    call(add.get(), std::array{vector.get()}.data(), 1);
  }

 private:
  Ref array_;
};

class PythonPlug : public host::Plug {
 public:
  explicit PythonPlug(Ref plug) : plug_(std::move(plug)), row_(object_of(3)) {
    for (std::size_t i = 0; i < columns_.size(); ++i) columns_[i] = object_of(i);
  }

  std::shared_ptr<host::Plug> elementByLogicalIndex(unsigned index) override {
    const Ref number = object_of(std::size_t{index});
    return std::make_shared<PythonPlug>(method<"elementByLogicalIndex">(plug_.get(), number.get()));
  }

  Vector translation_at(double t, const host::TimeUnit& unit) override {
    const Ref frames = object_of(t);
    const Ref uiu = object_of(unit);
    const Ref time = construct<"MTime">(frames.get(), uiu.get());
    const Ref context = construct<"MDGContext">(time.get());
    const Ref data = method<"asMObject">(plug_.get(), context.get());
    const Ref function_set = construct<"MFnMatrixData">(data.get());
    const Ref matrix = method<"matrix">(function_set.get());
    const Method<"getElement"> element(matrix.get());
    return {number_of(element(row_.get(), columns_[0].get()).get()),
            number_of(element(row_.get(), columns_[1].get()).get()),
            number_of(element(row_.get(), columns_[2].get()).get())};
  }

  void set_vector_array(const std::shared_ptr<host::VectorArray>& array) override {
    const Ref function_set = construct<"MFnVectorArrayData">();
    const Ref data = method<"create">(function_set.get(), static_cast<const PythonArray&>(*array).get());
    method<"setMObject">(plug_.get(), data.get());
  }

 private:
  Ref plug_;
  Ref row_;  // of a translation, and its columns: made once
  std::array<Ref, 3> columns_;
};

}  // namespace

std::shared_ptr<host::Plug> Objects::findPlug(const std::string& node, const std::string& attribute) {
  const Ref list = construct<"MSelectionList">();
  method<"add">(list.get(), object_of(node).get());
  const Ref dependency = method<"getDependNode">(list.get(), object_of(0).get());
  const Ref function_set = construct<"MFnDependencyNode">(dependency.get());
  return std::make_shared<PythonPlug>(method<"findPlug">(function_set.get(), object_of(attribute).get(), Py_False));
}

host::TimeUnit Objects::uiUnit() { return value_of(static_call<"om", "MTime", "uiUnit">().get()); }

std::shared_ptr<host::VectorArray> Objects::vector_array(const Vectors& values) {
  return std::make_shared<PythonArray>(construct<"MVectorArray">(script_list(values).get()));
}
std::shared_ptr<host::VectorArray> Objects::vector_array() {
  return std::make_shared<PythonArray>(construct<"MVectorArray">());
}

bool Objects::isReadingFile() { return truth(static_call<"om", "MFileIO", "isReadingFile">().get()); }
bool Objects::isWritingFile() { return truth(static_call<"om", "MFileIO", "isWritingFile">().get()); }
bool Objects::isOpeningFile() { return truth(static_call<"om", "MFileIO", "isOpeningFile">().get()); }
bool Objects::isNewingFile() { return truth(static_call<"om", "MFileIO", "isNewingFile">().get()); }

Value Objects::addNodeRemovedCallback(const Callback& function, const std::string& type) {
  return value_of(register_callback<"om", "MDGMessage", "addNodeRemovedCallback">(function, type).get());
}

void Objects::removeCallback(const Value& identifier) {
  const Ref messages = om_class<"MMessage">();
  method<"removeCallback">(messages.get(), object_of(identifier).get());
}

bool Animation::isPlaying() { return truth(static_call<"oma", "MAnimControl", "isPlaying">().get()); }

double Animation::currentTime() {
  const Ref time = static_call<"oma", "MAnimControl", "currentTime">();
  const Ref as_units = attribute(time.get(), name<"asUnits">());
  const Ref unit = static_call<"om", "MTime", "uiUnit">();
  return number_of(call(as_units.get(), std::array{unit.get()}.data(), 1).get());
}

Value Animation::addAnimCurveEditedCallback(const Callback& function) {
  return value_of(register_callback<"oma", "MAnimMessage", "addAnimCurveEditedCallback">(function).get());
}
Value Animation::addAnimKeyframeEditedCallback(const Callback& function) {
  return value_of(register_callback<"oma", "MAnimMessage", "addAnimKeyframeEditedCallback">(function).get());
}

}  // namespace vantorelix::maya
