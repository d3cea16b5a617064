#include "python/pending.h"

#include <frameobject.h>

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

void add_to_trace(PyObject* globals, const char* function) {
  PyObject* type = nullptr;
  PyObject* error = nullptr;
  PyObject* trace = nullptr;
  PyErr_Fetch(&type, &error, &trace);
  PyCodeObject* const code = PyCode_NewEmpty("<page_sources>", function, 1);
  PyFrameObject* const frame =
      code == nullptr ? nullptr : PyFrame_New(PyThreadState_Get(), code, globals, nullptr);
  PyErr_Restore(type, error, trace);
  if (frame != nullptr) PyTraceBack_Here(frame);
  Py_XDECREF(reinterpret_cast<PyObject*>(frame));
  Py_XDECREF(reinterpret_cast<PyObject*>(code));
}

HandledException::HandledException(const std::exception& error, PyObject* globals,
                                   const char* function) {
  raise_in_python(error);
  add_to_trace(globals, function);
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
