#pragma once

// Failures on their way between C++ and Python.

#include <exception>

#include "python/object.h"

namespace kestrix::python {

/// Makes a C++ failure the pending exception, unless a Python one is pending already.
void raise_in_python(const std::exception& error);

/// The pending exception, taken away and handled as if the calling Python function had caught it:
/// it is what `sys.exc_info()` gives, and the context of exceptions that are raised meanwhile.
class HandledException {
 public:
  explicit HandledException(const std::exception& error);
  HandledException(const HandledException&) = delete;
  HandledException& operator=(const HandledException&) = delete;
  ~HandledException();

 private:
  PyObject* outer_type_ = nullptr;
  PyObject* outer_ = nullptr;
  PyObject* outer_trace_ = nullptr;
};

}  // namespace kestrix::python
