#include "kestrix/workers/wiki/page_sources/rules.h"

#include <algorithm>
#include <string>

namespace kestrix {
namespace {

constexpr char ascii_lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equals_folded(std::string_view piece, std::string_view lower) {
  return std::ranges::equal(piece, lower, {}, ascii_lower);
}

// Every name is ASCII, so folding A to Z decides as a full case mapping would.
template <std::size_t N>
bool lies_in(std::string_view path, const NameSet<N>& directories) {
  for (auto end = path.find('/'); end != std::string_view::npos; end = path.find('/')) {
    const auto piece = path.substr(0, end);
    const auto is_piece = [piece](std::string_view name) { return equals_folded(piece, name); };
    if (std::ranges::any_of(directories.names, is_piece)) return true;
    path.remove_prefix(end + 1);
  }
  return false;
}

}  // namespace

bool is_fixture_path(std::string_view path) { return lies_in(path, FIXTURE_DIRS); }

bool is_archived_path(std::string_view path) { return lies_in(path, ARCHIVE_DIRS); }

bool is_config_path(std::string_view path) {
  std::string base(path.substr(path.rfind('/') + 1));
  std::ranges::transform(base, base.begin(), ascii_lower);
  return CONFIG_BASENAMES.contains(base) || base.starts_with(".env") ||
         path.starts_with("config/") || path.find("/config/") != std::string_view::npos;
}

}  // namespace kestrix
