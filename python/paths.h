#pragma once

// What the rules ask about a path, for paths that are Python strings. Overloads of the functions of
// the same names over C++ strings.

#include "python/object.h"

namespace kestrix::python {

/// A path is its own text, and a result holds the very objects that came in.
inline const Object& text_of(const Object& path) { return path; }
inline Object owned(const Object& path) { return path; }

/// The directory part of a path, which it borrows. Comparing it raises TypeError when the path is
/// no string.
class Directory {
 public:
  explicit Directory(const Object& path);

  friend bool operator==(const Directory& a, const Directory& b);

 private:
  PyObject* path_;
  Py_ssize_t length_;
};

inline Directory directory_of(const Object& path) { return Directory(path); }

// Each takes a string; for anything else it raises TypeError.
bool is_fixture_path(const Object& path);
bool is_archived_path(const Object& path);
bool is_config_path(const Object& path);

}  // namespace kestrix::python
