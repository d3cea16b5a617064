#include "python/native_function.h"

#include <structmember.h>

#include <array>
#include <cstddef>

namespace kestrix::python {
namespace {

struct NativeFunction {
  PyObject base;
  vectorcallfunc call;
  const Function* function;
  const Namespace* names;  // lives as long as the module
  PyObject* module;
  PyObject* attributes;
};

NativeFunction* as_function(PyObject* self) { return reinterpret_cast<NativeFunction*>(self); }

PyObject* call_native(PyObject* self, PyObject* const* arguments, std::size_t count,
                      PyObject* keywords) {
  const auto* const callee = as_function(self);
  return run(*callee->function, *callee->names, arguments,
             static_cast<std::size_t>(PyVectorcall_NARGS(count)), keywords);
}

PyObject* bind(PyObject* self, PyObject* object, PyObject* /*type*/) {
  if (object != nullptr && object != Py_None) return PyMethod_New(self, object);
  Py_INCREF(self);
  return self;
}

int traverse(PyObject* self, visitproc visit, void* arg) {
  Py_VISIT(Py_TYPE(self));
  Py_VISIT(as_function(self)->module);
  Py_VISIT(as_function(self)->attributes);
  return 0;
}

int clear(PyObject* self) {
  Py_CLEAR(as_function(self)->attributes);
  return 0;
}

void destroy(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  PyObject_GC_UnTrack(self);
  clear(self);
  Py_CLEAR(as_function(self)->module);
  type->tp_free(self);
  Py_DECREF(type);
}

PyObject* represent(PyObject* self) {
  return PyUnicode_FromFormat("<native function %s>", as_function(self)->function->qualified_name);
}

// Pickled and copied by name, like a Python function.
PyObject* reduce(PyObject* self, PyObject* /*unused*/) {
  return PyUnicode_FromString(as_function(self)->function->qualified_name);
}

std::array<PyMethodDef, 2> methods = {{
    {"__reduce__", reduce, METH_NOARGS, nullptr},
    {nullptr, nullptr, 0, nullptr},
}};

std::array<PyMemberDef, 3> members = {{
    {"__vectorcalloffset__", T_PYSSIZET, offsetof(NativeFunction, call), READONLY, nullptr},
    {"__dictoffset__", T_PYSSIZET, offsetof(NativeFunction, attributes), READONLY, nullptr},
    {nullptr, 0, 0, 0, nullptr},
}};

std::array<PyGetSetDef, 2> properties = {{
    {"__dict__", PyObject_GenericGetDict, PyObject_GenericSetDict, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
}};

template <class Function>
PyType_Slot slot(int id, Function* function) {
  return {id, reinterpret_cast<void*>(function)};
}

}  // namespace

Object native_function_type(PyObject* module) {
  std::array slots = {
      slot(Py_tp_call, PyVectorcall_Call),   slot(Py_tp_descr_get, bind),
      slot(Py_tp_traverse, traverse),        slot(Py_tp_clear, clear),
      slot(Py_tp_dealloc, destroy),          slot(Py_tp_repr, represent),
      slot(Py_tp_methods, methods.data()),   slot(Py_tp_members, members.data()),
      slot(Py_tp_getset, properties.data()), PyType_Slot{0, nullptr},
  };
  unsigned int flags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_HAVE_GC | Py_TPFLAGS_METHOD_DESCRIPTOR |
                       Py_TPFLAGS_HAVE_VECTORCALL;
#if PY_VERSION_HEX >= 0x030A0000
  flags |= Py_TPFLAGS_DISALLOW_INSTANTIATION | Py_TPFLAGS_IMMUTABLETYPE;
#endif
  PyType_Spec spec = {"kestrix.workers.wiki.page_sources.native_function", sizeof(NativeFunction),
                      0, flags, slots.data()};
  return Object::steal(PyType_FromModuleAndSpec(module, &spec, nullptr));
}

Object native_function(const Object& type, const Function& function, const Namespace& names,
                       PyObject* module) {
  const auto attributes = Object::steal(
      Py_BuildValue("{s:s, s:s, s:s, s:s, s:O}", "__name__", function.name, "__qualname__",
                    function.qualified_name, "__doc__", function.documentation,
                    "__text_signature__", function.signature, "__module__",
                    Object::steal(PyObject_GetAttrString(module, "__name__")).ptr()));
  auto* const made = reinterpret_cast<PyTypeObject*>(type.ptr());
  auto callee = Object::steal(made->tp_alloc(made, 0));
  auto* const fields = as_function(callee.ptr());
  fields->call = call_native;
  fields->function = &function;
  fields->names = &names;
  Py_INCREF(module);
  fields->module = module;
  Py_INCREF(attributes.ptr());
  fields->attributes = attributes.ptr();
  return callee;
}

}  // namespace kestrix::python
