#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/git/attributes.h"

namespace kestrix {

/// A file as its role in the repository is judged.
struct JudgedFile {
  std::string_view path;
  std::string_view language{};  ///< "" when none reads it
  bool document = false;        ///< prose
  bool written = false;         ///< its text says that a program wrote it, or is squeezed
  bool declares = false;        ///< whether it declares anything at all
  bool holds_tests = false;     ///< whether what it declares are tests

  bool is_code() const { return !language.empty(); }
};

/// A licence's text.
struct JudgedLicence {
  std::uint32_t file = 0;
  std::vector<std::string> holders{};  ///< words of those who hold the copyright, ascending
};

/// What the roles of files are judged by: plain facts of a whole repository.
struct JudgedRepository {
  using Place = std::uint32_t;

  std::vector<JudgedFile> files;            ///< ascending by path
  std::vector<std::vector<Place>> targets;  ///< by file: the other files that it depends on
  std::vector<Place> dependents;            ///< by file: how many depend on it
  std::vector<JudgedLicence> licences;      ///< by file
  index::GitAttributes attributes;

  /// The files below a folder: they stand together.
  struct Range {
    Place first;
    Place last;  ///< one behind

    bool holds(Place file) const { return first <= file && file < last; }
    Place size() const { return last - first; }
  };
  Range below(std::string_view folder) const;
  /// How many of them a language reads.
  Place count_code(Range range) const;
};

}  // namespace kestrix
