#include "kestrix/host/decisions/design_documents.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "kestrix/files/classification.h"
#include "kestrix/host/decisions/design_names.h"
#include "kestrix/host/decisions/document_series.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/roles/path_roles.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

// The bounds of a text that tells why and how, and neither instructs nor lists.
constexpr std::uint32_t kFewestWords = 150;
constexpr std::uint32_t kWordsOfAnEssay = 300;  // of one that nothing but its place speaks for
constexpr std::uint32_t kProseOfCode = 4;       // lines for one of code
constexpr std::uint32_t kMostCommands = 2;
constexpr std::uint32_t kMostAddressed = 12;  // words in a thousand
constexpr std::uint32_t kMostSteps = 2;
constexpr std::uint32_t kAddressesAllowed = 8;
constexpr std::uint32_t kWordsOfAnAddress = 80;
constexpr std::size_t kFewestHeadings = 2;
constexpr std::size_t kFewestNames = 4;
constexpr std::size_t kNamesOfARootPage = 8;
constexpr std::uint32_t kStub = 5;

// Of one that may tell why beside what it is for, and stands only for want of better ones.
constexpr std::uint32_t kProseOfCodeOfHint = 2;
constexpr std::uint32_t kMostCommandsOfHint = 8;
constexpr std::uint32_t kMostAddressedOfHint = 25;
constexpr std::size_t kNamesOfHint = 2;
constexpr std::size_t kWeightOfNamed = 3;

enum class Rank { kEntry, kEntryFolder, kOwnName, kOverviewFolder, kEvidence, kHint };

struct DesignDocument {
  Rank rank;
  std::uint64_t number;  ///< an entry's; names of code by which evidence counts; else 0
  std::string_view path;
  std::string sign;  ///< what decided, for a reader

  auto key() const { return std::tuple(rank, ~number, path); }
  friend bool operator==(const DesignDocument& a, const DesignDocument& b) {
    return a.path == b.path;
  }
};

// As `stem` gives it, but a view.
std::string_view name_without_ending(std::string_view path) {
  const auto name = index::base_name(path);
  const auto dot = name.rfind('.');
  return dot == name.npos || dot == 0 || dot + 1 == name.size() ? name : name.substr(0, dot);
}

// An entry may be a numbered folder whose index page is the text.
std::string_view naming_piece(std::string_view path) {
  const auto own = name_without_ending(path);
  const auto folder = index::base_name(index::folder_of(path));
  return is_standing_page(own) && entry_name(folder) ? folder : own;
}

// Copies of internet standards carry their number as their whole name.
bool is_copied_standard(const EntryName& entry, std::string_view path) {
  return ascii::equals(entry.word, "rfc") && entry.title.empty() && ascii::ends_with(path, ".txt");
}

// "5.0-upgrade", "2.1-release-notes": notes of a version, alike as they may be.
bool is_version(const EntryName& entry) {
  return !entry.title.empty() &&
         (ascii::is_digit(entry.title.front()) || is_common_page(entry.title));
}

bool is_entry(const EntryName& entry, std::string_view folder, const Series& series) {
  if (any_folder(folder, holds_entries) || is_record_word(entry.word)) return true;
  if (series.one_skeleton && !is_version(entry)) return true;
  if (any_folder(folder, holds_overviews)) return entry.long_number() || !entry.word.empty();
  return series.padded >= kSeriesLength && entry.of_padded_length();
}

bool is_mostly_code(const index::DocumentFacts& facts) {
  return facts.code_lines * 3 > facts.lines * 2 || facts.words < kStub;
}

bool links_few_sites(const index::DocumentFacts& facts) {
  return facts.outward_links <= std::max(kAddressesAllowed, facts.words / kWordsOfAnAddress);
}

// Prose about the product: few blocks of code, nothing to type, nobody to instruct, no list of
// links, no steps.
bool is_explanation(const index::DocumentFacts& facts) {
  return facts.words >= kFewestWords && facts.code_lines * kProseOfCode <= facts.lines &&
         facts.commands <= kMostCommands && facts.numbered_headings <= kMostSteps &&
         std::uint64_t{facts.addressed} * 1000 <= std::uint64_t{kMostAddressed} * facts.words &&
         links_few_sites(facts);
}

bool may_explain(const index::DocumentFacts& facts) {
  return facts.words >= kFewestWords && facts.code_lines * kProseOfCodeOfHint <= facts.lines &&
         facts.commands <= kMostCommandsOfHint && facts.numbered_headings <= kMostSteps &&
         facts.headings.size() >= kFewestHeadings &&
         std::uint64_t{facts.addressed} * 1000 <=
             std::uint64_t{kMostAddressedOfHint} * facts.words &&
         links_few_sites(facts);
}

bool is_at_top(std::string_view path) { return path.find('/') == path.npos; }

