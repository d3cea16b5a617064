#include "python/object.h"

#include <cstring>
#include <string>

namespace kestrix::python {
namespace {

// Strings made through interfaces that Python 3.12 dropped settle their form late.
void settle([[maybe_unused]] PyObject* text) {
#if PY_VERSION_HEX < 0x030C0000
  if (PyUnicode_READY(text) < 0) throw_pending();
#endif
}

}  // namespace

void throw_pending() {
  if (PyErr_ExceptionMatches(PyExc_Exception)) throw PendingError();
  throw PendingStop();
}

void throw_type_error(std::string_view expected, PyObject* found) {
  PyErr_Format(PyExc_TypeError, "%s, not %.200s", std::string(expected).c_str(),
               Py_TYPE(found)->tp_name);
  throw_pending();
}

void require_iterable(PyObject* object, std::string_view expected) {
  if (Py_TYPE(object)->tp_iter == nullptr && PySequence_Check(object) == 0) {
    throw_type_error(expected, object);
  }
}

bool Object::starts_with(std::string_view prefix) const {
  if (!is_str()) throw_type_error("a text must be a str", ptr());
  settle(ptr());
  if (PyUnicode_GET_LENGTH(ptr()) < static_cast<Py_ssize_t>(prefix.size())) return false;
  Py_ssize_t at = 0;
  for (const char c : prefix) {
    if (PyUnicode_READ_CHAR(ptr(), at++) != static_cast<Py_UCS4>(c)) return false;
  }
  return true;
}

Py_hash_t Object::computed_hash() const {
  const auto value = is_str() ? PyUnicode_Type.tp_hash(ptr()) : PyObject_Hash(ptr());
  if (value == -1) throw_pending();
  return value;
}

// Equal texts are stored in the same form.
bool Object::same_text(PyObject* a, PyObject* b) {
  settle(a);
  settle(b);
  const auto length = PyUnicode_GET_LENGTH(a);
  if (length != PyUnicode_GET_LENGTH(b) || PyUnicode_KIND(a) != PyUnicode_KIND(b)) return false;
  const auto bytes = static_cast<std::size_t>(length) * static_cast<std::size_t>(PyUnicode_KIND(a));
  return std::memcmp(PyUnicode_DATA(a), PyUnicode_DATA(b), bytes) == 0;
}

std::weak_ordering operator<=>(const Object& a, const Object& b) {
  if (a.is_str() && b.is_str()) return PyUnicode_Compare(a.ptr(), b.ptr()) <=> 0;
  if (checked(PyObject_RichCompareBool(a.ptr(), b.ptr(), Py_LT))) return std::weak_ordering::less;
  return a == b ? std::weak_ordering::equivalent : std::weak_ordering::greater;
}

// An iterator may go on for ever without running any Python code.
Object ItemIterator::next_of_iterator() {
  constexpr Py_ssize_t kItemsBetweenSignals = 1 << 12;
  if (++index_ % kItemsBetweenSignals == 0) checked(PyErr_CheckSignals());
  PyObject* item = PyIter_Next(source_.ptr());
  if (item != nullptr) return Object::steal(item);
  if (PyErr_Occurred() != nullptr) throw_pending();
  return {};
}

}  // namespace kestrix::python
