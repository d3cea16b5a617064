#include "python/rules.h"

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "kestrix/workers/wiki/page_sources/rules.h"
#include "python/edges.h"
#include "python/host.h"
#include "python/namespace.h"

namespace kestrix {

AspectFileLimit::operator std::ptrdiff_t() const {
  using python::names;
  using python::Namespace;
  return python::slice_bound(Namespace::current().global(names().max_aspect_files),
                             "MAX_ASPECT_FILES");
}

}  // namespace kestrix

namespace kestrix::python {
namespace {

constexpr auto kAll = std::numeric_limits<std::ptrdiff_t>::max();

// What a rule ranked, cut only now: a bound is looked at after the work, as a slice does it.
template <class Default>
List cut(std::vector<Object> ranked, PyObject* bound, const char* name, Default standard) {
  const std::ptrdiff_t end = bound == nullptr ? static_cast<std::ptrdiff_t>(standard)
                                              : slice_bound(Object::borrow(bound), name);
  return List(first_entries(std::move(ranked), end));
}

// An argument that is an iterable of strings.
class Strings {
 public:
  class Iterator : public ItemIterator {
   public:
    Iterator() = default;
    Iterator(PyObject* iterable, const char* expected)
        : ItemIterator(iterable), expected_(expected) {}

    const Object& operator*() const {
      const auto& item = ItemIterator::operator*();
      if (!item.is_str()) throw_type_error(expected_, item.ptr());
      return item;
    }
    Iterator& operator++() {
      ItemIterator::operator++();
      return *this;
    }
    void operator++(int) { ++*this; }

   private:
    const char* expected_ = nullptr;
  };

  Strings(const Object& iterable, const char* expected) : iterable_(iterable), expected_(expected) {
    require_iterable(iterable.ptr(), expected);
  }

  Iterator begin() const { return {iterable_.ptr(), expected_}; }
  static std::default_sentinel_t end() { return {}; }

 private:
  const Object& iterable_;
  const char* expected_;
};

// The roots of a dispatch: a collection, whose length is asked once.
class Roots {
 public:
  explicit Roots(const Object& paths) : paths_(paths), size_(PyObject_Size(paths.ptr())) {
    if (size_ >= 0) return;
    const auto* const type = Py_TYPE(paths.ptr());
    const bool has_length =
        (type->tp_as_sequence != nullptr && type->tp_as_sequence->sq_length != nullptr) ||
        (type->tp_as_mapping != nullptr && type->tp_as_mapping->mp_length != nullptr);
    if (has_length) throw_pending();
    throw_type_error("roots must be a collection of paths", paths.ptr());
  }

  std::size_t size() const { return static_cast<std::size_t>(size_); }
  ItemIterator begin() const { return paths_.begin(); }
  static std::default_sentinel_t end() { return {}; }

 private:
  const Object& paths_;
  Py_ssize_t size_;
};

}  // namespace

std::ptrdiff_t slice_bound(const Object& bound, const char* name) {
  if (bound.is_none()) return kAll;
  if (PyIndex_Check(bound.ptr()) == 0) {
    throw_type_error(std::string(name) + " must be an integer", bound.ptr());
  }
  const Py_ssize_t value = PyNumber_AsSsize_t(bound.ptr(), nullptr);
  if (value == -1 && PyErr_Occurred() != nullptr) throw_pending();
  return value;
}

List current_first(const Object& docs, PyObject* max_files) {
  std::vector<Object> paths;
  for (const auto& path : Strings(docs, "docs must be a sequence of str")) paths.push_back(path);
  return cut(kestrix::current_first(std::move(paths), kAll), max_files, "max_files",
             MAX_ASPECT_FILES);
}

Object unit_topic(const Object& title, const Object& files) {
  require_iterable(files.ptr(), "files must be an iterable of paths");
  auto words = topic_stems(files);
  if (!title.is_str()) throw_type_error("title must be a str", title.ptr());
  words.insert(words.begin(), title);
  return Object::steal(PyUnicode_Join(Object(" ").ptr(), List(words).ptr()));
}

List dispatch_files(const Object& roots, const Object& edges, PyObject* limit) {
  const Roots known(roots);
  if (known.size() < DISPATCH_MIN_ROOTS) return {};  // nothing else is looked at, the limit neither
  return cut(kestrix::dispatch_files(known, Edges(edges), kAll), limit, "limit", DISPATCH_FILES);
}

Dependents dependents_of(const Object& edges) { return kestrix::dependents_of(Edges(edges)); }

List example_sources(const Object& tests, const Object& edges, PyObject* max_files) {
  return cut(kestrix::example_sources(Strings(tests, "tests must be an iterable of str"),
                                      Edges(edges), kAll),
             max_files, "max_files", MAX_ASPECT_FILES);
}

}  // namespace kestrix::python