// The root page, or the index of what is written for developers.
bool is_where_developers_look(std::string_view page) {
  if (is_at_top(page)) return ascii::equals(name_without_ending(page), "readme");
  return is_index_page(name_without_ending(page)) &&
         any_folder(index::folder_of(page), serves_developers);
}

std::string listed(std::initializer_list<std::string> parts) {
  std::string text;
  for (const auto& part : parts) {
    if (part.empty()) continue;
    text += (text.empty() ? "" : ", ") + part;
  }
  return text;
}

std::string counted_or_none(std::size_t count, std::string_view one, std::string_view many) {
  return count == 0 ? std::string() : counted(count, one, many);
}

std::string names_of(const DocumentView& view) {
  const auto names = listed({counted_or_none(view.sources.size(), "source file", "source files"),
                             counted_or_none(view.folders.size(), "folder", "folders"),
                             counted_or_none(view.types.size(), "type", "types")});
  return names.empty() ? names : "names " + names;
}

std::string pointers_to(const DocumentView& view) {
  const auto look = std::ranges::find_if(view.linked_from, is_where_developers_look);
  const auto from = look != view.linked_from.end() ? fmt::format("linked from {}", *look)
                    : view.linked_from.empty()     ? std::string()
                                               : fmt::format("linked from {}", view.linked_from[0]);
  return listed(
      {from, view.named_in.empty()
                 ? std::string()
                 : "named in " + counted(view.named_in.size(), "source file", "source files")});
}

class Judge {
 public:
  Judge(const std::vector<std::string>& documents, const DocumentEvidence* evidence)
      : series_(documents, evidence), evidence_(evidence) {}

  std::optional<DesignDocument> judge(std::string_view path) const {
    if (path.empty() || is_foreign(path)) return std::nullopt;
    const auto* view = view_of(path);
    if (!is_known_document(path, view) || is_copy(path)) return std::nullopt;
    auto found = by_name(path, view);
    return found || view == nullptr ? found : by_evidence(path, *view);
  }

  // What `judge` does not take, and a reader may still look into.
  std::optional<DesignDocument> hint(std::string_view path) const {
    const auto* view = view_of(path);
    if (view == nullptr || path.empty() || is_foreign(path) || is_copy(path)) return std::nullopt;
    if (is_aside(path) || judge(path)) return std::nullopt;
    const auto name = name_without_ending(path);
    const bool of_part = !is_at_top(path) && ascii::equals(name, "readme");
    if ((is_common_page(name) && !of_part) || is_template(name, entry_name(name))) {
      return std::nullopt;
    }
    const bool known = !view->named_in.empty() || (of_part && view->names() >= kNamesOfHint);
    if (!known || !may_explain(view->facts)) return std::nullopt;
    const auto weight = view->names() + kWeightOfNamed * view->named_in.size();
    return DesignDocument{Rank::kHint, weight, path,
                          of_part ? "prose about the code beside it" : "prose"};
  }

  Pick pick(const DesignDocument& document) const {
    const auto* view = view_of(document.path);
    const bool entry = document.rank == Rank::kEntry || document.rank == Rank::kEntryFolder;
    Reason reason{entry ? "decision_record" : "design_document", document.sign, 0, {}};
    if (view != nullptr) {
      reason.text = listed({document.sign, names_of(*view), pointers_to(*view)});
      reason.count = view->names();
      reason.at = places_of(*view);
    }
    return {std::string(document.path), {std::move(reason)}};
  }

 private:
  const DocumentView* view_of(std::string_view path) const {
    return evidence_ == nullptr ? nullptr : evidence_->of(path);
  }

  static bool is_known_document(std::string_view path, const DocumentView* view) {
    return view != nullptr || index::is_document_path(path);
  }

  bool is_copy(std::string_view path) const {
    return evidence_ != nullptr && evidence_->is_copy(path);
  }

  // What tests and dependencies bring along, and what entries are begun from.
  static bool is_foreign(std::string_view path) {
    const Roles roles = path_roles(path);
    return roles.has(Role::kTest) || roles.has(Role::kTestData) || roles.has(Role::kVendored) ||
           any_folder(index::folder_of(path), holds_templates);
  }

  std::optional<DesignDocument> by_name(std::string_view path, const DocumentView* view) const {
    const auto folder = index::folder_of(path);
    const auto name = naming_piece(path);
    const auto entry = entry_name(name);
    if (is_template(name, entry) || is_standing_page(name)) return std::nullopt;
    if (entry && is_copied_standard(*entry, path)) return std::nullopt;
    if (entry && is_entry(*entry, folder, series_.of(folder))) return entry_of(path, *entry);
    if (view != nullptr && is_mostly_code(view->facts)) return std::nullopt;
    if (any_folder(folder, holds_entries)) {
      return DesignDocument{Rank::kEntryFolder, 0, path, "in a folder of decision records"};
    }
    if (is_design_name(name)) return DesignDocument{Rank::kOwnName, 0, path, "named as a design"};
    if (any_folder(folder, holds_overviews)) {
      return DesignDocument{Rank::kOverviewFolder, 0, path, "in a folder of designs"};
    }
    return std::nullopt;
  }

