#include "python/paths.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "kestrix/workers/wiki/page_sources/rules.h"

namespace kestrix::python {
namespace {

void require_str(PyObject* path, const char* expected) {
  if (PyUnicode_Check(path) == 0) throw_type_error(expected, path);
}

// A path as far as the rules that look for ASCII names can see: one byte a character, and some byte
// beyond ASCII for each character beyond it.
class AsciiImage {
 public:
  explicit AsciiImage(const Object& path) {
    require_str(path.ptr(), "path must be a str");
    const auto length = static_cast<std::size_t>(PyUnicode_GetLength(path.ptr()));
    if (PyUnicode_KIND(path.ptr()) == PyUnicode_1BYTE_KIND) {
      view_ = {static_cast<const char*>(PyUnicode_DATA(path.ptr())), length};
    } else {
      narrow(path.ptr(), length);
      view_ = narrowed_;
    }
  }
  AsciiImage(const AsciiImage&) = delete;
  AsciiImage& operator=(const AsciiImage&) = delete;
  ~AsciiImage() = default;

  operator std::string_view() const { return view_; }  // NOLINT(google-explicit-constructor)

 private:
  void narrow(PyObject* path, std::size_t length) {
    narrowed_.resize(length);
    for (std::size_t i = 0; i < length; ++i) {
      const Py_UCS4 c = PyUnicode_READ_CHAR(path, static_cast<Py_ssize_t>(i));
      narrowed_[i] = c < 0x80 ? static_cast<char>(c) : '\xff';
    }
  }

  std::string narrowed_;
  std::string_view view_;
};

Py_ssize_t directory_length(PyObject* path) {
  const Py_ssize_t size = PyUnicode_GetLength(path);
  const Py_ssize_t slash = PyUnicode_FindChar(path, '/', 0, size, -1);
  Py_ssize_t end = slash + 1;
  while (end > 0 && PyUnicode_READ_CHAR(path, end - 1) == '/') --end;
  return end > 0 ? end : slash + 1;
}

bool same_prefix(PyObject* a, PyObject* b, Py_ssize_t length) {
  if (PyUnicode_KIND(a) == PyUnicode_KIND(b)) {
    const auto bytes =
        static_cast<std::size_t>(length) * static_cast<std::size_t>(PyUnicode_KIND(a));
    return std::memcmp(PyUnicode_DATA(a), PyUnicode_DATA(b), bytes) == 0;
  }
  for (Py_ssize_t i = 0; i < length; ++i) {
    if (PyUnicode_READ_CHAR(a, i) != PyUnicode_READ_CHAR(b, i)) return false;
  }
  return true;
}

}  // namespace

Directory::Directory(const Object& path)
    : path_(path.ptr()), length_(path.is_str() ? directory_length(path.ptr()) : -1) {}

bool operator==(const Directory& a, const Directory& b) {
  constexpr auto kExpected = "source and target of an edge must be str";
  require_str(a.path_, kExpected);
  require_str(b.path_, kExpected);
  return a.length_ == b.length_ && same_prefix(a.path_, b.path_, a.length_);
}

bool is_fixture_path(const Object& path) { return kestrix::is_fixture_path(AsciiImage(path)); }
bool is_archived_path(const Object& path) { return kestrix::is_archived_path(AsciiImage(path)); }
bool is_config_path(const Object& path) { return kestrix::is_config_path(AsciiImage(path)); }

}  // namespace kestrix::python
