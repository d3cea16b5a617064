#pragma once

#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestrix {

/// The names of settings, in whatever way they are written: "page_size", "PageSize", "PAGE-SIZE"
/// and "pageSize" are one. Only names of several words count: a single one may be any word.
class SettingNames {
 public:
  void add(std::string_view name);

  struct Share {
    std::size_t names = 0;                ///< that have several words
    std::vector<std::string> settings{};  ///< those of them that are settings; as given
  };
  /// How many of `names`, of which the last parts count ("server.page_size"), are settings.
  Share share_of(std::span<const std::string> names) const;

 private:
  std::set<std::string, std::less<>> names_;
};

}  // namespace kestrix
