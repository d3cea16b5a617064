#include "kestrix/roles/licence.h"

#include <algorithm>
#include <array>
#include <set>

#include "kestrix/roles/folder_names.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

constexpr auto kWords =
    std::to_array<std::string_view>({"license", "licence", "copying", "copyright", "unlicense"});
constexpr auto kEndings =
    std::to_array<std::string_view>({"", "txt", "md", "rst", "mit", "bsd", "apache", "html"});
// What stands in such a line beside names.
constexpr auto kOrdinary = std::to_array<std::string_view>(
    {"all",       "and",    "authors", "author",  "by",      "com",      "contributors",
     "copyright", "corp",   "https",   "http",    "inc",     "llc",      "ltd",
     "org",       "others", "the",     "project", "present", "reserved", "rights",
     "team",      "www",    "name",    "owner",   "year",    "yyyy",     "for",
     "that",      "gmail",  "email",   "see",     "file",    "net",      "github"});
constexpr std::size_t kMostHolders = 60;
constexpr std::size_t kHead = 8192;

std::string lower(std::string_view text) {
  std::string copy(text);
  std::ranges::transform(copy, copy.begin(), ascii::lower);
  return copy;
}

bool names_holder(std::string_view line) {
  return line.starts_with("copyright") && line.find_first_of("0123456789@") != line.npos;
}

void add_words(std::string_view line, std::set<std::string>& words) {
  for (std::size_t at = 0; at < line.size();) {
    const auto begin = at;
    while (at < line.size() && (ascii::is_alpha(line[at]) || (line[at] & 0x80) != 0)) ++at;
    const auto word = line.substr(begin, at - begin);
    if (word.size() >= 3 && !is_among(kOrdinary, word)) words.emplace(word);
    while (at < line.size() && !ascii::is_alpha(line[at]) && (line[at] & 0x80) == 0) ++at;
  }
}

}  // namespace

bool is_licence_path(std::string_view path) {
  const std::string name = lower(index::base_name(path));
  const auto dot = std::min(name.find('.'), name.size());
  const std::string_view stem = std::string_view(name).substr(0, dot);
  const auto ending = std::string_view(name).substr(std::min(dot + 1, name.size()));
  if (!is_among(kEndings, ending)) return false;
  const auto first = stem.substr(0, stem.find_first_of("-_"));
  const auto last = stem.substr(stem.find_last_of("-_") + 1);
  return is_among(kWords, first) || is_among(kWords, last);
}

std::vector<std::string> copyright_holders(std::string_view text) {
  const std::string head = lower(text.substr(0, kHead));
  std::string_view rest = head;
  std::set<std::string> words;
  while (!rest.empty() && words.size() < kMostHolders) {
    const auto end = std::min(rest.find('\n'), rest.size());
    auto line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    line.remove_prefix(std::min(line.find_first_not_of(" \t*/#;-"), line.size()));
    if (names_holder(line)) add_words(line, words);
  }
  return {words.begin(), words.end()};
}

}  // namespace kestrix
