#include "kestrix/host/decisions/design_names.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "kestrix/roles/folder_names.h"
#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

constexpr auto kEntryFolders = std::to_array<std::string_view>({"adr",
                                                                "adrs",
                                                                "decisions",
                                                                "decision-records",
                                                                "decision_records",
                                                                "decision-log",
                                                                "rfc",
                                                                "rfcs",
                                                                "rfd",
                                                                "rfds",
                                                                "proposal",
                                                                "proposals",
                                                                "design-proposals",
                                                                "enhancements",
                                                                "keps",
                                                                "peps",
                                                                "sep",
                                                                "seps",
                                                                "neps",
                                                                "sleps",
                                                                "jeps",
                                                                "eips"});
constexpr auto kOverviewFolders = std::to_array<std::string_view>(
    {"design", "designs", "design-docs", "design_docs", "designdocs", "architecture"});
constexpr auto kDeveloperFolders =
    std::to_array<std::string_view>({"dev", "developer", "developers", "development", "internal",
                                     "internals", "maintainers", "contributing"});
constexpr auto kNewsFolders = std::to_array<std::string_view>(
    {"release", "releases", "release-notes", "release_notes", "changelog", "changelogs", "changes",
     "news", "blog", "posts", "_posts", "meetings", "minutes"});
constexpr auto kDocumentNames =
    std::to_array<std::string_view>({"design", "architecture", "decisions"});
constexpr auto kIndexNames =
    std::to_array<std::string_view>({"readme", "index", "_index", "summary", "toc", "contents"});
constexpr auto kStandingNames = std::to_array<std::string_view>({"agents",
                                                                 "authors",
                                                                 "bugs",
                                                                 "changelog",
                                                                 "changes",
                                                                 "claude",
                                                                 "code-of-conduct",
                                                                 "code_of_conduct",
                                                                 "contributing",
                                                                 "contributors",
                                                                 "copying",
                                                                 "copyright",
                                                                 "credits",
                                                                 "deprecations",
                                                                 "disclaimer",
                                                                 "faq",
                                                                 "glossary",
                                                                 "governance",
                                                                 "history",
                                                                 "install",
                                                                 "installation",
                                                                 "issue_template",
                                                                 "license",
                                                                 "licence",
                                                                 "maintainers",
                                                                 "migrating",
                                                                 "news",
                                                                 "notice",
                                                                 "pull_request_template",
                                                                 "releasing",
                                                                 "roadmap",
                                                                 "security",
                                                                 "support",
                                                                 "thanks",
                                                                 "todo",
                                                                 "upgrading"});
// What a page of news or of instructions has among the words of its name.
constexpr auto kCommonWords =
    std::to_array<std::string_view>({"changelog", "changes", "license", "licence", "licenses",
                                     "migration", "readme", "release", "releases", "upgrade"});
constexpr auto kEntryWords = std::to_array<std::string_view>(
    {"adr", "madr", "rfc",      "rfd",      "kep",    "pep",         "sep",
     "nep", "slep", "mep",      "cep",      "dep",    "jep",         "tep",
     "eip", "ep",   "proposal", "decision", "design", "enhancement", "dr"});
constexpr auto kRecordWords = std::to_array<std::string_view>({"adr", "madr"});
constexpr auto kTemplateWords = std::to_array<std::string_view>({"template", "templates"});

constexpr std::size_t kPaddedDigits = 4;

std::uint64_t value_of(std::string_view digits) {
  std::uint64_t value = 0;
  for (const char c : digits.substr(0, 18)) value = value * 10 + static_cast<unsigned>(c - '0');
  return value;
}

std::size_t run_of_digits(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::find_if_not(text, ascii::is_digit) - text.begin());
}

bool is_date(std::uint64_t number) {
  const auto year = number / 10000;
  const auto month = number / 100 % 100;
  const auto day = number % 100;
  return year >= 1970 && year < 2200 && month >= 1 && month <= 12 && day >= 1 && day <= 31;
}

bool is_separator(char c) { return c == '-' || c == '_' || c == '.' || c == ' '; }

