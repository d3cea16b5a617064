#include "kestrix/files/classification.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "kestrix/text/ascii.h"

namespace kestrix::index {
namespace {

using Names = std::span<const std::string_view>;

constexpr std::array<std::string_view, 19> kProseExtensions = {
    ".adoc", ".asciidoc",  ".creole",  ".markdown", ".md",  ".mdown", ".mdwn",
    ".mdx",  ".mediawiki", ".mkd",     ".org",      ".qmd", ".rdoc",  ".rmd",
    ".rst",  ".text",      ".textile", ".txt",      ".wiki"};

constexpr std::array<std::string_view, 18> kProseNames = {
    "architecture", "authors",     "changelog", "changes", "code_of_conduct", "contributing",
    "contributors", "copying",     "decisions", "design",  "history",         "install",
    "license",      "maintainers", "news",      "notice",  "readme",          "todo"};

// Read by tools, whatever they are called.
constexpr std::array<std::string_view, 5> kToolTexts = {
    "cmakelists.txt", "conanfile.txt", "constraints.txt", "meson_options.txt", "robots.txt"};

std::string lower_name(std::string_view path) {
  std::string name(path.substr(path.rfind('/') + 1));
  std::ranges::transform(name, name.begin(), ascii::lower);
  return name;
}

std::string_view extension_of(std::string_view name) {
  const auto dot = name.rfind('.');
  return dot == name.npos || dot == 0 ? std::string_view() : name.substr(dot);
}

bool contains(Names names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

bool is_requirements(std::string_view name) {
  return name.ends_with(".txt") && name.find("requirements") != name.npos;
}

}  // namespace

bool is_document_path(std::string_view path) {
  const std::string name = lower_name(path);
  if (contains(kToolTexts, name) || is_requirements(name)) return false;
  const std::string_view extension = extension_of(name);
  if (extension.empty()) return contains(kProseNames, name);
  return contains(kProseExtensions, extension);
}

}  // namespace kestrix::index
