#include "kestrix/host/decisions/hinting_documents.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <unordered_set>
#include <utility>

#include "kestrix/host/decisions/design_names.h"
#include "kestrix/host/decisions/document_place.h"
#include "kestrix/host/decisions/document_reason.h"
#include "kestrix/host/decisions/document_text.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

constexpr std::size_t kFewDesigns = 5;
constexpr std::size_t kMostHints = 3;
constexpr std::size_t kMostRead = 24;
constexpr std::uint32_t kFewestWords = 100;
constexpr std::uint32_t kMostSteps = 5;
constexpr std::size_t kNamesOfPart = 2;
// A remark is no weighing, nor are two in a short text.
constexpr std::uint32_t kWordsOfRate = 300;

// What reasons tell is the measure: one for each doubling of their number in a thousand words.
constexpr double kWorthOfNames = 0.4;
constexpr double kWorthOfBeingNamed = 2;
constexpr double kWorthOfPart = 1.5;
constexpr double kCostOfCode = 2.5;
constexpr double kCostOfAddress = 0.08;  // for one word in a thousand
constexpr double kCostOfSiblings = 0.3;
constexpr double kLeast = 0.5;
constexpr double kLeastBesideDesigns = 0.75;

struct Hint {
  double points;
  std::string_view path;
  const DocumentView* view;
  std::size_t reasons = 0;
};

double logarithm(double count) { return std::log2(1.0 + count); }

class Hints {
 public:
  Hints(const std::vector<std::string>& documents, const DocumentEvidence& evidence,
        const std::vector<Pick>& designs)
      : evidence_(evidence) {
    for (const Pick& design : designs) designs_.insert(design.path);
    for (const auto& path : documents) ++siblings_[index::folder_of(path)];
    for (const auto& path : documents) {
      if (auto hint = judge(path)) found_.push_back(*hint);
    }
  }

  std::vector<Hint> ranked(const std::function<std::string(std::string_view)>& read) {
    sort();
    if (found_.size() > kMostRead) found_.resize(kMostRead);
    for (Hint& hint : found_) {
      hint.reasons = count_reasons(read(hint.path));
      const auto words = std::max(hint.view->facts.words, kWordsOfRate);
      const auto beyond_one = hint.reasons - std::min<std::size_t>(hint.reasons, 1);
      hint.points += logarithm(1000.0 * static_cast<double>(beyond_one) / words);
    }
    sort();
    found_.erase(std::unique(found_.begin(), found_.end(),
                             [](const Hint& a, const Hint& b) { return a.path == b.path; }),
                 found_.end());
    return std::move(found_);
  }

 private:
  void sort() {
    std::ranges::sort(found_, {},
                      [](const Hint& hint) { return std::pair(-hint.points, hint.path); });
  }

  bool is_candidate(std::string_view path, const DocumentView& view) const {
    if (is_foreign_document(path) || is_aside_document(path) || evidence_.is_copy(path)) {
      return false;
    }
    const auto name = name_without_ending(path);
    if (is_common_page(name) && !is_page_of_part(path)) return false;
    return !is_template(name, entry_name(name)) && view.facts.words >= kFewestWords &&
           view.facts.numbered_headings <= kMostSteps && links_few_sites(view.facts);
  }

  std::optional<Hint> judge(std::string_view path) const {
    const DocumentView* view = evidence_.of(path);
    if (view == nullptr || designs_.contains(path) || !is_candidate(path, *view)) {
      return std::nullopt;
    }
    const auto& facts = view->facts;
    double points = kWorthOfNames * logarithm(static_cast<double>(view->names()));
    if (!view->named_in.empty()) points += kWorthOfBeingNamed;
    if (is_page_of_part(path) && view->names() >= kNamesOfPart) points += kWorthOfPart;
    points -= kCostOfCode * facts.code_lines / std::max(facts.lines, 1U);
    points -= kCostOfAddress * 1000 * facts.addressed / std::max(facts.words, 1U);
    const auto siblings = siblings_.find(index::folder_of(path))->second;
    points -= kCostOfSiblings * logarithm(static_cast<double>(siblings));
    return Hint{points, path, view};
  }

  const DocumentEvidence& evidence_;
  std::unordered_set<std::string_view> designs_;
  std::map<std::string_view, std::size_t> siblings_;
  std::vector<Hint> found_;
};

Pick pick_of(const Hint& hint) {
  std::string sign = is_page_of_part(hint.path) ? "prose about the code beside it" : "prose";
  if (hint.reasons > 0) {
    sign += " that gives " + counted(hint.reasons, "reason", "reasons");
  }
  return {std::string(hint.path), {document_reason("design_document", sign, hint.view)}};
}

}  // namespace

std::vector<Pick> hinting_documents(const std::vector<std::string>& documents,
                                    const DocumentEvidence& evidence,
                                    const std::vector<Pick>& designs,
                                    const std::function<std::string(std::string_view)>& read) {
  if (designs.size() >= kFewDesigns) return {};
  const std::size_t room = std::min(kMostHints, kFewDesigns - designs.size());
  const double least = designs.empty() ? kLeast : kLeastBesideDesigns;
  std::vector<Pick> picks;
  for (const Hint& hint : Hints(documents, evidence, designs).ranked(read)) {
    if (picks.size() == room || hint.points < least) break;
    picks.push_back(pick_of(hint));
  }
  return picks;
}

}  // namespace kestrix
