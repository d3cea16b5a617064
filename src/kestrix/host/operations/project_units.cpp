#include "kestrix/workers/project_units.h"

#include "kestrix/workers/wiki/repo_facts.h"

namespace kestrix {
namespace {

constexpr std::string_view kWildcards = "*?[]{}";

bool has_wildcard(std::string_view piece) {
  for (std::size_t i = 0; i < piece.size(); ++i) {
    if (piece[i] == '\\') {
      ++i;
    } else if (kWildcards.find(piece[i]) != std::string_view::npos) {
      return true;
    }
  }
  return false;
}

std::string unescaped(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    plain += text[i];
  }
  return plain;
}

std::string_view without_last_piece(std::string_view path) {
  const auto slash = path.rfind('/');
  return path.substr(0, slash == std::string_view::npos ? 0 : slash);
}

std::string_view last_piece(std::string_view path) { return path.substr(path.rfind('/') + 1); }

bool selects_files(std::string_view piece) {
  return piece == "*" || piece == "**" || piece.starts_with("*.");
}

}  // namespace

std::optional<std::string> root_of_pattern(std::string_view path_pattern) {
  if (path_pattern.empty()) return std::nullopt;
  const std::string pattern = _norm(path_pattern);
  std::string_view root = pattern;
  if (selects_files(last_piece(root))) root = without_last_piece(root);
  while (last_piece(root) == "**") root = without_last_piece(root);
  if (has_wildcard(root)) return std::nullopt;
  return unescaped(root);
}

std::string pattern_of_root(std::string_view directory) {
  std::string pattern;
  for (const char c : directory) {
    if (c == '\\' || kWildcards.find(c) != std::string_view::npos) pattern += '\\';
    pattern += c;
  }
  return pattern.empty() ? "**" : pattern + "/**";
}

std::optional<std::string> most_specific(const RootMap& roots, std::string_view path) {
  for (auto directory = path;; directory = without_last_piece(directory)) {
    const auto found = roots.find(directory);
    if (found != roots.end()) return found->second;
    if (directory.empty()) return std::nullopt;
  }
}

}  // namespace kestrix
