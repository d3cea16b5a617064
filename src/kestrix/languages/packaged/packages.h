#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/languages/resolver.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// Which file declares which name of which package (or namespace).
///
/// Filled once, then only read. Keeps views of the names that it is given. A look-up costs the
/// length of a path, however many files declare the name.
class Packages {
 public:
  explicit Packages(const FileTable& files) : files_(files) {}

  /// What a declaration is to the others of its name.
  enum class Standing : std::uint8_t { kFull, kStandIn };

  /// Files are given in ascending order. A stand-in counts only where it is nearer than all that
  /// are none.
  void declare(std::string_view package, std::string_view name, FileId file,
               Standing standing = Standing::kFull);

  /// Whether a file that `from` may reach belongs to the package.
  bool contains(std::string_view package, FileId from) const;

  /// The files that declare the name in the tree nearest to `from`: several when they are equally
  /// near, at most `kMostEqual`. Product code does not see what tests and examples declare.
  std::span<const FileId> find(std::string_view package, std::string_view name, FileId from) const;

  /// The one file that `find` gives, or the one of them that is named after the name; none when
  /// the name is ambiguous.
  std::optional<FileId> find_one(std::string_view package, std::string_view name,
                                 FileId from) const;

  static constexpr std::size_t kMostEqual = 8;

 private:
  struct Declared {
    std::vector<FileId> product;
    std::vector<FileId> stand_ins;  // of product code
    std::vector<FileId> aside;      // all that stand in folders of tests and examples
  };
  struct Package {
    bool product = false;
    std::unordered_map<std::string_view, Declared, SeededHash> names;
  };

  bool is_aside(FileId file) const;
  std::size_t nearness(FileId file, FileId from) const;
  std::span<const FileId> nearest(std::span<const FileId> declaring, FileId from) const;

  const FileTable& files_;
  std::unordered_map<std::string_view, Package, SeededHash> packages_;
};

/// Nobody writes longer names, and each part of one costs a look-up.
inline constexpr std::size_t kLongestDotted = 2000;

/// What `find(package, name)` gives for the longest prefix of a dotted name for which it gives
/// anything. What has no package is not looked up by parts, unless it is written as types are.
template <class Find>
auto find_longest(std::string_view dotted, Find find) {
  const std::string_view whole = dotted;
  if (whole.size() > kLongestDotted) return decltype(find("", ""))();
  for (;;) {
    const std::size_t dot = dotted.rfind('.');
    const bool bare = dot == dotted.npos;
    const bool lower = !dotted.empty() && dotted.front() >= 'a' && dotted.front() <= 'z';
    if (bare && lower && dotted.size() < whole.size()) return decltype(find("", ""))();
    auto found = find(bare ? std::string_view() : dotted.substr(0, dot), dotted.substr(dot + 1));
    if (bare || !found.empty()) return found;
    dotted = dotted.substr(0, dot);
  }
}

}  // namespace kestrix::index
