// Registry and settings as mappings.
#include "maya/extension/records.h"
#include "maya/extension/types.h"
#include "maya/extension/values.h"

namespace vantorelix::maya {

namespace {

// The registry itself, which is one object for good.
struct TheRegistry {};
using SharedSettings = std::shared_ptr<Settings>;

Registry& map_of(TheRegistry) { return _REGISTRY; }
Settings& map_of(const SharedSettings& settings) { return *settings; }

void assign(Registry& registry, const std::string& key, PyObject* value) { registry[key] = settings_of(value); }
void assign(Settings& settings, const std::string& key, PyObject* value) { settings[key] = value_of(value); }

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
        assign(map(self), text_of(key), value);
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

  static PyObject* representation(PyObject* self) {
    return answer([&] {
      const Ref copy = checked(PyDict_New());
      for (const auto& [key, value] : map(self))
        check(PyDict_SetItem(copy.get(), object_of(key).get(), object_of(value).get()));
      return checked(PyObject_Repr(copy.get()));
    });
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
  const Ref items = checked(PyMapping_Items(mapping));
  const Ref list = checked(PySequence_List(items.get()));
  auto settings = std::make_shared<Settings>();
  for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.get()); ++i) {
    PyObject *key, *value;
    if (!PyArg_ParseTuple(PyList_GET_ITEM(list.get(), i), "OO", &key, &value)) throw_python_error();
    (*settings)[text_of(key)] = value_of(value);
  }
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
