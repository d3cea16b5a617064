#include "kestrix/git/attributes.h"

#include <algorithm>

#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r";
// As git has it.
constexpr std::size_t kLongestLine = 2048;
// What is tried on every path, in all files together.
constexpr std::size_t kMostSuffixes = 512;
constexpr std::size_t kMostGlobParts = 1024;

std::string_view next_word(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  const auto word = rest.substr(0, rest.find_first_of(kBlanks));
  rest.remove_prefix(word.size());
  return word;
}

std::optional<char> unescaped(char letter) {
  constexpr std::string_view kLetters = "abfnrtv\\\"";
  constexpr std::string_view kMeanings = "\a\b\f\n\r\t\v\\\"";
  const auto place = kLetters.find(letter);
  return place == kLetters.npos ? std::nullopt : std::optional(kMeanings[place]);
}

// The three octal digits of a byte.
std::optional<char> octal(std::string_view digits) {
  const auto is_octal = [](char c) { return c >= '0' && c <= '7'; };
  if (digits.size() < 3 || digits[0] > '3' || !std::ranges::all_of(digits.substr(0, 3), is_octal)) {
    return std::nullopt;
  }
  return static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0'));
}

// Takes a text in quotes, as C writes it; none when it is no such text.
std::optional<std::string> take_quoted(std::string_view& rest) {
  if (!rest.starts_with('"')) return std::nullopt;
  std::string text;
  for (std::size_t at = 1; at < rest.size(); ++at) {
    if (rest[at] == '"') {
      rest.remove_prefix(at + 1);
      return text;
    }
    if (rest[at] != '\\') {
      text += rest[at];
      continue;
    }
    if (++at >= rest.size()) break;
    if (const auto plain = unescaped(rest[at])) {
      text += *plain;
    } else if (const auto byte = octal(rest.substr(at))) {
      text += *byte;
      at += 2;
    } else {
      break;
    }
  }
  return std::nullopt;
}

std::string take_pattern(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  if (auto quoted = take_quoted(rest)) return *std::move(quoted);
  return std::string(next_word(rest));
}

bool is_attribute_name(std::string_view name) {
  return !name.empty() && name.front() != '-' && std::ranges::all_of(name, [](char c) {
    return ascii::is_word(c) || c == '-' || c == '.';
  });
}

bool has_magic(std::string_view pattern) { return pattern.find_first_of("*?[\\") != pattern.npos; }

template <class Sayings>
void lay_over(Sayings& under, const Sayings& over) {
  for (std::size_t at = 0; at < over.size(); ++at) {
    if (over[at].line > under[at].line) under[at] = over[at];
  }
}

}  // namespace

