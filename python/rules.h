#pragma once

// The selection rules over Python objects. Paths are strings, and what is none raises TypeError.

#include "python/containers.h"
#include "python/object.h"

namespace kestrix::python {

// What the rules and recipes of the component ask about a path.

inline const Object& text_of(const Object& path) { return path; }
inline Object owned(const Object& path) { return path; }
Object directory_of(const Object& path);
bool is_archived_path(const Object& path);
bool is_config_path(const Object& path);

// Edges have been read already: they are tuples of source, target and, where it counts, weight.

inline Object item(const Object& tuple, Py_ssize_t index) {
  return Object::borrow(checked(PyTuple_GetItem(tuple.ptr(), index)));
}
inline Object source_of(const Object& edge) { return item(edge, 0); }
inline Object target_of(const Object& edge) { return item(edge, 1); }
inline Object weight_of(const Object& edge) { return item(edge, 2); }

/// The rules as the Python module calls them. `limit` and `max_files` are the bounds of a slice.
namespace rules {

Object is_fixture_path(const Object& path);
Object current_first(const Object& docs, const Object& max_files);
Object unit_topic(const Object& title, const Object& files);
Object dispatch_files(const Object& roots, const Object& edges, const Object& limit);
Object dependents_of(const Object& edges);
Object extension_sources(const Object& interfaces, const Object& registries,
                         const Object& dependents);
Object example_sources(const Object& candidates, const Object& edges, const Object& max_files);

}  // namespace rules
}  // namespace kestrix::python
