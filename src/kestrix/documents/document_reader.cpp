#include "kestrix/documents/document_reader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <span>
#include <utility>

#include "kestrix/documents/link_targets.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/heading_hash.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kMostNames = 300;
constexpr std::size_t kMostLinks = 300;
constexpr std::size_t kMostHeadings = 24;
constexpr std::size_t kLongestName = 120;
constexpr std::size_t kIndent = 4;

using Words = std::span<const std::string_view>;

// What the first word of a line is that somebody types.
constexpr auto kPrograms = std::to_array<std::string_view>(
    {"$",      "%",       "./gradlew", "apt",  "apt-get", "brew",   "bundle", "cargo",
     "cd",     "cmake",   "composer",  "curl", "docker",  "dotnet", "git",    "gradle",
     "helm",   "kubectl", "make",      "mvn",  "npm",     "npx",    "pip",    "pnpm",
     "python", "python3", "rake",      "sudo", "uv",      "yarn"});
constexpr auto kReader = std::to_array<std::string_view>({"you", "your", "yours", "yourself"});

enum class Markup { kPlain, kMarkdown, kRestructured, kAsciiDoc, kOrg };

Markup markup_of(std::string_view path) {
  if (ascii::ends_with(path, ".rst")) return Markup::kRestructured;
  if (ascii::ends_with(path, ".adoc") || ascii::ends_with(path, ".asciidoc")) {
    return Markup::kAsciiDoc;
  }
  const auto name = base_name(path);
  if (ascii::ends_with(path, ".txt") || name.find('.') == name.npos) return Markup::kPlain;
  return ascii::ends_with(path, ".org") ? Markup::kOrg : Markup::kMarkdown;
}

bool is_among(Words words, std::string_view text) {
  return std::ranges::any_of(words, [text](auto word) { return ascii::equals(text, word); });
}

std::string_view trimmed(std::string_view line) {
  while (!line.empty() && ascii::is_space(line.front())) line.remove_prefix(1);
  while (!line.empty() && ascii::is_space(line.back())) line.remove_suffix(1);
  return line;
}

std::size_t run_of(std::string_view text, char c) {
  return std::min(text.find_first_not_of(c), text.size());
}

std::size_t digits(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::find_if_not(text, ascii::is_digit) - text.begin());
}

bool is_list_item(std::string_view line) {
  if (line.size() > 1 && (line[0] == '-' || line[0] == '*' || line[0] == '+'))
    return line[1] == ' ';
  const auto number = digits(line);
  return number > 0 && number + 1 < line.size() && (line[number] == '.' || line[number] == ')') &&
         line[number + 1] == ' ';
}

class Reader {
 public:
  explicit Reader(std::string_view path) : markup_(markup_of(path)) {}

