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
#include "kestrix/host/decisions/document_place.h"
#include "kestrix/host/decisions/document_reason.h"
#include "kestrix/host/decisions/document_series.h"
#include "kestrix/host/decisions/document_text.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

constexpr std::size_t kFewestHeadings = 2;
constexpr std::size_t kFewestNames = 4;
constexpr std::size_t kNamesOfARootPage = 8;

enum class Rank { kEntry, kEntryFolder, kOwnName, kForm, kOverviewFolder, kEvidence };

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

// Copies of internet standards carry their number as their whole name.
bool is_copied_standard(const EntryName& entry, std::string_view path) {
  return ascii::equals(entry.word, "rfc") && entry.title.empty() && ascii::ends_with(path, ".txt");
}

// "5.0-upgrade", "2.1-release-notes": notes of a version, alike as they may be.
bool is_version(const EntryName& entry) {
  return !entry.title.empty() &&
         (ascii::is_digit(entry.title.front()) || is_common_page(entry.title));
}

bool is_entry(const EntryName& entry, const Naming& naming, const Series& series) {
  const auto folder = naming.folder;
  if (any_folder(folder, holds_entries) || is_record_word(entry.word)) return true;
  if (naming.design_of_folder && series.numbered >= kSeriesLength) return true;
  if (series.one_skeleton && !is_version(entry)) return true;
  if (any_folder(folder, holds_overviews)) return entry.long_number() || !entry.word.empty();
  return series.padded >= kSeriesLength && entry.of_padded_length();
}

class Judge {
 public:
  Judge(const std::vector<std::string>& documents, const DocumentEvidence* evidence)
      : series_(documents, evidence), evidence_(evidence) {}

  std::optional<DesignDocument> judge(std::string_view path) const {
    if (path.empty() || is_foreign_document(path)) return std::nullopt;
    const auto* view = view_of(path);
    if (!is_known_document(path, view) || is_copy(path)) return std::nullopt;
    auto found = by_name(path, view);
    return found || view == nullptr ? found : by_evidence(path, *view);
  }

  Pick pick(const DesignDocument& document) const {
    const bool entry = document.rank == Rank::kEntry || document.rank == Rank::kEntryFolder;
    return {std::string(document.path),
            {document_reason(entry ? "decision_record" : "design_document", document.sign,
                             view_of(document.path))}};
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

  std::optional<DesignDocument> by_name(std::string_view path, const DocumentView* view) const {
    const Naming naming = naming_of(path);
    const auto [name, folder, design_of_folder] = naming;
    const auto entry = entry_name(name);
    const bool proposal = view != nullptr && !is_aside_document(path) && is_proposal(view->facts);
    if (is_template(name, entry)) return std::nullopt;
    if (is_standing_page(name) && !(proposal && is_page_of_part(path))) return std::nullopt;
    if (entry && is_copied_standard(*entry, path)) return std::nullopt;
    if (entry && is_entry(*entry, naming, series_.of(folder))) {
      return entry_of(path, folder, *entry);
    }
    if (view != nullptr && !proposal && is_mostly_code(view->facts)) return std::nullopt;
    if (any_folder(folder, holds_entries)) {
      return DesignDocument{Rank::kEntryFolder, 0, path, "in a folder of decision records"};
    }
    if (is_design_name(name) || design_of_folder) {
      return DesignDocument{Rank::kOwnName, 0, path, "named as a design"};
    }
    if (proposal) return DesignDocument{Rank::kForm, 0, path, "in the form of a proposal"};
    if (any_folder(folder, holds_overviews)) {
      return DesignDocument{Rank::kOverviewFolder, 0, path, "in a folder of designs"};
    }
    return std::nullopt;
  }

  DesignDocument entry_of(std::string_view path, std::string_view folder,
                          const EntryName& entry) const {
    const auto numbered = series_.of(folder).numbered;
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
    if (is_aside_document(path) || !is_explanation(view.facts)) return std::nullopt;
    const auto found = [&](std::string_view sign) {
      return DesignDocument{Rank::kEvidence, view.names(), path, std::string(sign)};
    };
    if (is_common_page(name)) {
      // Of a part of the product its own root page may tell more than any other text.
      const bool of_part = is_page_of_part(path);
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

}  // namespace kestrix
