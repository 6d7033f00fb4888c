// Registry and settings as mappings.
#include "maya/extension/python/types.h"
#include "maya/extension/values/values.h"
#include "maya/extension/views/records.h"

namespace vantorelix::maya {

namespace {

// The registry itself, which is one object for good.
struct TheRegistry {};
using SharedSettings = std::shared_ptr<Settings>;

Registry& map_of(TheRegistry) { return _REGISTRY; }
Settings& map_of(const SharedSettings& settings) { return *settings; }

std::shared_ptr<Settings> content_from(const Registry&, PyObject* value) { return settings_of(value); }
host::Value content_from(const Settings&, PyObject* value) { return value_of(value); }

// A mapping over an OrderedMap, which `Content` leads to.
template <class Content>
struct MapView {
  static auto& map(PyObject* self) { return map_of(content_of<Content>(self)); }

  static Py_ssize_t length(PyObject* self) { return static_cast<Py_ssize_t>(map(self).size()); }

  static PyObject* get(PyObject* self, PyObject* key) {
    return answer([&] {
      if (!PyUnicode_Check(key) || !map(self).contains(text_of(key))) return missing(key);
      return object_of(map(self).at(text_of(key)));
    });
  }

  static int set(PyObject* self, PyObject* key, PyObject* value) {
    return answer_or(-1, [&] {
      if (value) {
        map(self).set(text_of(key), content_from(map(self), value));
      } else if (!PyUnicode_Check(key) || !map(self).erase(text_of(key))) {
        missing(key);
      }
      return 0;
    });
  }

  static PyObject* iterate(PyObject* self) {
    return answer([&] {
      std::vector<std::string> keys;
      for (const auto& [key, value] : map(self)) keys.push_back(key);
      return checked(PyObject_GetIter(object_of(keys).get()));
    });
  }

  static Ref as_dictionary(PyObject* self) {
    Ref copy = checked(PyDict_New());
    const auto entries = map(self).snapshot();
    for (const auto& [key, value] : *entries)
      check(PyDict_SetItem(copy.get(), object_of(key).get(), object_of(value).get()));
    return copy;
  }

  static PyObject* representation(PyObject* self) {
    return answer([&] { return representation_of(self, as_dictionary, "{...}"); });
  }

  static PyObject* type(const char* name) {
    static PyType_Slot slots[] = {
        {Py_mp_length, reinterpret_cast<void*>(length)},       {Py_mp_subscript, reinterpret_cast<void*>(get)},
        {Py_mp_ass_subscript, reinterpret_cast<void*>(set)},   {Py_tp_iter, reinterpret_cast<void*>(iterate)},
        {Py_tp_repr, reinterpret_cast<void*>(representation)}, {0, nullptr}};
    static PyObject* const made = new_type<Content>(name, slots, "MutableMapping").release();
    return made;
  }

 private:
  [[noreturn]] static Ref missing(PyObject* key) {
    PyErr_SetObject(PyExc_KeyError, key);
    throw_python_error();
  }
};

PyObject* registry_type() { return MapView<TheRegistry>::type("Vantorelix_engine.Registry"); }
PyObject* settings_type() { return MapView<SharedSettings>::type("Vantorelix_engine.Settings"); }

bool is_view(PyObject* object) { return Py_TYPE(object) == reinterpret_cast<PyTypeObject*>(settings_type()); }

}  // namespace

Ref registry_object() {
  static PyObject* const registry = new_instance(registry_type(), TheRegistry{}).release();
  return Ref::share(registry);
}

Ref object_of(const std::shared_ptr<Settings>& settings) {
  return settings ? new_instance(settings_type(), settings) : none();
}

std::shared_ptr<Settings> settings_of(PyObject* mapping) {
  if (is_view(mapping)) return content_of<SharedSettings>(mapping);
  auto settings = std::make_shared<Settings>();
  for (const auto& [key, value] : pairs_of(mapping)) settings->set(text_of(key.get()), value_of(value.get()));
  return settings;
}

PassedSettings::PassedSettings(PyObject* mapping)
    : settings_(settings_of(mapping)),
      ref_before_(settings_->get("ref")),
      script_(is_view(mapping) ? nullptr : mapping) {}

void PassedSettings::write_back() const {
  if (!script_ || settings_->get("ref") == ref_before_) return;
  check(PyObject_SetItem(script_, name<"ref">(), object_of(settings_->get("ref")).get()));
}

}  // namespace vantorelix::maya
