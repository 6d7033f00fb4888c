// A `maya` of C functions and C types, as Maya's are, that does the least: what is left of a job on it is what the job
// itself costs. It knows one object, which moves.
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cmath>

namespace {

// --- the object model --------------------------------------------------------------------------------------------

// An object of any class. It knows the time that it was made of, which goes on to what is made of it.
struct Silent {
  PyObject_HEAD double time;
};

double& time_of(PyObject* object) { return reinterpret_cast<Silent*>(object)->time; }

PyObject* new_object(PyTypeObject* type, double time) {
  PyObject* const object = type->tp_alloc(type, 0);
  if (object) time_of(object) = time;
  return object;
}

// C(first, ...): of a time, of an object, or of anything else.
PyObject* construct(PyTypeObject* type, PyObject* arguments, PyObject*) {
  PyObject* const first = PyTuple_GET_SIZE(arguments) ? PyTuple_GET_ITEM(arguments, 0) : Py_None;
  if (PyFloat_CheckExact(first)) return new_object(type, PyFloat_AS_DOUBLE(first));
  return new_object(type, Py_TYPE(first)->tp_new == construct ? time_of(first) : 0.0);
}

// MVectorArray() or MVectorArray(sequence), which is not read: that is Maya's work.
PyObject* construct_array(PyTypeObject* type, PyObject* arguments, PyObject*) {
  if (!PyTuple_GET_SIZE(arguments) || PySequence_Check(PyTuple_GET_ITEM(arguments, 0))) return new_object(type, 0.0);
  PyErr_SetString(PyExc_TypeError, "a sequence is needed");
  return nullptr;
}

// A static type, as an extension that is written by hand has. It is never freed.
PyTypeObject* new_type(const char* name, PyMethodDef* methods, newfunc made_by = construct) {
  auto* const type = new PyTypeObject{PyVarObject_HEAD_INIT(nullptr, 0)};
  type->tp_name = name;
  type->tp_basicsize = sizeof(Silent);
  type->tp_flags = Py_TPFLAGS_DEFAULT;
  type->tp_methods = methods;
  type->tp_new = made_by;
  return PyType_Ready(type) < 0 ? nullptr : type;
}

PyTypeObject *object_type, *plug_type, *matrix_type, *time_type;

template <PyTypeObject*& Result>
PyObject* another(PyObject* self, PyObject*) {
  return new_object(Result, time_of(self));
}

PyObject* nothing(PyObject*, PyObject*) { Py_RETURN_NONE; }
PyObject* no(PyObject*, PyObject*) { Py_RETURN_FALSE; }
PyObject* number(PyObject*, PyObject*) { return PyLong_FromLong(6); }
PyObject* itself(PyObject* self, PyObject*) {
  Py_INCREF(self);
  return self;
}
PyObject* current_time(PyObject*, PyObject*) { return new_object(time_type, 1.0); }
PyObject* frames(PyObject* self, PyObject*) { return PyFloat_FromDouble(time_of(self)); }

PyObject* as_object(PyObject*, PyObject* arguments) {
  return new_object(object_type, time_of(PyTuple_GET_ITEM(arguments, 0)));
}

// Where the object is: x, y or z.
double coordinate(double time, long column) { return static_cast<double>(column + 1) * std::sqrt(std::fabs(time)); }

PyObject* element(PyObject* self, PyObject* arguments) {
  return PyFloat_FromDouble(coordinate(time_of(self), PyLong_AsLong(PyTuple_GET_ITEM(arguments, 1))));
}

constexpr int kStatic = METH_STATIC | METH_VARARGS;
constexpr PyMethodDef kEnd = {nullptr, nullptr, 0, nullptr};

PyMethodDef none[] = {kEnd};
PyMethodDef of_time[] = {
    {"uiUnit", number, METH_STATIC | METH_NOARGS, nullptr}, {"asUnits", frames, METH_VARARGS, nullptr}, kEnd};
PyMethodDef of_selection[] = {
    {"add", itself, METH_VARARGS, nullptr}, {"getDependNode", another<object_type>, METH_VARARGS, nullptr}, kEnd};
PyMethodDef of_node[] = {{"findPlug", another<plug_type>, METH_VARARGS, nullptr}, kEnd};
PyMethodDef of_plug[] = {{"elementByLogicalIndex", another<plug_type>, METH_VARARGS, nullptr},
                         {"asMObject", as_object, METH_VARARGS, nullptr},
                         {"setMObject", nothing, METH_VARARGS, nullptr},
                         kEnd};
PyMethodDef of_matrix_data[] = {{"matrix", another<matrix_type>, METH_NOARGS, nullptr}, kEnd};
PyMethodDef of_matrix[] = {{"getElement", element, METH_VARARGS, nullptr}, kEnd};
PyMethodDef of_array[] = {{"append", nothing, METH_VARARGS, nullptr}, kEnd};
PyMethodDef of_array_data[] = {{"create", another<object_type>, METH_VARARGS, nullptr}, kEnd};
PyMethodDef of_files[] = {{"isReadingFile", no, METH_STATIC | METH_NOARGS, nullptr},
                          {"isWritingFile", no, METH_STATIC | METH_NOARGS, nullptr},
                          {"isOpeningFile", no, METH_STATIC | METH_NOARGS, nullptr},
                          {"isNewingFile", no, METH_STATIC | METH_NOARGS, nullptr},
                          kEnd};
PyMethodDef of_messages[] = {{"removeCallback", nothing, kStatic, nullptr},
                             {"addNodeRemovedCallback", number, kStatic, nullptr},
                             {"addAnimCurveEditedCallback", number, kStatic, nullptr},
                             {"addAnimKeyframeEditedCallback", number, kStatic, nullptr},
                             kEnd};
PyMethodDef of_control[] = {{"isPlaying", no, METH_STATIC | METH_NOARGS, nullptr},
                            {"currentTime", current_time, METH_STATIC | METH_NOARGS, nullptr},
                            kEnd};

// --- the commands ------------------------------------------------------------------------------------------------

using Command = PyObject* (*)(PyObject*, PyObject*, PyObject*);

// Borrowed, or null.
PyObject* keyword(PyObject* keywords, const char* name) {
  return keywords ? PyDict_GetItemString(keywords, name) : nullptr;
}

template <PyObject* (*Answer)(PyObject*, PyObject*)>
PyObject* always(PyObject* self, PyObject* arguments, PyObject*) {
  return Answer(self, arguments);
}

PyObject* yes(PyObject*, PyObject*) { Py_RETURN_TRUE; }
PyObject* first_in_list(PyObject*, PyObject* arguments) { return Py_BuildValue("[O]", PyTuple_GET_ITEM(arguments, 0)); }
PyObject* last(PyObject*, PyObject* arguments) {
  return itself(PyTuple_GET_ITEM(arguments, PyTuple_GET_SIZE(arguments) - 1), nullptr);
}

PyObject* listed(PyObject*, PyObject*, PyObject* keywords) {
  return keyword(keywords, "sl") ? Py_BuildValue("[s]", "|ball") : PyList_New(0);
}
PyObject* made(PyObject*, PyObject*, PyObject* keywords) { return itself(keyword(keywords, "name"), nullptr); }
PyObject* range(PyObject*, PyObject*, PyObject* keywords) {
  return PyFloat_FromDouble(keyword(keywords, "min") ? 1.0 : 1000.0);
}
PyObject* frame(PyObject*, PyObject*) { return PyFloat_FromDouble(1.0); }

PyObject* world_matrix(PyObject*, PyObject*, PyObject* keywords) {
  const double time = PyFloat_AsDouble(keyword(keywords, "time"));
  PyObject* const matrix = PyList_New(16);
  for (long i = 0; matrix && i < 16; ++i)
    PyList_SET_ITEM(matrix, i, PyFloat_FromDouble(i >= 12 && i < 15 ? coordinate(time, i - 12) : 1.0));
  return matrix;
}

PyMethodDef command(const char* name, Command function) {
  return {name, reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function)), METH_VARARGS | METH_KEYWORDS,
          nullptr};
}

