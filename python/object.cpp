#include "python/object.h"

#include "python/names.h"

namespace kestrix::python {

void throw_pending() {
  if (PyErr_ExceptionMatches(PyExc_Exception)) throw PendingError();
  throw PendingStop();
}

Object Object::attribute(const char* literal) const {
  return steal(PyObject_GetAttr(object_, name(literal).object_));
}

std::size_t Object::size() const {
  const Py_ssize_t size = PyObject_Size(object_);
  if (size < 0) throw_pending();
  return static_cast<std::size_t>(size);
}

bool Object::starts_with(std::string_view prefix) const {
  const Py_ssize_t found =
      PyUnicode_Tailmatch(object_, Object(prefix).ptr(), 0, PY_SSIZE_T_MAX, -1);
  if (found < 0) throw_pending();
  return found != 0;
}

std::weak_ordering operator<=>(const Object& a, const Object& b) {
  if (a.is_str() && b.is_str()) return PyUnicode_Compare(a.ptr(), b.ptr()) <=> 0;
  if (checked(PyObject_RichCompareBool(a.ptr(), b.ptr(), Py_LT))) return std::weak_ordering::less;
  return a == b ? std::weak_ordering::equivalent : std::weak_ordering::greater;
}

ItemIterator& ItemIterator::operator++() {
  constexpr std::size_t kItemsBetweenSignals = 1U << 12U;
  if (++count_ % kItemsBetweenSignals == 0) checked(PyErr_CheckSignals());
  PyObject* const item = PyIter_Next(source_.ptr());
  if (item == nullptr && PyErr_Occurred() != nullptr) throw_pending();
  item_ = item == nullptr ? Object() : Object::steal(item);
  return *this;
}

}  // namespace kestrix::python
