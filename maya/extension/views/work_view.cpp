// Work records and their items as mappings.
#include "host/error.h"
#include "maya/extension/python/types.h"
#include "maya/extension/values/sampler_object.h"
#include "maya/extension/values/values.h"
#include "maya/extension/views/records.h"

namespace vantorelix::maya {

namespace {

using SharedWork = std::shared_ptr<WorkRecord>;

using SharedItem = std::shared_ptr<WorkItem>;

Ref items_of(const SharedWork& work);

template <class T>
Ref optional_list(const std::optional<T>& values) {
  return values ? object_of(*values) : none();
}

Ref times_of(const WorkItem& it) {
  if (!it.times) return none();
  std::vector<double> times(it.times->size());
  for (std::size_t i = 0; i < times.size(); ++i) times[i] = (*it.times)[i];
  return object_of(times);
}

// A field of a record: its key, and how it is read.
template <class Content>
struct Field {
  const char* key;
  Ref (*read)(const Content&);
};

constexpr std::array<Field<SharedWork>, 5> kWorkFields = {{
    {"gen", [](const SharedWork& work) { return object_of(work->gen); }},
    {"items", items_of},
    {"k", [](const SharedWork& work) { return object_of(work->k); }},
    {"start", [](const SharedWork& work) { return object_of(work->start); }},
    {"end", [](const SharedWork& work) { return object_of(work->end); }},
}};

constexpr std::array<Field<SharedItem>, 9> kItemFields = {{
    {"viz", [](const SharedItem& it) { return object_of(it->viz); }},
    {"settings", [](const SharedItem& it) { return object_of(it->settings); }},
    {"sampler", [](const SharedItem& it) { return it->sampler ? sampler_object(it->sampler) : none(); }},
    {"times", [](const SharedItem& it) { return times_of(*it); }},
    {"pos", [](const SharedItem& it) { return object_of(*it->pos); }},
    {"i", [](const SharedItem& it) { return object_of(it->i); }},
    {"ktimes", [](const SharedItem& it) { return optional_list(it->ktimes); }},
    {"kpos", [](const SharedItem& it) { return object_of(*it->kpos); }},
    {"ki", [](const SharedItem& it) { return object_of(it->ki); }},
}};

const auto& fields_of(const SharedWork&) { return kWorkFields; }
const auto& fields_of(const SharedItem&) { return kItemFields; }

template <class Content>
struct FieldView {
  static const auto& fields(PyObject* self) { return fields_of(content_of<Content>(self)); }

  static Py_ssize_t length(PyObject* self) { return static_cast<Py_ssize_t>(fields(self).size()); }

  static PyObject* get(PyObject* self, PyObject* key) {
    return answer([&] {
      for (const auto& field : fields(self)) {
        if (PyUnicode_Check(key) && PyUnicode_CompareWithASCIIString(key, field.key) == 0)
          return field.read(content_of<Content>(self));
      }
      PyErr_SetObject(PyExc_KeyError, key);
      throw_python_error();
    });
  }

  static PyObject* iterate(PyObject* self) {
    return answer([&] {
      std::vector<std::string> keys;
      for (const auto& field : fields(self)) keys.push_back(field.key);
      return checked(PyObject_GetIter(object_of(keys).get()));
    });
  }

  static PyObject* type(const char* name) {
    static PyType_Slot slots[] = {{Py_mp_length, reinterpret_cast<void*>(length)},
                                  {Py_mp_subscript, reinterpret_cast<void*>(get)},
                                  {Py_tp_iter, reinterpret_cast<void*>(iterate)},
                                  {0, nullptr}};
    static PyObject* const made = new_type<Content>(name, slots, "Mapping").release();
    return made;
  }
};

PyObject* work_type() { return FieldView<SharedWork>::type("Vantorelix_engine.WorkRecord"); }
PyObject* item_type() { return FieldView<SharedItem>::type("Vantorelix_engine.WorkItem"); }

bool is_instance(PyObject* object, PyObject* type) { return Py_TYPE(object) == reinterpret_cast<PyTypeObject*>(type); }

Ref items_of(const SharedWork& work) {
  Ref list = checked(PyList_New(static_cast<Py_ssize_t>(work->items.size())));
  for (std::size_t n = 0; n < work->items.size(); ++n)
    PyList_SET_ITEM(list.get(), static_cast<Py_ssize_t>(n), new_instance(item_type(), work->items.at(n)).release());
  return list;
}

double number_or_zero(PyObject* mapping, PyObject* key) {
  const Ref found = item_or_none(mapping, key);
  return found ? number_of(found.get()) : 0.0;
}

std::int64_t integer_or_zero(PyObject* mapping, PyObject* key) {
  const Ref found = item_or_none(mapping, key);
  return found ? integer_of(found.get()) : 0;
}

// An item of a script's own starts from its first sample.
SharedItem work_item_of(PyObject* mapping) {
  if (SharedItem shown = item_in(mapping)) return shown;
  auto item = std::make_shared<WorkItem>();
  item->viz = text_of(checked(PyObject_GetItem(mapping, name<"viz">())).get());
  item->settings = settings_of(checked(PyObject_GetItem(mapping, name<"settings">())).get());
  return item;
}

}  // namespace

Ref object_of(const std::shared_ptr<WorkRecord>& work) { return work ? new_instance(work_type(), work) : none(); }

std::shared_ptr<WorkItem> item_in(PyObject* mapping) {
  return is_instance(mapping, item_type()) ? content_of<SharedItem>(mapping) : nullptr;
}

Ref item_or_none(PyObject* mapping, PyObject* key) {
  PyObject* const found = PyObject_GetItem(mapping, key);
  if (!found && !PyErr_ExceptionMatches(PyExc_KeyError)) throw_python_error();
  if (!found) PyErr_Clear();
  Ref value(found);
  return value.get() == Py_None ? Ref() : value;
}

std::shared_ptr<WorkRecord> work_of(PyObject* mapping) {
  if (mapping == Py_None) return nullptr;
  if (is_instance(mapping, work_type())) return content_of<SharedWork>(mapping);
  auto work = std::make_shared<WorkRecord>();
  work->gen = integer_or_zero(mapping, name<"gen">());
  work->start = number_or_zero(mapping, name<"start">());
  work->end = number_or_zero(mapping, name<"end">());
  work->k = static_cast<std::size_t>(std::max<std::int64_t>(0, integer_or_zero(mapping, name<"k">())));
  const Ref items = item_or_none(mapping, name<"items">());
  const Ref list = checked(items ? PySequence_List(items.get()) : PyList_New(0));  // nobody else's
  std::vector<SharedItem> work_items;
  for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list.get()); ++i)
    work_items.push_back(work_item_of(PyList_GET_ITEM(list.get(), i)));
  work->items = WorkItems(std::move(work_items));
  return work;
}

}  // namespace vantorelix::maya