PyMethodDef commands[] = {command("ls", listed),
                          command("objExists", always<yes>),
                          command("listRelatives", always<first_in_list>),
                          command("select", always<nothing>),
                          command("createNode", made),
                          command("rename", always<last>),
                          command("parent", always<nothing>),
                          command("group", always<nothing>),
                          command("delete", always<nothing>),
                          command("getAttr", world_matrix),
                          command("setAttr", always<nothing>),
                          command("keyframe", always<nothing>),
                          command("playbackOptions", range),
                          command("currentTime", always<frame>),
                          command("evalDeferred", always<nothing>),
                          command("refresh", always<nothing>),
                          command("inViewMessage", always<nothing>),
                          command("warning", always<nothing>),
                          command("getPanel", always<nothing>),
                          command("optionVar", always<no>),
                          command("about", always<no>),
                          command("pluginInfo", always<yes>),
                          kEnd};

// --- the modules -------------------------------------------------------------------------------------------------

bool add(PyObject* module, const char* name, PyTypeObject* type) {
  return type && PyObject_SetAttrString(module, name, reinterpret_cast<PyObject*>(type)) == 0;
}

bool fill_object_model(PyObject* om) {
  object_type = new_type("OpenMaya.MObject", none);
  plug_type = new_type("OpenMaya.MPlug", of_plug);
  matrix_type = new_type("OpenMaya.MMatrix", of_matrix);
  time_type = new_type("OpenMaya.MTime", of_time);
  PyTypeObject* const messages = new_type("OpenMaya.MMessage", of_messages);
  return add(om, "MObject", object_type) && add(om, "MPlug", plug_type) && add(om, "MMatrix", matrix_type) &&
         add(om, "MTime", time_type) && add(om, "MDGContext", new_type("OpenMaya.MDGContext", none)) &&
         add(om, "MSelectionList", new_type("OpenMaya.MSelectionList", of_selection)) &&
         add(om, "MFnDependencyNode", new_type("OpenMaya.MFnDependencyNode", of_node)) &&
         add(om, "MFnMatrixData", new_type("OpenMaya.MFnMatrixData", of_matrix_data)) &&
         add(om, "MFnVectorArrayData", new_type("OpenMaya.MFnVectorArrayData", of_array_data)) &&
         add(om, "MVector", new_type("OpenMaya.MVector", none)) &&
         add(om, "MVectorArray", new_type("OpenMaya.MVectorArray", of_array, construct_array)) &&
         add(om, "MFileIO", new_type("OpenMaya.MFileIO", of_files)) && add(om, "MMessage", messages) &&
         add(om, "MDGMessage", messages);
}

bool fill_animation_model(PyObject* oma) {
  return add(oma, "MAnimControl", new_type("OpenMayaAnim.MAnimControl", of_control)) &&
         add(oma, "MAnimMessage", new_type("OpenMayaAnim.MAnimMessage", of_messages));
}

// fill(cmds, om, oma): puts into three modules what Maya's have.
PyObject* fill(PyObject*, PyObject* modules) {
  PyObject *cmds, *om, *oma;
  if (!PyArg_ParseTuple(modules, "OOO", &cmds, &om, &oma)) return nullptr;
  if (PyModule_AddFunctions(cmds, commands) < 0 || !fill_object_model(om) || !fill_animation_model(oma)) return nullptr;
  Py_RETURN_NONE;
}

}  // namespace

PyMODINIT_FUNC PyInit_silent_types() {
  static PyMethodDef functions[] = {{"fill", fill, METH_VARARGS, nullptr}, kEnd};
  static PyModuleDef definition = {
      PyModuleDef_HEAD_INIT, "silent_types", nullptr, -1, functions, nullptr, nullptr, nullptr, nullptr};
  return PyModule_Create(&definition);
}
