#pragma once

// Python objects as values: what the rules and recipes need of a path, a record or a number.
// Written against the limited API, so that one binary fits every CPython from the version that the
// build names on.

#include <Python.h>

#include <compare>
#include <cstddef>
#include <exception>
#include <functional>
#include <iterator>
#include <string_view>
#include <utility>

namespace kestrix::python {

/// A Python operation failed. The error itself is the interpreter's pending exception and stays
/// there, so whoever catches this either lets Python see it or takes it away.
struct PendingError : std::exception {
  const char* what() const noexcept override { return "a Python operation failed"; }
};

/// The same for an exception that is no ordinary error, such as KeyboardInterrupt: a request to
/// stop, which no handler of std::exception catches.
struct PendingStop {};

/// Throws what fits the pending exception.
[[noreturn]] void throw_pending();

inline PyObject* checked(PyObject* result) {
  if (result == nullptr) throw_pending();
  return result;
}

inline bool checked(int result) {
  if (result < 0) throw_pending();
  return result != 0;
}

class ItemIterator;

/// A strong reference to a Python object, as a value.
///
/// Objects are equal and hash as they do in Python; strings are ordered by code point, a lone
/// surrogate being one like any other, and other objects as they compare. Operations throw
/// `PendingError` or `PendingStop`.
class Object {
 public:
  Object() = default;
  /// A new string. `text` is ASCII.
  explicit Object(const char* text) : Object(std::string_view(text)) {}
  explicit Object(std::string_view text)
      : object_(checked(
            PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size())))) {}
  Object(const Object& other) : object_(other.object_) { Py_XINCREF(object_); }
  Object(Object&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  Object& operator=(const Object& other) { return *this = Object(other); }
  Object& operator=(Object&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~Object() { Py_XDECREF(object_); }

  /// Takes over a new reference; null means that the operation that gave it failed.
  static Object steal(PyObject* result) {
    Object object;
    object.object_ = checked(result);
    return object;
  }
  static Object borrow(PyObject* object) {
    Py_INCREF(object);
    return steal(object);
  }
  static Object number(std::size_t value) { return steal(PyLong_FromSize_t(value)); }

  PyObject* ptr() const { return object_; }
  PyObject* release() { return std::exchange(object_, nullptr); }

  bool is_none() const { return object_ == Py_None; }
  bool is_str() const { return PyUnicode_Check(object_) != 0; }
  bool is_true() const { return checked(PyObject_IsTrue(object_)); }

  Object attribute(const char* literal) const;
  /// `item in this`.
  bool contains(const Object& item) const {
    return checked(PySequence_Contains(object_, item.object_));
  }
  /// `len(this)`.
  std::size_t size() const;
  /// Whether this string begins with `prefix`.
  bool starts_with(std::string_view prefix) const;

  std::size_t hash() const {
    const auto value = PyObject_Hash(object_);
    if (value == -1) throw_pending();
    return static_cast<std::size_t>(value);
  }

  friend bool operator==(const Object& a, const Object& b) {
    return checked(PyObject_RichCompareBool(a.object_, b.object_, Py_EQ));
  }
  friend std::weak_ordering operator<=>(const Object& a, const Object& b);

  /// The items of an iterable.
  ItemIterator begin() const;
  static std::default_sentinel_t end() { return {}; }

 private:
  PyObject* object_ = nullptr;
};

/// Reads an iterable as a `for` statement does, and looks for signals now and then: an iterator may
/// go on for ever without running any Python code.
class ItemIterator {
 public:
  using iterator_concept = std::input_iterator_tag;
  using value_type = Object;
  using difference_type = std::ptrdiff_t;

  ItemIterator() = default;
  explicit ItemIterator(PyObject* iterable) : source_(Object::steal(PyObject_GetIter(iterable))) {
    ++*this;
  }

  const Object& operator*() const { return item_; }
  ItemIterator& operator++();
  void operator++(int) { ++*this; }

  friend bool operator==(const ItemIterator& iterator, std::default_sentinel_t) {
    return iterator.item_.ptr() == nullptr;
  }

 private:
  Object source_;
  Object item_;
  std::size_t count_ = 0;
};

inline ItemIterator Object::begin() const { return ItemIterator(object_); }

}  // namespace kestrix::python

template <>
struct std::hash<kestrix::python::Object> {
  std::size_t operator()(const kestrix::python::Object& object) const { return object.hash(); }
};
