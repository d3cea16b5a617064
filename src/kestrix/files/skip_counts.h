#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace kestrix::index {

/// How many things were left out, by reason, in the order of the reasons' texts.
class SkipCounts {
 public:
  using Map = std::map<std::string, std::uint64_t, std::less<>>;

  void add(std::string_view reason, std::uint64_t count = 1) {
    const auto found = counts_.find(reason);
    if (found != counts_.end())
      found->second += count;
    else if (count > 0)
      counts_.emplace(reason, count);
  }
  std::uint64_t operator[](std::string_view reason) const {
    const auto found = counts_.find(reason);
    return found == counts_.end() ? 0 : found->second;
  }
  bool empty() const { return counts_.empty(); }
  auto begin() const { return counts_.begin(); }
  auto end() const { return counts_.end(); }

  friend bool operator==(const SkipCounts&, const SkipCounts&) = default;

 private:
  Map counts_;
};

/// The reasons, as `page-sources index` prints them.
namespace skipped {
// While walking.
inline constexpr std::string_view kIgnored = "ignored by git";
inline constexpr std::string_view kFolder = "version-control, dependency or cache folder";
inline constexpr std::string_view kThirdParty = "folder of third-party code";
inline constexpr std::string_view kSymbolicLink = "symbolic link";
inline constexpr std::string_view kSpecial = "pipe, socket or device";
inline constexpr std::string_view kSubmodule = "submodule";
inline constexpr std::string_view kNestedRepository = "nested repository";
inline constexpr std::string_view kUnreadableDirectory = "unreadable directory";
inline constexpr std::string_view kExcluded = "excluded by a setting";
inline constexpr std::string_view kMissing = "tracked, but not in the work tree";
inline constexpr std::string_view kGitUnreadable = "git data that cannot be read";
inline constexpr std::string_view kGitForeign = "git data of another user in a folder above";
// While reading.
inline constexpr std::string_view kVanished = "vanished while indexing";
inline constexpr std::string_view kUnreadable = "unreadable file";
inline constexpr std::string_view kBinary = "binary file";
// Recorded, but not parsed.
inline constexpr std::string_view kLarge = "larger than 2 MiB (recorded, not parsed)";
inline constexpr std::string_view kMinified = "minified (recorded, not parsed)";
inline constexpr std::string_view kParseBudget = "parse took too much (recorded, not parsed)";
inline constexpr std::string_view kCrowded = "declares or names too much (the rest is left out)";
// While resolving.
inline constexpr std::string_view kEntangled = "leads too far (imports or names are left out)";
}  // namespace skipped

}  // namespace kestrix::index
