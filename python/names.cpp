#include "python/names.h"

namespace kestrix::python {
namespace {

thread_local Names* in_use = nullptr;

}  // namespace

NamesInUse::NamesInUse(Names& names) : outer_(in_use) { in_use = &names; }

// Left alone by the outermost call: where stacks are switched (greenlets), another call may still
// be under way.
NamesInUse::~NamesInUse() {
  if (outer_ != nullptr) in_use = outer_;
}

const Object& name(const char* literal) {
  const auto found = in_use->find(literal);
  if (found != in_use->end()) return found->second;
  return in_use->emplace(literal, Object::steal(PyUnicode_InternFromString(literal))).first->second;
}

Object global(const char* literal) {
  PyObject* const globals = PyEval_GetGlobals();
  PyObject* const value =
      globals == nullptr ? nullptr : PyDict_GetItemWithError(globals, name(literal).ptr());
  if (value != nullptr) return Object::borrow(value);
  if (PyErr_Occurred() == nullptr) {
    PyErr_Format(PyExc_NameError, "name '%s' is not defined", literal);
  }
  throw_pending();
}

std::size_t global_size(const char* literal) {
  const std::size_t value = PyLong_AsSize_t(global(literal).ptr());
  if (value == static_cast<std::size_t>(-1) && PyErr_Occurred() != nullptr) throw_pending();
  return value;
}

Object call_with(const Object& callable, const Object& argument,
                 const std::vector<Keyword>& keywords) {
  const auto named = Object::steal(PyDict_New());
  for (const auto& [literal, value] : keywords) {
    checked(PyDict_SetItem(named.ptr(), name(literal).ptr(), value.ptr()));
  }
  const auto positional =
      Object::steal(argument.ptr() == nullptr ? PyTuple_New(0) : PyTuple_Pack(1, argument.ptr()));
  return Object::steal(PyObject_Call(callable.ptr(), positional.ptr(), named.ptr()));
}

}  // namespace kestrix::python
