#pragma once

// The selection rules over Python objects: the rules of the component, given Python's paths, edges
// and mappings. Arguments are read as the rule needs them and never changed; of those that are
// iterables, what is of the wrong type raises TypeError, which names the argument.
//
// `limit` and `max_files` are the bounds of a slice, or null for the default.

#include <cstddef>

#include "python/containers.h"
#include "python/object.h"

namespace kestrix::python {

/// A slice bound as Python takes it. Raises TypeError, which names it, when it is no integer.
std::ptrdiff_t slice_bound(const Object& bound, const char* name);

List current_first(const Object& docs, PyObject* max_files = nullptr);

Object unit_topic(const Object& title, const Object& files);

List dispatch_files(const Object& roots, const Object& edges, PyObject* limit = nullptr);

Dependents dependents_of(const Object& edges);

List example_sources(const Object& tests, const Object& edges, PyObject* max_files = nullptr);

}  // namespace kestrix::python
