#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// The keys of settings that the product's code reads, and where they stand.
class ReadKeys {
 public:
  explicit ReadKeys(const CodeEvidence& evidence);

  /// The keys that a file reads, with their first lines; ascending.
  const std::map<index::FileId, std::vector<Place>>& by_file() const { return by_file_; }

  /// A key of a settings file, in whatever way the code writes it: "a.b", "A_B", "a:b", or only its
  /// last part where that has several words.
  bool reads(std::string_view key) const;

  /// Whether the key is none of the product's, but tells where it runs: the user's home, the
  /// system.
  static bool of_platform(std::string_view key);

  /// How many keys start with "name.": those that a framework looks for in a file of that name.
  std::size_t below(std::string_view name) const;

 private:
  std::map<index::FileId, std::vector<Place>> by_file_;
  std::set<std::string, std::less<>> keys_;                // alike in case and joints
  std::map<std::string, std::size_t, std::less<>> below_;  // by first part
};

}  // namespace kestrix
