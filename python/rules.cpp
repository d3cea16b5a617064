#include "python/rules.h"

#include <cstddef>
#include <limits>
#include <vector>

#include "kestrix/workers/wiki/page_sources/rules.h"
#include "python/host.h"

namespace kestrix::python {
namespace {

constexpr auto kAll = std::numeric_limits<std::ptrdiff_t>::max();

std::ptrdiff_t slice_bound(const Object& bound) {
  if (bound.is_none()) return kAll;
  const Py_ssize_t value = PyNumber_AsSsize_t(bound.ptr(), nullptr);
  if (value == -1 && PyErr_Occurred() != nullptr) throw_pending();
  return value;
}

// What a rule ranked, cut only now: a bound is looked at after the work, as a slice does it.
List cut(std::vector<Object> ranked, const Object& bound) {
  return List(first_entries(std::move(ranked), slice_bound(bound)));
}

Object pieces(const Object& path) {
  return Object::steal(PyUnicode_Split(path.ptr(), name("/").ptr(), -1));
}

Object lower(const Object& text) { return call_method(text, "lower"); }

bool lies_in(const Object& path, const Object& directories) {
  const auto names = pieces(path);
  const Py_ssize_t count = PyList_Size(names.ptr()) - 1;  // the last one is the file's
  for (Py_ssize_t i = 0; i < count; ++i) {
    if (directories.contains(lower(Object::borrow(PyList_GetItem(names.ptr(), i))))) return true;
  }
  return false;
}

}  // namespace

Object directory_of(const Object& path) {
  const Py_ssize_t size = PyUnicode_GetLength(path.ptr());
  if (size < 0) throw_pending();
  const Py_ssize_t head = PyUnicode_FindChar(path.ptr(), '/', 0, size, -1) + 1;
  Py_ssize_t end = head;
  while (end > 0 && PyUnicode_ReadChar(path.ptr(), end - 1) == '/') --end;
  return Object::steal(PyUnicode_Substring(path.ptr(), 0, end > 0 ? end : head));
}

bool is_archived_path(const Object& path) { return lies_in(path, global("_ARCHIVE_DIRS")); }

bool is_config_path(const Object& path) {
  const auto names = pieces(path);
  const auto base =
      lower(Object::borrow(PyList_GetItem(names.ptr(), PyList_Size(names.ptr()) - 1)));
  if (global("_CONFIG_BASENAMES").contains(base) || base.starts_with(".env")) return true;
  const auto below_root = Object::steal(PyUnicode_Concat(name("/").ptr(), path.ptr()));
  return below_root.contains(name("/config/"));
}

namespace rules {

Object is_fixture_path(const Object& path) {
  return Object::borrow(lies_in(path, global("_FIXTURE_DIRS")) ? Py_True : Py_False);
}

Object current_first(const Object& docs, const Object& max_files) {
  std::vector<Object> paths;
  for (const auto& path : docs) paths.push_back(path);
  return cut(kestrix::current_first(std::move(paths), kAll), max_files);
}

Object unit_topic(const Object& title, const Object& files) {
  auto words = topic_stems(files, slice_bound(global("_TOPIC_STEMS")));
  words.insert(words.begin(), title);
  return Object::steal(PyUnicode_Join(name(" ").ptr(), List(words).ptr()));
}

Object dispatch_files(const Object& roots, const Object& edges, const Object& limit) {
  const std::size_t least = global_size("_DISPATCH_MIN_ROOTS");
  if (roots.size() < least) return List();  // nothing else is looked at, the limit neither
  if (least == 0) {
    PyErr_SetString(PyExc_ZeroDivisionError, "_DISPATCH_MIN_ROOTS is a divisor");
    throw_pending();
  }
  return cut(kestrix::dispatch_files(roots, edges, kAll, least), limit);
}

Object dependents_of(const Object& edges) { return kestrix::dependents_of(edges); }

Object extension_sources(const Object& interfaces, const Object& registries,
                         const Object& dependents) {
  return List(kestrix::extension_sources(Mapping(interfaces), Mapping(registries),
                                         Mapping(dependents), global_size("_EXTENSION_CONTRACTS"),
                                         slice_bound(global("_EXTENSION_WIRING"))));
}

Object example_sources(const Object& candidates, const Object& edges, const Object& max_files) {
  return cut(kestrix::ranked_examples(candidates, edges, kAll), max_files);
}

}  // namespace rules
}  // namespace kestrix::python

kestrix::AspectFileLimit::operator std::ptrdiff_t() const {
  return python::slice_bound(python::global("MAX_ASPECT_FILES"));
}
