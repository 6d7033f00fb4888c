#include "maya/extension/python/types.h"

#include <cstring>
#include <vector>

namespace vantorelix::maya {

Ref new_type_of_size(const char* name, std::size_t size, destructor destroy, PyType_Slot* slots, const char* abstract) {
  std::vector<PyType_Slot> all = {{Py_tp_dealloc, reinterpret_cast<void*>(destroy)}};
  for (const PyType_Slot* slot = slots; slot->slot != 0; ++slot) all.push_back(*slot);
  all.push_back({0, nullptr});
  PyType_Spec spec = {name, static_cast<int>(size), 0,
                      static_cast<unsigned>(Py_TPFLAGS_DEFAULT | (abstract ? Py_TPFLAGS_BASETYPE : 0)), all.data()};
  Ref type = checked(PyType_FromSpec(&spec));
  // Objects cannot be made from a script: their content would be missing.
  reinterpret_cast<PyTypeObject*>(type.get())->tp_new = nullptr;
  if (!abstract) return type;
  const char* const dot = std::strrchr(name, '.');
  const char* const short_name = dot ? dot + 1 : name;
  const Ref collections = checked(PyImport_ImportModule("collections.abc"));
  const Ref base = checked(PyObject_GetAttrString(collections.get(), abstract));
  // The slots of the type come first, so that they are what the abstract methods are found to be.
  return checked(PyObject_CallFunction(reinterpret_cast<PyObject*>(Py_TYPE(base.get())), "s(OO){s:(),s:s}", short_name,
                                       type.get(), base.get(), "__slots__", "__module__", "Vantorelix_engine"));
}

}  // namespace vantorelix::maya
