#pragma once

// Native functions with the calling conventions of Python functions.

#include <array>
#include <cstddef>

#include "python/namespace.h"
#include "python/object.h"

namespace kestrix::python {

inline constexpr std::size_t kMostParameters = 3;

/// The values of a call's parameters, borrowed; null where one was left at its default.
using Values = std::array<PyObject*, kMostParameters>;

/// A function of the module, or a method, whose first parameter is `self`. Every parameter may be
/// given by position or by name.
struct Function {
  const char* name;
  const char* qualified_name;
  const char* signature;  ///< as `inspect` reads it: the parameters and their defaults
  const char* documentation;
  std::array<const char*, kMostParameters> parameters;  ///< null where there are fewer
  std::size_t required;                                 ///< how many have no default
  Object (*body)(const Values& values);
};

/// Calls `function` as code of `module`. Null when it failed, with the exception pending.
PyObject* run(const Function& function, const Namespace& module, PyObject* const* positional,
              std::size_t positional_count, PyObject* keywords);

}  // namespace kestrix::python