  DocumentFacts read(std::string_view text) {
    while (!text.empty()) {
      const auto end = std::min(text.find('\n'), text.size());
      take(text.substr(0, end));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    names_.merge(keys_);
    facts_.names.assign(names_.begin(), names_.end());
    facts_.links.assign(links_.begin(), links_.end());
    return std::move(facts_);
  }

 private:
  void take(std::string_view line) {
    const auto text = trimmed(line);
    if (text.empty()) return;
    ++facts_.lines;
    take_names(text);
    if (fence_.empty() ? opens_fence(text) : closes_fence(text)) {
      ++facts_.code_lines;
    } else if (!fence_.empty() || is_indented_code(line, text)) {
      take_code(text);
    } else {
      take_prose(text);
    }
    take_links(line, text);
  }

  bool opens_fence(std::string_view text) {
    const char c = text.front();
    const bool marks =
        c == '`' || c == '~' || (markup_ == Markup::kAsciiDoc && (c == '-' || c == '.'));
    const auto length = run_of(text, c);
    const bool ascii_doc = c == '-' || c == '.';
    if (marks && (ascii_doc ? length >= 4 && length == text.size() : length >= 3)) {
      fence_.assign(text.substr(0, length));
    } else if (markup_ == Markup::kOrg && text.size() > 8 &&
               ascii::equals(text.substr(0, 8), "#+begin_")) {
      fence_ = "#+end_";
    }
    return !fence_.empty();
  }

  bool closes_fence(std::string_view text) {
    const bool closes = fence_.front() == '#'
                            ? ascii::equals(text.substr(0, fence_.size()), fence_)
                            : text.starts_with(fence_) && run_of(text, fence_[0]) == text.size();
    if (closes) fence_.clear();
    return closes;
  }

  bool is_indented_code(std::string_view line, std::string_view text) const {
    const bool indented =
        line.front() == '\t' || (line.size() > kIndent && run_of(line, ' ') >= kIndent);
    if (markup_ == Markup::kPlain) return false;  // there it is layout
    if (markup_ == Markup::kRestructured) return indented;
    return indented && !is_list_item(text) && !in_list_;
  }

  void take_code(std::string_view text) {
    ++facts_.code_lines;
    if (is_among(kPrograms, text.substr(0, text.find(' ')))) ++facts_.commands;
  }

  void take_prose(std::string_view text) {
    in_list_ = is_list_item(text) || (in_list_ && !is_heading(text));
    if (is_heading(text)) {
      add_heading(trimmed(text.substr(text.find(' '))));
    } else if (is_underline(text) && !before_.empty()) {
      add_heading(before_);
    }
    before_.assign(text.substr(0, kLongestName));
    for_each_word(text, [&](std::string_view word) {
      ++facts_.words;
      if (is_among(kReader, word)) ++facts_.addressed;
    });
  }

  bool is_heading(std::string_view text) const {
    if (markup_ == Markup::kRestructured) return false;
    const char mark = markup_ == Markup::kAsciiDoc ? '=' : markup_ == Markup::kOrg ? '*' : '#';
    const auto depth = run_of(text, mark);
    return depth > 0 && depth <= 6 && depth + 1 < text.size() && text[depth] == ' ';
  }

  static bool is_underline(std::string_view text) {
    constexpr std::string_view kMarks = "=-~^\"'`#*+";
    return text.size() >= 3 && kMarks.find(text[0]) != kMarks.npos &&
           run_of(text, text[0]) == text.size();
  }

  void add_heading(std::string_view text) {
    if (facts_.headings.size() < kMostHeadings) facts_.headings.push_back(heading_hash(text));
    const auto number = digits(text);
    const bool step = text.size() > 5 && ascii::equals(text.substr(0, 5), "step ");
    if (step ||
        (number > 0 && number < text.size() && (text[number] == '.' || text[number] == ')'))) {
      ++facts_.numbered_headings;
    }
  }

  template <class Visit>
  static void for_each_word(std::string_view text, Visit visit) {
    for (std::size_t at = 0; at < text.size();) {
      const auto begin = at;
      while (at < text.size() && ascii::is_word(text[at])) ++at;
      if (at > begin) visit(text.substr(begin, at - begin));
      while (at < text.size() && !ascii::is_word(text[at])) ++at;
    }
  }

  static bool is_name_part(char c) {
    return ascii::is_word(c) || c == '.' || c == '/' || c == '-' || c == '+';
  }

  void take_names(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
      const auto begin = at;
      while (at < text.size() && is_name_part(text[at])) ++at;
      if (at > begin) add_name(text.substr(begin, at - begin), begin > 0 ? text[begin - 1] : ' ');
      while (at < text.size() && !is_name_part(text[at])) ++at;
    }
  }

  void add_name(std::string_view token, char before) {
    if (before == ':' && token.starts_with("//")) return;  // an address of another site
    while (token.starts_with("./")) token.remove_prefix(2);
    while (!token.empty() && (token.back() == '.' || token.back() == '/')) token.remove_suffix(1);
    if (token.size() < 3 || token.size() > kLongestName) return;
    if (looks_like_path(token) || looks_like_type(token, before)) {
      if (names_.size() < kMostNames) names_.emplace(token);
    }
    if (keys_.size() >= kMostNames) return;
    const auto key = token.substr(token.rfind('.') + 1);
    if (looks_like_key(key)) keys_.emplace(key);
  }

  static bool looks_like_path(std::string_view token) {
    if (token.find('/') != token.npos) return true;
    const auto dot = token.rfind('.');
    return dot != token.npos && dot >= 2 && token.size() - dot <= 6 &&
           ascii::is_alpha(token[dot + 1]);
  }

