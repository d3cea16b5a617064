#pragma once

// Python objects as values: what the rules and recipes need of a path, a record or a number.

#include <pybind11/pybind11.h>

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

/// Raises TypeError; the message ends in the name of the type of `found`.
[[noreturn]] void throw_type_error(std::string_view expected, PyObject* found);

/// Raises TypeError unless `object` can be iterated over.
void require_iterable(PyObject* object, std::string_view expected);

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
/// Two strings are equal when their texts are, they hash by their text and are ordered by code
/// point, whatever a subclass of str makes of it; other objects do what they do in Python. A lone
/// surrogate is a code point like any other. Operations throw `PendingError` or `PendingStop`.
class Object {
 public:
  Object() = default;
  /// A new string. `text` is ASCII.
  explicit Object(const char* text) : Object(std::string_view(text)) {}
  explicit Object(std::string_view text)
      : Object(
            steal(PyUnicode_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size())))) {
  }

  /// Takes over a new reference; null means that the operation that gave it failed.
  static Object steal(PyObject* result) {
    return Object(pybind11::reinterpret_steal<pybind11::object>(checked(result)));
  }
  static Object borrow(PyObject* object) {
    return Object(pybind11::reinterpret_borrow<pybind11::object>(object));
  }
  static Object number(std::size_t value) { return steal(PyLong_FromSize_t(value)); }

  PyObject* ptr() const { return object_.ptr(); }
  PyObject* release() { return object_.release().ptr(); }

  bool is_none() const { return ptr() == Py_None; }
  bool is_str() const { return PyUnicode_Check(ptr()) != 0; }
  bool is_true() const { return checked(PyObject_IsTrue(ptr())); }

  Object attribute(const Object& name) const { return steal(PyObject_GetAttr(ptr(), name.ptr())); }

  /// Whether this string begins with `prefix`, which is ASCII.
  bool starts_with(std::string_view prefix) const;

  std::size_t hash() const {
    const auto known = is_str() ? reinterpret_cast<PyASCIIObject*>(ptr())->hash : -1;
    return static_cast<std::size_t>(known != -1 ? known : computed_hash());
  }

  friend bool operator==(const Object& a, const Object& b) {
    if (a.ptr() == b.ptr()) return true;
    if (a.is_str() && b.is_str()) return same_text(a.ptr(), b.ptr());
    return checked(PyObject_RichCompareBool(a.ptr(), b.ptr(), Py_EQ));
  }
  friend std::weak_ordering operator<=>(const Object& a, const Object& b);

  /// The items of an iterable, each a strong reference.
  ItemIterator begin() const;
  static std::default_sentinel_t end() { return {}; }

 private:
  explicit Object(pybind11::object object) : object_(std::move(object)) {}
  Py_hash_t computed_hash() const;
  static bool same_text(PyObject* a, PyObject* b);

  pybind11::object object_;
};

/// Reads an iterable as a `for` statement does; a list or tuple without the detour over an
/// iterator object.
class ItemIterator {
 public:
  using iterator_concept = std::input_iterator_tag;
  using value_type = Object;
  using difference_type = std::ptrdiff_t;

  ItemIterator() = default;
  explicit ItemIterator(PyObject* iterable)
      : sequence_(PyList_CheckExact(iterable)    ? Sequence::kList
                  : PyTuple_CheckExact(iterable) ? Sequence::kTuple
                                                 : Sequence::kNone),
        source_(sequence_ == Sequence::kNone ? Object::steal(PyObject_GetIter(iterable))
                                             : Object::borrow(iterable)) {
    ++*this;
  }

  const Object& operator*() const { return item_; }
  ItemIterator& operator++() {
    item_ = next();
    return *this;
  }
  void operator++(int) { ++*this; }

  /// The item that comes `ahead` items later, borrowed; null where that is not known yet.
  PyObject* later(Py_ssize_t ahead) const {
    if (sequence_ != Sequence::kList) return nullptr;
    const Py_ssize_t at = index_ - 1 + ahead;
    return at < PyList_GET_SIZE(source_.ptr()) ? PyList_GET_ITEM(source_.ptr(), at) : nullptr;
  }

  friend bool operator==(const ItemIterator& iterator, std::default_sentinel_t) {
    return iterator.item_.ptr() == nullptr;
  }

 private:
  enum class Sequence { kNone, kList, kTuple };

  Object next() {
    switch (sequence_) {
      case Sequence::kList:  // may grow or shrink meanwhile
        if (index_ >= PyList_GET_SIZE(source_.ptr())) return {};
        prefetch_item();
        return Object::borrow(PyList_GET_ITEM(source_.ptr(), index_++));
      case Sequence::kTuple:
        if (index_ >= PyTuple_GET_SIZE(source_.ptr())) return {};
        return Object::borrow(PyTuple_GET_ITEM(source_.ptr(), index_++));
      case Sequence::kNone:
        break;
    }
    return next_of_iterator();
  }
  Object next_of_iterator();

  // The items of a long list lie all over the memory.
  void prefetch_item() const {
    constexpr Py_ssize_t kAhead = 8;
    if (index_ + kAhead >= PyList_GET_SIZE(source_.ptr())) return;
    const auto* const item = PyList_GET_ITEM(source_.ptr(), index_ + kAhead);
    __builtin_prefetch(reinterpret_cast<const char*>(item) - 32);  // what precedes an object
    __builtin_prefetch(reinterpret_cast<const char*>(item) + 16);
  }

  Sequence sequence_ = Sequence::kNone;
  Object source_;
  Object item_;
  Py_ssize_t index_ = 0;
};

inline ItemIterator Object::begin() const { return ItemIterator(ptr()); }

/// `callable(arguments...)`.
template <class... Arguments>
Object call(const Object& callable, const Arguments&... arguments) {
  PyObject* const values[] = {arguments.ptr()..., nullptr};
  return Object::steal(PyObject_Vectorcall(callable.ptr(), values, sizeof...(arguments), nullptr));
}

/// `object.name(arguments...)`.
template <class... Arguments>
Object call_method(const Object& object, const Object& name, const Arguments&... arguments) {
  PyObject* const values[] = {object.ptr(), arguments.ptr()...};
  return Object::steal(
      PyObject_VectorcallMethod(name.ptr(), values, 1 + sizeof...(arguments), nullptr));
}

}  // namespace kestrix::python

template <>
struct std::hash<kestrix::python::Object> {
  std::size_t operator()(const kestrix::python::Object& object) const { return object.hash(); }
};
