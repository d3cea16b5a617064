#include "python/namespace.h"

namespace kestrix::python {
namespace {

thread_local const Namespace* running = nullptr;

Object imported(const char* module, const char* name) {
  const auto imported_module = Object::steal(PyImport_ImportModule(module));
  return imported_module.attribute(interned(name));
}

Object tuple_field_type_of_python() {
  PyObject* module = PyImport_ImportModule("_collections");
  PyObject* type = module == nullptr ? nullptr : PyObject_GetAttrString(module, "_tuplegetter");
  Py_XDECREF(module);
  if (type != nullptr) return Object::steal(type);
  PyErr_Clear();
  return {};
}

}  // namespace

Namespace::Namespace(PyObject* globals)
    : globals_(globals),
      counter_type_(imported("collections", "Counter")),
      tuple_field_type_(tuple_field_type_of_python()) {}

const Namespace& Namespace::current() { return *running; }

Object Namespace::global(const Object& name) const {
  PyObject* value = PyDict_GetItemWithError(globals_, name.ptr());
  if (value != nullptr) return Object::borrow(value);
  if (PyErr_Occurred() == nullptr) {
    PyErr_Format(PyExc_NameError, "name %R is not defined", name.ptr());
  }
  throw_pending();
}

Entered::Entered(const Namespace& module) : outer_(running) { running = &module; }

// Left alone by the outermost call: where stacks are switched (greenlets), another call of the same
// module may still be under way.
Entered::~Entered() {
  if (outer_ != nullptr) running = outer_;
}

}  // namespace kestrix::python
