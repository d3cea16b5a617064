#pragma once

// Names, and what they stand for in the Python module that is served.

#include <unordered_map>
#include <vector>

#include "python/object.h"

namespace kestrix::python {

/// The names that were used so far, as Python strings, by the literals that spell them.
using Names = std::unordered_map<const char*, Object>;

/// For as long as it lives, names on this thread are those of one interpreter's module.
class NamesInUse {
 public:
  explicit NamesInUse(Names& names);
  NamesInUse(const NamesInUse&) = delete;
  NamesInUse& operator=(const NamesInUse&) = delete;
  ~NamesInUse();

 private:
  Names* outer_;
};

const Object& name(const char* literal);

/// What a name stands for now in the module whose Python code called. Raises NameError when it
/// stands for nothing.
Object global(const char* literal);
/// One that counts something.
std::size_t global_size(const char* literal);

/// `callable(arguments...)`.
template <class... Arguments>
Object call(const Object& callable, const Arguments&... arguments) {
  return Object::steal(PyObject_CallFunctionObjArgs(callable.ptr(), arguments.ptr()..., nullptr));
}

/// `object.name(arguments...)`.
template <class... Arguments>
Object call_method(const Object& object, const char* literal, const Arguments&... arguments) {
  return Object::steal(
      PyObject_CallMethodObjArgs(object.ptr(), name(literal).ptr(), arguments.ptr()..., nullptr));
}

/// An argument that is given by its name.
struct Keyword {
  const char* literal;
  Object value;
};

/// `callable(argument, keywords...)`, without the argument where it is null.
Object call_with(const Object& callable, const Object& argument,
                 const std::vector<Keyword>& keywords);

}  // namespace kestrix::python
