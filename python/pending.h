#pragma once

// Failures on their way between C++ and Python.

#include <exception>

#include "python/object.h"

namespace kestrix::python {

/// Makes a C++ failure the pending exception, unless a Python one is pending already.
void raise_in_python(const std::exception& error);

/// Adds an entry for a function of this module to the trace of the pending exception.
void add_to_trace(PyObject* globals, const char* function);

/// The pending exception, taken away and handled: it is what `sys.exc_info()` gives, and the
/// context of exceptions that are raised meanwhile.
class HandledException {
 public:
  /// `function` is where it was caught.
  HandledException(const std::exception& error, PyObject* globals, const char* function);
  HandledException(const HandledException&) = delete;
  HandledException& operator=(const HandledException&) = delete;
  ~HandledException();

 private:
  PyObject* outer_type_ = nullptr;
  PyObject* outer_ = nullptr;
  PyObject* outer_trace_ = nullptr;
};

}  // namespace kestrix::python
