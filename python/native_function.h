#pragma once

// Functions and methods that are written in C++ and behave like Python's own: they bind to whatever
// object they are looked up on, have a name, documentation and a signature, take attributes, and
// are pickled by name. (Python's built-in methods insist on the class of `self`.)

#include "python/function.h"
#include "python/object.h"

namespace kestrix::python {

/// The type of native functions, for one module.
Object native_function_type(PyObject* module);

/// A native function that runs `function` as code of `module`, whose namespace is `names`.
Object native_function(const Object& type, const Function& function, const Namespace& names,
                       PyObject* module);

}  // namespace kestrix::python
