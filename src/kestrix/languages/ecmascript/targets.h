#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/formats/json.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index::ecmascript {

/// An `exports` or `imports` map: the targets of all conditions of a key, in the order in which
/// they are written, those that every surrounding understands first.
class TargetMap {
 public:
  TargetMap() = default;
  /// Of a map with far more patterns or conditions than are ever written the first ones count.
  explicit TargetMap(const Json& map);

  /// What the map says of a key ("." or "./a", "#a"), a "*" replaced. Empty when it lacks the key.
  /// Goes through at most `kMostPatterns`, however many keys there are.
  std::vector<std::string> find(std::string_view key) const;

  static constexpr std::size_t kMostPatterns = 256;

 private:
  struct Pattern {
    std::string key;
    std::vector<std::string> targets;
  };

  std::unordered_map<std::string, std::vector<std::string>, SeededHash> exact_;
  std::vector<Pattern> patterns_;  // the longest first
};

/// Where the source of a built file may stand: paths without extension, best first, for a path such
/// as "dist/esm/a.js". Empty when it is in no folder for built files.
std::vector<std::string> sources_of(std::string_view built);

}  // namespace kestrix::index::ecmascript
