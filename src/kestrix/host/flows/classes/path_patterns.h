#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix {

/// The ways in which files of a repository are named alike: below one folder, the whole name, its
/// first word ("t_*.c"), its last word ("*Controller.php"), its extension.
class PathPatterns {
 public:
  /// One folder with one pattern below it.
  using Key = std::uint64_t;

  explicit PathPatterns(const CodeEvidence& evidence);

  /// Every key that the file matches.
  template <class Visit>
  void for_each_key(index::FileId file, Visit visit) const {
    std::size_t level = 0;
    for (std::uint32_t folder = folder_[file]; folder != 0 && level < kMostLevels; ++level) {
      for (const std::uint32_t pattern : patterns_[file]) {
        if (pattern != 0) visit(key_of(folder, pattern));
      }
      folder = parent_[folder];
    }
  }
  bool matches(index::FileId file, Key key) const;
  /// Whether the file lies below the key's folder and has another name and the same extension.
  bool is_beside(Key key, index::FileId file) const;
  /// The same pattern below the folder above; 0 for the top.
  Key above(Key key) const;
  /// The files below the key's folder: from the first to one past the last.
  std::pair<index::FileId, index::FileId> range(Key key) const;
  /// How the key is written as a glob; `deep`: whether files lie below the folder's own level.
  std::string glob(Key key, bool deep) const;
  /// A glob for files that the framework or a type tells: their folder, with what their names have
  /// in common.
  std::string glob_of(const std::vector<index::FileId>& files) const;
  /// The share of the files that have the commonest folder, name, last or first word of a name.
  double likeness(const std::vector<index::FileId>& files) const;
  /// How the file's name ends, as a glob ("*Controller.java"); "" for a name of one word.
  std::string_view ending(index::FileId file) const { return globs_[patterns_[file][2]]; }
  /// The share of the files that lie alike: in folders that differ in one name.
  double likeness_of_places(const std::vector<index::FileId>& files) const;
  bool is_deep(Key key, index::FileId file) const { return folder_[file] != folder_of(key); }

 private:
  static constexpr std::size_t kMostLevels = 16;

  static Key key_of(std::uint32_t folder, std::uint32_t pattern) {
    return (Key{folder} << 32U) | pattern;
  }
  static std::uint32_t folder_of(Key key) { return static_cast<std::uint32_t>(key >> 32U); }
  static std::uint32_t pattern_of(Key key) { return static_cast<std::uint32_t>(key); }
  std::pair<index::FileId, index::FileId> range_of(std::string_view folder) const;
  bool says_more(const std::vector<index::FileId>& files, std::string_view folder,
                 std::string_view extension) const;
  std::string listed(const std::vector<index::FileId>& files, std::string_view folder,
                     std::string_view extension) const;
  std::uint32_t folder_number(std::string_view folder);
  std::uint32_t pattern_number(std::string glob);
  void take(index::FileId file);

  const CodeEvidence& evidence_;
  std::vector<std::uint32_t> folder_;                   // by file
  std::vector<std::array<std::uint32_t, 4>> patterns_;  // by file; 0: none
  std::vector<std::uint32_t> parent_;                   // by folder; folders count from one
  std::vector<std::string_view> folders_;
  std::vector<std::string> globs_;  // by pattern
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> folder_numbers_;
  std::unordered_map<std::string, std::uint32_t, SeededHash> pattern_numbers_;
};

}  // namespace kestrix
