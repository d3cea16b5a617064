// Paths, patterns over them, and the decoding of texts. The input is taken for each; its first line
// and its second one are two paths, or a pattern and a name.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/require.h"
#include "kestrix/host/path_glob.h"
#include "kestrix/index/name_pattern.h"
#include "kestrix/text/decoding.h"
#include "kestrix/text/paths.h"
#include "kestrix/utils/path_filter.h"
#include "kestrix/workers/project_units.h"
#include "kestrix/workers/wiki/repo_facts.h"

namespace kestrix {
namespace {

using test::require;

bool has_piece(std::string_view path, std::string_view piece) {
  const std::string wanted = "/" + std::string(piece) + "/";
  return ("/" + std::string(path) + "/").find(wanted) != std::string::npos;
}

void normalize(std::string_view path) {
  const std::string normal = _norm(path);
  require(_norm(normal) == normal, "a normal path stays as it is");
  require(normal.empty() || (!has_piece(normal, "") && !has_piece(normal, ".")),
          "a normal path has no empty piece and no dot");
  is_test_path(path);
  require(root_of_pattern(pattern_of_root(normal)) == normal, "a root is its pattern's root");
}

void find_root(std::string_view first, std::string_view second) {
  const std::string root = _norm(first);
  const std::string path = _norm(second);
  RootMap roots;
  roots.insert_or_assign(root, "value");
  const bool covers = root.empty() || path == root || path.starts_with(root + "/");
  require(most_specific(roots, path).has_value() == covers, "a root covers what lies below it");
}

void join(std::string_view folder, std::string_view relative) {
  const auto joined = index::join_normal(_norm(folder), relative);
  require(!joined || folder.find("..") != folder.npos || !has_piece(*joined, ".."),
          "what is joined stays in the repository");
}

// NamePattern by trying every way.
bool slow_like(std::string_view pattern, std::string_view name) {
  if (pattern.empty()) return name.empty();
  if (pattern.front() == '%') {
    for (std::size_t i = 0; i <= name.size(); ++i) {
      if (slow_like(pattern.substr(1), name.substr(i))) return true;
    }
    return false;
  }
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return !name.empty() && lower(pattern.front()) == lower(name.front()) &&
         slow_like(pattern.substr(1), name.substr(1));
}

void match(std::string_view pattern, std::string_view name) {
  const bool found = index::NamePattern(pattern).matches(name);
  if (pattern.size() < 12 && name.size() < 12) {
    require(found == slow_like(pattern, name), "a name pattern equals its slow version");
  }
  try {
    const PathGlob glob(pattern);
    if (pattern.find_first_of("*?[\\") == pattern.npos && _norm(pattern) == pattern) {
      require(glob.matches(pattern), "a glob without wildcards matches itself");
    }
    glob.matches(name);
  } catch (const BadGlob&) {
  }
}

void decode(std::string_view bytes) {
  const std::string text = decode_text(std::string(bytes));
  if (text.find('\0') == text.npos && !text.starts_with("\xEF\xBB\xBF")) {
    require(decode_text(text) == text, "decoded text is valid UTF-8");
  }
  const std::string start = decode_text(std::string(bytes), 5);
  require(text.starts_with(start), "the first characters are those of the whole");
  const auto characters = std::ranges::count_if(start, [](char c) { return (c & 0xC0) != 0x80; });
  require(characters <= 5, "no more characters than asked for");
}

}  // namespace
}  // namespace kestrix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kestrix;  // NOLINT(google-build-using-namespace)
  const std::string_view all(reinterpret_cast<const char*>(data), size);
  const auto newline = std::min(all.find('\n'), all.size());
  const std::string_view first = all.substr(0, newline);
  const std::string_view second = all.substr(std::min(newline + 1, all.size()));
  normalize(first);
  find_root(first, second);
  join(first, second);
  match(first, second);
  decode(all);
  return 0;
}
