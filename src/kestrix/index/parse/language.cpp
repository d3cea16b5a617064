#include "kestrix/index/parse/language.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

namespace kestrix::index {

// The rows are found by their files: each languages/<name>.cpp defines one.
#define KESTRIX_LANGUAGE(name) extern const Language& name##_language();
#include "kestrix/index/languages/languages.inc"
#undef KESTRIX_LANGUAGE

namespace {

constexpr std::size_t kLongestName = 32;

auto sorted_languages() {
#define KESTRIX_LANGUAGE(name) &name##_language(),
  std::array rows{
#include "kestrix/index/languages/languages.inc"
  };
#undef KESTRIX_LANGUAGE
  std::ranges::sort(rows, {}, &Language::name);
  return rows;
}

std::unordered_map<std::string_view, const Language*> by_file() {
  std::unordered_map<std::string_view, const Language*> found;
  for (const Language* language : languages()) {
    for (const std::string_view file : language->files) found.emplace(file, language);
  }
  return found;
}

std::string lower(std::string_view name) {
  std::string text(name);
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

}  // namespace

std::span<const Language* const> languages() {
  static const auto rows = sorted_languages();
  return rows;
}

const Language* language_of(std::string_view path) {
  static const auto rows = by_file();
  const auto row = [](std::string_view file) {
    const auto found = rows.find(file);
    return found == rows.end() ? nullptr : found->second;
  };
  const std::string_view name = path.substr(path.rfind('/') + 1);
  if (name.size() <= kLongestName) {
    if (const Language* whole = row(lower(name))) return whole;
  }
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos || name.size() - dot > kLongestName) return nullptr;
  return row(lower(name.substr(dot)));
}

const Language* language_named(std::string_view name) {
  const auto found = std::ranges::find(languages(), name, &Language::name);
  return found == languages().end() ? nullptr : *found;
}

}  // namespace kestrix::index
