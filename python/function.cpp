#include "python/function.h"

#include <memory>

#include "python/pending.h"

namespace kestrix::python {
namespace {

std::size_t parameter_count(const Function& function) {
  std::size_t count = 0;
  while (count < kMostParameters && function.parameters[count] != nullptr) ++count;
  return count;
}

template <class... Details>
[[noreturn]] void refuse(const char* format, const Function& function, Details... details) {
  PyErr_Format(PyExc_TypeError, format, function.qualified_name, details...);
  throw_pending();
}

std::size_t parameter_named(const Function& function, PyObject* keyword) {
  for (std::size_t i = 0; i < parameter_count(function); ++i) {
    if (PyUnicode_CompareWithASCIIString(keyword, function.parameters[i]) == 0) return i;
  }
  refuse("%s() got an unexpected keyword argument %R", function, keyword);
}

void bind_keywords(const Function& function, PyObject* const* given, PyObject* keywords,
                   Values& values) {
  for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(keywords); ++i) {
    PyObject* const keyword = PyTuple_GET_ITEM(keywords, i);
    PyObject*& value = values[parameter_named(function, keyword)];
    if (value != nullptr) refuse("%s() got multiple values for argument %R", function, keyword);
    value = given[i];
  }
}

Values bound(const Function& function, PyObject* const* positional, std::size_t positional_count,
             PyObject* keywords) {
  const std::size_t most = parameter_count(function);
  if (positional_count > most) {
    refuse("%s() takes at most %zd positional arguments but %zd were given", function,
           static_cast<Py_ssize_t>(most), static_cast<Py_ssize_t>(positional_count));
  }
  Values values{};
  std::copy_n(positional, positional_count, values.begin());
  if (keywords != nullptr) bind_keywords(function, positional + positional_count, keywords, values);
  for (std::size_t i = 0; i < function.required; ++i) {
    if (values[i] == nullptr) {
      refuse("%s() missing required argument: '%s'", function, function.parameters[i]);
    }
  }
  return values;
}

}  // namespace

PyObject* run(const Function& function, const Namespace& module, PyObject* const* positional,
              std::size_t positional_count, PyObject* keywords) {
  if (Py_EnterRecursiveCall(" in page_sources") != 0) return nullptr;
  const std::unique_ptr<const Function, void (*)(const Function*)> left(
      &function, [](const Function*) { Py_LeaveRecursiveCall(); });
  const Entered entered(module);
  try {
    const auto values = bound(function, positional, positional_count, keywords);
    return function.body(values).release();
  } catch (const PendingStop&) {  // already where Python looks for it
  } catch (const std::exception& error) {
    raise_in_python(error);
  }
  add_to_trace(module.globals(), function.name);
  return nullptr;
}

}  // namespace kestrix::python
