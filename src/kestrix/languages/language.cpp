#include "kestrix/languages/language.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {

// Each is defined in its own folder.
const Language& c_language();
const Language& cpp_language();
const Language& csharp_language();
const Language& go_language();
const Language& java_language();
const Language& javascript_language();
const Language& kotlin_language();
const Language& php_language();
const Language& python_language();
const Language& ruby_language();
const Language& rust_language();
const Language& scala_language();
const Language& svelte_language();
const Language& swift_language();
const Language& tsx_language();
const Language& typescript_language();
const Language& vue_language();

namespace {

constexpr std::size_t kLongestName = 32;

auto sorted_languages() {
  std::array rows{
      &c_language(),      &cpp_language(),        &csharp_language(), &go_language(),
      &java_language(),   &javascript_language(), &kotlin_language(), &php_language(),
      &python_language(), &ruby_language(),       &rust_language(),   &scala_language(),
      &svelte_language(), &swift_language(),      &tsx_language(),    &typescript_language(),
      &vue_language(),
  };
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
  std::ranges::transform(text, text.begin(), ascii::lower);
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
  const std::string_view name = base_name(path);
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