// "2024-01-31": the length of such a date at the front, 0 when there is none.
std::size_t dashed_date(std::string_view text) {
  constexpr std::size_t length = 10;
  if (text.size() < length || !is_separator(text[4]) || text[7] != text[4]) return 0;
  const bool numeric = run_of_digits(text) == 4 && run_of_digits(text.substr(5)) == 2 &&
                       run_of_digits(text.substr(8)) == 2;
  const auto number = numeric ? value_of(text.substr(0, 4)) * 10000 +
                                    value_of(text.substr(5, 2)) * 100 + value_of(text.substr(8, 2))
                              : 0;
  return is_date(number) ? length : 0;
}

std::string_view without_separators(std::string_view text) {
  while (!text.empty() && is_separator(text.front())) text.remove_prefix(1);
  return text;
}

std::optional<EntryName> numbered(std::string_view text, std::string_view word) {
  EntryName entry{word, {}, {}};
  if (const auto length = dashed_date(text); length > 0) {
    entry.digits = text.substr(0, length);
    entry.number = value_of(text.substr(0, 4)) * 10000 + value_of(text.substr(5, 2)) * 100 +
                   value_of(text.substr(8, 2));
    entry.dated = true;
  } else {
    entry.digits = text.substr(0, run_of_digits(text));
    entry.number = value_of(entry.digits);
    entry.dated = entry.digits.size() == 8 && is_date(entry.number);
  }
  const auto rest = text.substr(entry.digits.size());
  if (entry.digits.empty() || (!rest.empty() && !is_separator(rest.front()))) return std::nullopt;
  entry.title = without_separators(rest);
  return entry;
}

std::string_view last_word(std::string_view text) {
  const auto separator = text.find_last_of("-_. ");
  return separator == std::string_view::npos ? text : text.substr(separator + 1);
}

std::string_view first_word(std::string_view text) {
  return text.substr(0, text.find_first_of("-_. "));
}

// Whether any word of a name passes the test.
bool any_word(std::string_view name, Names words) {
  while (!name.empty()) {
    const auto end = std::min(name.find_first_of("-_. "), name.size());
    if (is_among(words, name.substr(0, end))) return true;
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  return false;
}

}  // namespace

bool EntryName::padded() const { return of_padded_length() && digits.front() == '0'; }

bool EntryName::of_padded_length() const { return digits.size() == kPaddedDigits; }

std::optional<EntryName> entry_name(std::string_view name) {
  const auto letters =
      static_cast<std::size_t>(std::ranges::find_if_not(name, ascii::is_alpha) - name.begin());
  const auto word = name.substr(0, letters);
  if (!word.empty() && !is_among(kEntryWords, word)) return std::nullopt;
  return numbered(word.empty() ? name : without_separators(name.substr(letters)), word);
}

bool is_record_word(std::string_view word) { return is_among(kRecordWords, word); }

bool is_template(std::string_view name, const std::optional<EntryName>& entry) {
  if (entry && entry->number > 0) return is_among(kTemplateWords, entry->title);
  const auto title = entry ? entry->title : name;
  return is_among(kTemplateWords, last_word(title)) || is_among(kTemplateWords, first_word(title));
}

bool holds_entries(std::string_view folder) { return is_among(kEntryFolders, folder); }

bool holds_overviews(std::string_view folder) { return is_among(kOverviewFolders, folder); }

bool holds_templates(std::string_view folder) { return is_among(kTemplateWords, folder); }

bool serves_developers(std::string_view folder) { return is_among(kDeveloperFolders, folder); }

bool reports_news(std::string_view folder) { return is_among(kNewsFolders, folder); }

bool any_folder(std::string_view directory, bool (*test)(std::string_view folder)) {
  while (!directory.empty()) {
    const auto slash = std::min(directory.find('/'), directory.size());
    if (test(directory.substr(0, slash))) return true;
    directory.remove_prefix(std::min(slash + 1, directory.size()));
  }
  return false;
}

bool is_design_name(std::string_view name) { return is_among(kDocumentNames, name); }

bool has_design_word(std::string_view name) {
  return is_design_name(first_word(name)) || is_design_name(last_word(name));
}

bool is_index_page(std::string_view name) { return is_among(kIndexNames, name); }

bool is_standing_page(std::string_view name) {
  return is_index_page(name) || is_among(kStandingNames, name);
}

bool is_common_page(std::string_view name) {
  return is_standing_page(name) || any_word(name, kCommonWords);
}

}  // namespace kestrix
