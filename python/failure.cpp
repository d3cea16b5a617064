#include "python/failure.h"

#include <new>

namespace kestrix::python {

void raise_in_python(const std::exception& error) {
  if (PyErr_Occurred() != nullptr) return;
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) {
    PyErr_NoMemory();
  } else {
    PyErr_SetString(PyExc_RuntimeError, error.what());
  }
}

HandledException::HandledException(const std::exception& error) {
  raise_in_python(error);
  PyFrameObject* const caller = PyEval_GetFrame();
  if (caller != nullptr) PyTraceBack_Here(caller);
  PyObject* type = nullptr;
  PyObject* value = nullptr;
  PyObject* trace = nullptr;
  PyErr_Fetch(&type, &value, &trace);
  PyErr_NormalizeException(&type, &value, &trace);
  if (trace != nullptr) PyException_SetTraceback(value, trace);
  PyErr_GetExcInfo(&outer_type_, &outer_, &outer_trace_);
  PyErr_SetExcInfo(type, value, trace);
}

HandledException::~HandledException() { PyErr_SetExcInfo(outer_type_, outer_, outer_trace_); }

}  // namespace kestrix::python