  DesignDocument entry_of(std::string_view path, const EntryName& entry) const {
    const auto numbered = series_.of(index::folder_of(path)).numbered;
    auto sign = numbered > 1 ? fmt::format("{}, one of {}", entry.digits,
                                           counted(numbered, "entry", "entries"))
                             : fmt::format("entry {}", entry.digits);
    return {Rank::kEntry, entry.number, path, std::move(sign)};
  }

  static std::optional<DesignDocument> by_evidence(std::string_view path,
                                                   const DocumentView& view) {
    const auto name = name_without_ending(path);
    const bool root_page = is_at_top(path) && ascii::equals(name, "readme");
    if (root_page && view.sources.size() >= kNamesOfARootPage && links_few_sites(view.facts)) {
      return DesignDocument{Rank::kEvidence, view.names(), path,
                            "the root page describes the code"};
    }
    if (is_aside(path) || !is_explanation(view.facts)) return std::nullopt;
    const auto found = [&](std::string_view sign) {
      return DesignDocument{Rank::kEvidence, view.names(), path, std::string(sign)};
    };
    if (is_common_page(name)) {
      // Of a part of the product its own root page may tell more than any other text.
      const bool of_part = !is_at_top(path) && ascii::equals(name, "readme");
      const bool tells =
          of_part && view.names() >= kFewestNames && view.facts.words >= kWordsOfAnEssay;
      return tells ? std::optional(found("prose about the code beside it")) : std::nullopt;
    }
    if (is_at_top(path) && view.facts.code_lines == 0 && view.facts.words >= kWordsOfAnEssay) {
      return found("an essay at the top of the repository");
    }
    if (view.facts.headings.size() < kFewestHeadings) return std::nullopt;
    if (view.names() >= kFewestNames || is_vouched_for(path, view)) {
      return found("prose about the code");
    }
    if (has_design_word(name)) return found("named as a design");
    const bool pointed_to = std::ranges::any_of(view.linked_from, is_where_developers_look) &&
                            view.facts.words >= kWordsOfAnEssay &&
                            view.facts.addressed * 200 <= view.facts.words;
    return pointed_to ? std::optional(found("prose that developers are pointed to")) : std::nullopt;
  }

  // A single comment may as well point to the manual.
  static bool is_vouched_for(std::string_view path, const DocumentView& view) {
    if (view.named_in.empty()) return false;
    return view.named_in.size() > 1 || view.names() > 1 ||
           any_folder(index::folder_of(path), serves_developers);
  }

  static bool is_aside(std::string_view path) {
    const Roles roles = path_roles(path);
    return roles.has(Role::kTool) || roles.has(Role::kSample) || roles.has(Role::kGenerated) ||
           roles.has(Role::kArchived) || any_folder(index::folder_of(path), reports_news);
  }

  static std::vector<Place> places_of(const DocumentView& view) {
    std::vector<Place> places;
    for (const auto* list : {&view.linked_from, &view.named_in}) {
      for (const auto path : *list) {
        if (places.size() < kMostPlaces) places.push_back({std::string(path), 0, {}});
      }
    }
    return places;
  }

  AllSeries series_;
  const DocumentEvidence* evidence_;
};

}  // namespace

namespace {

std::vector<Pick> ranked(const Judge& judge, std::vector<DesignDocument> found) {
  std::ranges::sort(found, {}, &DesignDocument::key);
  found.erase(std::unique(found.begin(), found.end()), found.end());
  std::vector<Pick> picks;
  picks.reserve(found.size());
  for (const auto& document : found) picks.push_back(judge.pick(document));
  return picks;
}

}  // namespace

std::vector<Pick> rank_design_documents(const std::vector<std::string>& documents,
                                        const DocumentEvidence* evidence) {
  const Judge judge(documents, evidence);
  std::vector<DesignDocument> found;
  for (const auto& path : documents) {
    if (auto document = judge.judge(path)) found.push_back(std::move(*document));
  }
  return ranked(judge, std::move(found));
}

std::vector<Pick> hinting_documents(const std::vector<std::string>& documents,
                                    const DocumentEvidence& evidence) {
  const Judge judge(documents, &evidence);
  std::vector<DesignDocument> found;
  for (const auto& path : documents) {
    if (auto document = judge.hint(path)) found.push_back(std::move(*document));
  }
  return ranked(judge, std::move(found));
}

}  // namespace kestrix