void GitAttributes::add(std::string_view folder, std::string_view text) {
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  auto scope = std::make_unique<Scope>();
  for (std::uint32_t number = 1; !text.empty(); ++number) {
    const auto end = std::min(text.find('\n'), text.size());
    add_line(*scope, text.substr(0, end), number);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  if (scope->names.empty() && scope->paths.empty() && scope->folders.empty() &&
      scope->suffixes.empty() && scope->globs.empty()) {
    return;
  }
  const auto [place, added] = scopes_.try_emplace(std::string(folder));
  scope->folder = place->first;
  place->second = std::move(scope);
  longest_folder_ = std::max(longest_folder_, folder.size());
}

// A line with a name that is none says nothing at all.
void GitAttributes::add_line(Scope& scope, std::string_view line, std::uint32_t number) {
  if (line.size() >= kLongestLine || line.find("linguist-") == line.npos) return;
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  if (line.starts_with('#') || line.starts_with("[attr]")) return;
  std::string pattern = take_pattern(line);
  Sayings said{};
  for (auto word = next_word(line); !word.empty(); word = next_word(line)) {
    const bool off = word.starts_with('-');
    const bool forget = word.starts_with('!');
    if (off || forget) word.remove_prefix(1);
    const auto name = word.substr(0, word.find('='));
    if (!is_attribute_name(name)) return;
    const auto known = std::ranges::find(kGitAttributeNames, name);
    if (known == kGitAttributeNames.end()) continue;
    const bool is_false = word.substr(name.size()) == "=false";
    said[static_cast<std::size_t>(known - kGitAttributeNames.begin())] = {
        forget ? std::nullopt : std::optional(!off && !is_false), number};
  }
  add_pattern(scope, std::move(pattern), said);
}

// A pattern that ends in "/" is of folders, which have no attributes here.
void GitAttributes::add_pattern(Scope& scope, std::string pattern, const Sayings& said) {
  if (pattern.empty() || pattern.starts_with('!') || pattern.ends_with('/')) return;
  std::string_view rest = pattern;
  if (rest.starts_with("**/") && rest.find('/', 3) == rest.npos) rest.remove_prefix(3);
  const bool whole_path = rest.find('/') != rest.npos;
  if (!has_magic(rest)) {
    if (rest.starts_with('/')) rest.remove_prefix(1);
    return lay_over((whole_path ? scope.paths : scope.names)[std::string(rest)], said);
  }
  if (whole_path && rest.ends_with("/**") && !has_magic(rest.substr(0, rest.size() - 3))) {
    rest.remove_suffix(3);
    if (rest.starts_with('/')) rest.remove_prefix(1);
    return lay_over(scope.folders[std::string(rest)], said);
  }
  if (!whole_path && rest.starts_with('*') && !has_magic(rest.substr(1))) {
    if (suffix_count_++ >= kMostSuffixes) return;
    scope.suffixes.emplace_back(rest.substr(1), said);
    const bool of_kind = rest.find_first_of(".-_", 2) == rest.npos;
    for (Said& each : scope.suffixes.back().second) each.of_kind = of_kind;
    return;
  }
  add_glob(scope, rest, said);
}

void GitAttributes::add_glob(Scope& scope, std::string_view pattern, const Sayings& said) {
  const bool whole_path = pattern.find('/') != pattern.npos;
  if (pattern.starts_with('/')) pattern.remove_prefix(1);
  Wildmatch glob(pattern);
  glob_parts_ += glob.size();
  if (!glob.is_valid() || glob_parts_ > kMostGlobParts) return;
  std::string prefix(pattern.substr(0, pattern.find_first_of("*?[\\")));
  scope.globs.push_back({std::move(prefix), whole_path, std::move(glob), said});
}

GitAttributes::Sayings GitAttributes::said_of(const Scope& scope, std::string_view path) {
  const std::string_view name = base_name(path);
  Sayings said{};
  const auto look_up = [&said](const Table& table, std::string_view key) {
    if (table.empty()) return;
    if (const auto found = table.find(std::string(key)); found != table.end()) {
      lay_over(said, found->second);
    }
  };
  look_up(scope.names, name);
  look_up(scope.paths, path);
  if (!scope.folders.empty()) {
    for_each_folder_up(folder_of(path), [&](std::string_view up) { look_up(scope.folders, up); });
  }
  for (const auto& [suffix, sayings] : scope.suffixes) {
    if (name.ends_with(suffix)) lay_over(said, sayings);
  }
  for (const Scope::Glob& glob : scope.globs) {
    const auto subject = glob.whole_path ? path : name;
    if (subject.starts_with(glob.prefix) && glob.pattern.matches(subject))
      lay_over(said, glob.said);
  }
  return said;
}

GivenAttributes GitAttributes::of(std::string_view path) const {
  Sayings decided{};
  GivenAttributes given;
  if (empty()) return given;
  for_each_folder_up(folder_of(path), [&](std::string_view folder) {
    if (folder.size() > longest_folder_) return;
    const auto scope = scopes_.find(std::string(folder));
    if (scope == scopes_.end()) return;
    const auto said =
        said_of(*scope->second, folder.empty() ? path : path.substr(folder.size() + 1));
    for (std::size_t at = 0; at < said.size(); ++at) {
      if (decided[at].line > 0 || said[at].line == 0) continue;
      decided[at] = said[at];
      if (said[at].on)
        given[at] = {*said[at].on, said[at].of_kind && folder.empty(), scope->second->folder,
                     said[at].line};
    }
  });
  return given;
}

}  // namespace kestrix::index
