#include "kestrix/host/design_documents.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>
#include <unordered_map>

#include "kestrix/files/classification.h"
#include "kestrix/roles/path_roles.h"
#include "kestrix/text/ascii.h"
#include "kestrix/workers/wiki_split.h"

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
constexpr auto kDocumentNames =
    std::to_array<std::string_view>({"design", "architecture", "decisions"});
constexpr auto kIndexNames = std::to_array<std::string_view>(
    {"readme", "index", "_index", "summary", "toc", "contents", "changelog", "contributing",
     "license", "copying", "code_of_conduct", "security", "glossary"});
constexpr auto kEntryWords = std::to_array<std::string_view>(
    {"adr", "madr", "rfc",      "rfd",      "kep",    "pep",         "sep",
     "nep", "slep", "mep",      "cep",      "dep",    "jep",         "tep",
     "eip", "ep",   "proposal", "decision", "design", "enhancement", "dr"});
constexpr auto kRecordWords = std::to_array<std::string_view>({"adr", "madr"});
constexpr auto kTemplateWords = std::to_array<std::string_view>({"template", "templates"});

constexpr std::size_t kPaddedDigits = 4;
constexpr std::size_t kSeriesLength = 3;

using Names = std::span<const std::string_view>;

bool is_among(Names names, std::string_view text) {
  return std::ranges::any_of(names, [text](auto name) { return ascii::equals(text, name); });
}

std::string_view directory_of(std::string_view path) {
  const auto slash = path.rfind('/');
  return path.substr(0, slash == std::string_view::npos ? 0 : slash);
}

std::string_view piece_of(std::string_view path) { return path.substr(path.rfind('/') + 1); }

bool has_piece(std::string_view directory, Names names) {
  while (!directory.empty()) {
    const auto slash = std::min(directory.find('/'), directory.size());
    if (is_among(names, directory.substr(0, slash))) return true;
    directory.remove_prefix(std::min(slash + 1, directory.size()));
  }
  return false;
}

/// The number or date at the front of an entry's name.
struct EntryName {
  std::string_view word;    ///< "adr" in "adr-007-queues"
  std::string_view digits;  ///< "007", or the whole of "2024-01-31"
  std::string_view title;   ///< "queues"
  std::uint64_t number = 0;
  bool dated = false;

  bool padded() const { return digits.size() == kPaddedDigits && digits.front() == '0'; }
  bool long_number() const { return dated || digits.size() >= 3; }
};

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

std::optional<EntryName> entry_name(std::string_view name) {
  const auto letters =
      static_cast<std::size_t>(std::ranges::find_if_not(name, ascii::is_alpha) - name.begin());
  const auto word = name.substr(0, letters);
  if (!word.empty() && !is_among(kEntryWords, word)) return std::nullopt;
  return numbered(word.empty() ? name : without_separators(name.substr(letters)), word);
}

std::string_view last_word(std::string_view text) {
  const auto separator = text.find_last_of("-_. ");
  return separator == std::string_view::npos ? text : text.substr(separator + 1);
}

std::string_view first_word(std::string_view text) {
  return text.substr(0, text.find_first_of("-_. "));
}

// "template", "adr-template", "0000-kep-template", "YYYYMMDD-template"; "0012-template-engine" is
// an entry about templates.
bool is_template(std::string_view name, const std::optional<EntryName>& entry) {
  if (entry && entry->number > 0) return is_among(kTemplateWords, entry->title);
  const auto title = entry ? entry->title : name;
  return is_among(kTemplateWords, last_word(title)) || is_among(kTemplateWords, first_word(title));
}

// Copies of internet standards carry their number as their whole name.
bool is_copied_standard(const EntryName& entry, std::string_view path) {
  return ascii::equals(entry.word, "rfc") && entry.title.empty() && ascii::ends_with(path, ".txt");
}

enum class Rank { kEntry, kEntryFolder, kOwnName, kOverviewFolder };

struct DesignDocument {
  Rank rank;
  std::uint64_t number;  ///< 0 where only the path orders
  std::string_view path;

  auto key() const { return std::tuple(rank, ~number, path); }
  friend bool operator==(const DesignDocument&, const DesignDocument&) = default;
};

/// How many padded numbers ("0007-…") each folder holds.
using SeriesLengths = std::unordered_map<std::string_view, std::size_t>;

SeriesLengths series_lengths(const std::vector<std::string>& documents) {
  SeriesLengths lengths;
  for (const auto& path : documents) {
    const auto entry = entry_name(piece_of(path));
    if (entry && entry->padded()) ++lengths[directory_of(path)];
  }
  return lengths;
}

/// What the folders above a document say.
struct Place {
  bool entries;    ///< below a folder that is named for entries
  bool overviews;  ///< below a folder that is named for designs
  bool series;     ///< in a folder that holds a series of padded numbers
};

Place place_of(std::string_view directory, const SeriesLengths& lengths) {
  const auto found = lengths.find(directory);
  return {has_piece(directory, kEntryFolders), has_piece(directory, kOverviewFolders),
          found != lengths.end() && found->second >= kSeriesLength};
}

bool is_entry(const EntryName& entry, const Place& place) {
  if (place.entries || is_among(kRecordWords, entry.word)) return true;
  if (place.overviews) return entry.long_number() || !entry.word.empty();
  return place.series && entry.digits.size() == kPaddedDigits;
}

// An entry may be a numbered folder whose index page is the text.
std::string_view naming_piece(std::string_view path, std::string_view own_stem) {
  const auto directory = directory_of(path);
  const bool in_folder = is_among(kIndexNames, own_stem) && entry_name(piece_of(directory));
  return in_folder ? piece_of(directory) : own_stem;
}

// What tests and dependencies bring along, and what entries are begun from.
bool is_foreign(std::string_view path) {
  const Roles roles = path_roles(path);
  return roles.has(Role::kTest) || roles.has(Role::kTestData) || roles.has(Role::kVendored) ||
         has_piece(directory_of(path), kTemplateWords);
}

std::optional<DesignDocument> judge(std::string_view path, const SeriesLengths& lengths) {
  const auto directory = directory_of(path);
  if (!index::is_document_path(path) || is_foreign(path)) return std::nullopt;
  const auto place = place_of(directory, lengths);
  const auto own_stem = stem(path);
  const auto name = naming_piece(path, own_stem);
  const auto entry = entry_name(name);
  if (is_template(name, entry) || is_among(kIndexNames, name)) return std::nullopt;
  if (entry && is_copied_standard(*entry, path)) return std::nullopt;
  if (entry && is_entry(*entry, place)) return DesignDocument{Rank::kEntry, entry->number, path};
  if (place.entries) return DesignDocument{Rank::kEntryFolder, 0, path};
  if (is_among(kDocumentNames, name)) return DesignDocument{Rank::kOwnName, 0, path};
  if (place.overviews) return DesignDocument{Rank::kOverviewFolder, 0, path};
  return std::nullopt;
}

}  // namespace

std::vector<std::string> rank_design_documents(const std::vector<std::string>& documents) {
  const auto lengths = series_lengths(documents);
  std::vector<DesignDocument> found;
  for (const auto& path : documents) {
    if (const auto document = judge(path, lengths)) found.push_back(*document);
  }
  std::ranges::sort(found, {}, &DesignDocument::key);
  found.erase(std::unique(found.begin(), found.end()), found.end());
  std::vector<std::string> paths;
  paths.reserve(found.size());
  for (const auto& document : found) paths.emplace_back(document.path);
  return paths;
}

}  // namespace kestrix
