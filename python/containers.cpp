#include "python/containers.h"

namespace kestrix::python {
namespace {

// What is in a dict of our own making, or null. The reference is borrowed from the dict.
PyObject* find(const Object& dict, const Object& key) {
  PyObject* const found = PyDict_GetItemWithError(dict.ptr(), key.ptr());
  if (found == nullptr && PyErr_Occurred() != nullptr) throw_pending();
  return found;
}

// `counter[key] += amount`, where nothing reads as 0.
void add_to(const Object& counter, const Object& key, const Object& amount) {
  PyObject* const found = find(counter, key);
  const auto count = found == nullptr ? Object::number(0) : Object::borrow(found);
  const auto sum = Object::steal(PyNumber_Add(count.ptr(), amount.ptr()));
  checked(PyDict_SetItem(counter.ptr(), key.ptr(), sum.ptr()));
}

// As its constructor makes it when nothing is given, without running the Python code of that.
Object new_counter() {
  const auto type = global("Counter");
  return call_method(type, "__new__", type);
}

}  // namespace

List ascending(const Set& set) {
  List list(Object::steal(PySequence_List(set.ptr())));
  checked(PyList_Sort(list.ptr()));
  return list;
}

void unpack(const Object& iterable, std::span<Object> names) {
  const auto expected = static_cast<Py_ssize_t>(names.size());
  Py_ssize_t count = 0;
  for (const auto& item : iterable) {
    if (count == expected) {
      PyErr_Format(PyExc_ValueError, "too many values to unpack (expected %zd)", expected);
      throw_pending();
    }
    names[static_cast<std::size_t>(count++)] = item;
  }
  if (count < expected) {
    PyErr_Format(PyExc_ValueError, "not enough values to unpack (expected %zd, got %zd)", expected,
                 count);
    throw_pending();
  }
}

void Dict::add(const Object& key, std::size_t amount) { add_to(*this, key, number(amount)); }

void Dependents::add(const Object& target, const Object& source, const Object& weight) {
  PyObject* const found = find(*this, target);
  const auto counter = found == nullptr ? new_counter() : borrow(found);
  if (found == nullptr) insert_or_assign(target, counter);
  add_to(counter, source, weight);
}

bool is_used(const Mapping& dependents, const Object& path) {
  return dependents.get(path, Object::borrow(Py_None)).is_true();
}

std::optional<Object> strongest_dependent(const Mapping& dependents, const Object& path) {
  const auto counter = dependents.get(path, Object::borrow(Py_None));
  if (!counter.is_true()) return std::nullopt;
  for (const auto& entry : call_method(counter, "most_common", Object::number(1))) {
    return unpacked<2>(entry)[0];
  }
  return std::nullopt;
}

}  // namespace kestrix::python