  // "OrderBook", and in code marks also "Order".
  static bool looks_like_type(std::string_view token, char before) {
    if (!ascii::is_upper(token.front()) || !std::ranges::all_of(token, ascii::is_word))
      return false;
    const auto capitals = std::ranges::count_if(token, ascii::is_upper);
    if (capitals == std::ssize(token)) return false;
    return before == '`' || capitals > 1;
  }

  // "page_size", "pageSize": of several words, in lower case.
  static bool looks_like_key(std::string_view token) {
    if (token.size() < 3 || !ascii::is_lower(token.front()) ||
        !std::ranges::all_of(token, ascii::is_word)) {
      return false;
    }
    return std::ranges::any_of(token, [](char c) { return c == '_' || ascii::is_upper(c); });
  }

  void take_links(std::string_view line, std::string_view text) {
    facts_.outward_links += count_addresses(text);
    if (markup_ == Markup::kRestructured) {
      if (text.starts_with(".. ")) in_contents_ = text.starts_with(".. toctree::");
      if (in_contents_ && ascii::is_space(line.front()) && !text.starts_with(":")) add_link(text);
      if (!ascii::is_space(line.front()) && !text.starts_with("..")) in_contents_ = false;
    }
    for_each_link(text, [&](std::string_view target) { add_link(target); });
  }

  void add_link(std::string_view target) {
    target = trimmed(target.substr(0, target.find_first_of("#?")));
    const bool local = !target.empty() && target.find("://") == target.npos &&
                       target.find(' ') == target.npos && !target.starts_with("mailto:");
    if (local && target.size() <= kLongestName && links_.size() < kMostLinks) {
      links_.emplace(target);
    }
  }

  Markup markup_;
  DocumentFacts facts_;
  std::string fence_;   // what closes the block of code that is open
  std::string before_;  // the line before, where an underline may follow
  bool in_list_ = false;
  bool in_contents_ = false;
  std::set<std::string, std::less<>> names_;
  std::set<std::string, std::less<>> keys_;  // apart, for one kind may crowd the other out
  std::set<std::string, std::less<>> links_;
};

constexpr auto kDocumentEndings = std::to_array<std::string_view>({".md", ".rst", ".adoc"});
constexpr auto kCommonNames =
    std::to_array<std::string_view>({"readme", "changelog", "changes", "contributing", "license",
                                     "index", "security", "news", "history"});
constexpr std::size_t kMostNamedDocuments = 20;

bool is_path_part(char c) { return ascii::is_word(c) || c == '.' || c == '/' || c == '-'; }

void find_named(std::string_view text, std::string_view ending, std::set<std::string>& found) {
  for (auto at = text.find(ending); at != text.npos && found.size() < kMostNamedDocuments;
       at = text.find(ending, at + ending.size())) {
    const auto end = at + ending.size();
    if (end < text.size() && is_path_part(text[end]) && text[end] != '.') continue;
    auto begin = at;
    while (begin > 0 && at - begin < kLongestName && is_path_part(text[begin - 1])) --begin;
    const auto name = text.substr(begin, end - begin);
    const auto stem = base_name(name).substr(0, base_name(name).find('.'));
    if (stem.size() > 1 && !is_among(kCommonNames, stem)) found.emplace(name);
  }
}

}  // namespace

DocumentFacts read_document(std::string_view path, std::string_view text) {
  return Reader(path).read(text);
}

std::vector<std::string> documents_named_in(std::string_view text) {
  std::set<std::string> found;
  for (const auto ending : kDocumentEndings) find_named(text, ending, found);
  return {found.begin(), found.end()};
}

bool is_prose(std::string_view text) {
  constexpr std::size_t kSample = 4096;
  constexpr std::size_t kLeast = 200;
  constexpr std::size_t kWordsOfALine = 5;
  text = text.substr(0, kSample);
  if (text.size() < kLeast) return false;
  const auto words = 1 + static_cast<std::size_t>(std::ranges::count(text, ' '));
  const auto lines = 1 + static_cast<std::size_t>(std::ranges::count(text, '\n'));
  const auto signs = static_cast<std::size_t>(std::ranges::count_if(text, [](char c) {
    return c == '=' || c == '{' || c == '}' || c == ';' || c == '$' || c == '<' || c == '>' ||
           c == '@' || c == '|';
  }));
  return words / lines >= kWordsOfALine && signs * 50 < text.size();
}

}  // namespace kestrix::index
