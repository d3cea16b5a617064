#pragma once

#include <string_view>
#include <unordered_set>

#include "kestrix/languages/resolver.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {

/// The source sets of Kotlin modules for several platforms: "src/commonMain" beside "src/jvmMain",
/// or "common/src" beside "jvm/src". Keeps views of the paths of the table.
class SourceSets {
 public:
  explicit SourceSets(const FileTable& files);

  /// The platform whose source set a file belongs to ("jvm"); "" where all see it.
  std::string_view platform_of(std::string_view path) const;

 private:
  std::unordered_set<std::string_view, SeededHash>
      modules_;  // folders that hold a common source set
  std::unordered_set<std::string_view, SeededHash>
      inner_;  // the folders in these sets: "src", "kotlin"
  std::unordered_set<std::string_view, SeededHash> platforms_;  // the names of the other sets
};

}  // namespace kestrix::index
