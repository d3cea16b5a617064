#include "python/containers.h"

#include "python/namespace.h"

namespace kestrix::python {
namespace {

void throw_value_error(const char* format, std::size_t expected) {
  PyErr_Format(PyExc_ValueError, format, static_cast<Py_ssize_t>(expected));
  throw_pending();
}

// What is in a dict of our own making, or null. The reference is borrowed from the dict.
PyObject* find(PyObject* dict, PyObject* key) {
  PyObject* found = PyDict_GetItemWithError(dict, key);
  if (found == nullptr && PyErr_Occurred() != nullptr) throw_pending();
  return found;
}

Object sum_of(PyObject* a, PyObject* b) { return Object::steal(PyNumber_Add(a, b)); }

// `add_to` for an int: what it adds to 0 is itself, so that one search of the counter finds the
// count or puts the first one there.
void add_int_to(PyObject* counter, PyObject* key, PyObject* amount) {
  const Py_ssize_t size = PyDict_GET_SIZE(counter);
  PyObject* const count = PyDict_SetDefault(counter, key, amount);
  if (count == nullptr) throw_pending();
  if (PyDict_GET_SIZE(counter) != size) return;
  checked(PyDict_SetItem(counter, key, sum_of(count, amount).ptr()));
}

// `counter[key] += amount` of a Counter, which reads 0 where it has nothing.
void add_to(PyObject* counter, PyObject* key, PyObject* amount) {
  if (PyLong_CheckExact(amount)) return add_int_to(counter, key, amount);
  PyObject* const found = find(counter, key);
  const auto sum = sum_of(found != nullptr ? found : Object::number(0).ptr(), amount);
  checked(PyDict_SetItem(counter, key, sum.ptr()));
}

// As its constructor without arguments makes it, without running the Python code of that.
Object new_counter() {
  const auto& type = Namespace::current().counter_type();
  const auto no_arguments = Object::steal(PyTuple_New(0));
  auto* const made = reinterpret_cast<PyTypeObject*>(type.ptr());
  return Object::steal(made->tp_new(made, no_arguments.ptr(), nullptr));
}

bool is_plain_dict(PyObject* mapping) {
  return PyDict_CheckExact(mapping) ||
         reinterpret_cast<PyObject*>(Py_TYPE(mapping)) == Namespace::current().counter_type().ptr();
}

}  // namespace

Object ascending(const Set& set) {
  auto list = Object::steal(PySequence_List(set.ptr()));
  checked(PyList_Sort(list.ptr()));
  return list;
}

void unpack(const Object& iterable, std::span<Object> names) {
  if (Py_TYPE(iterable.ptr())->tp_iter == nullptr && PySequence_Check(iterable.ptr()) == 0) {
    PyErr_Format(PyExc_TypeError, "cannot unpack non-iterable %.200s object",
                 Py_TYPE(iterable.ptr())->tp_name);
    throw_pending();
  }
  std::size_t count = 0;
  for (const auto& item : iterable) {
    if (count == names.size()) {
      throw_value_error("too many values to unpack (expected %zd)", names.size());
    }
    names[count++] = item;
  }
  if (count < names.size()) {
    PyErr_Format(PyExc_ValueError, "not enough values to unpack (expected %zd, got %zd)",
                 static_cast<Py_ssize_t>(names.size()), static_cast<Py_ssize_t>(count));
    throw_pending();
  }
}

List::List(const std::vector<Object>& items)
    : Object(steal(PyList_New(static_cast<Py_ssize_t>(items.size())))) {
  Py_ssize_t at = 0;
  for (auto item : items) PyList_SET_ITEM(ptr(), at++, item.release());
}

Object Mapping::get(const Object& key, const Object& fallback) const {
  if (!PyDict_CheckExact(ptr())) return call_method(*this, names().get, key, fallback);
  PyObject* found = find(ptr(), key.ptr());
  return found == nullptr ? fallback : borrow(found);
}

void Dict::add(const Object& key, std::int64_t amount) {
  add_to(ptr(), key.ptr(), steal(PyLong_FromLongLong(amount)).ptr());
}

Items::Items(const Mapping& mapping) : dict_(mapping) {
  if (is_plain_dict(mapping.ptr())) {
    size_ = PyDict_GET_SIZE(mapping.ptr());
  } else {
    iterator_ = call_method(mapping, names().items).begin();
    dict_ = Mapping(Object());
  }
}

bool Items::next() {
  if (dict_.ptr() != nullptr) return next_of_dict();
  if (position_++ > 0) ++iterator_;
  if (iterator_ == std::default_sentinel) return false;
  auto pair = unpacked<2>(*iterator_);
  key_ = std::move(pair[0]);
  value_ = std::move(pair[1]);
  return true;
}

bool Items::next_of_dict() {
  if (PyDict_GET_SIZE(dict_.ptr()) != size_) {
    PyErr_SetString(PyExc_RuntimeError, "dictionary changed size during iteration");
    throw_pending();
  }
  PyObject* key = nullptr;
  PyObject* value = nullptr;
  if (PyDict_Next(dict_.ptr(), &position_, &key, &value) == 0) return false;
  key_ = Object::borrow(key);
  value_ = Object::borrow(value);
  return true;
}

void Dependents::add(const Object& target, const Object& source, const Object& weight) {
  PyObject* counter = find(ptr(), target.ptr());
  if (counter == nullptr) {
    const auto made = new_counter();
    checked(PyDict_SetItem(ptr(), target.ptr(), made.ptr()));
    counter = made.ptr();
  }
  add_to(counter, source.ptr(), weight.ptr());
}

bool is_used(const Mapping& dependents, const Object& path) {
  return dependents.get(path, Object::borrow(Py_None)).is_true();
}

std::optional<Object> strongest_dependent(const Mapping& dependents, const Object& path) {
  const auto counter = dependents.get(path, Object::borrow(Py_None));
  if (!counter.is_true()) return std::nullopt;
  const auto strongest = call_method(counter, names().most_common, Object::number(1));
  for (const auto& entry : strongest) return unpacked<2>(entry)[0];
  return std::nullopt;
}

}  // namespace kestrix::python
