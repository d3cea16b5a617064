#include "kestrix/host/decisions/document_series.h"

#include <algorithm>
#include <utility>

#include "kestrix/host/decisions/design_names.h"
#include "kestrix/host/decisions/document_place.h"

namespace kestrix {

AllSeries::AllSeries(const std::vector<std::string>& documents, const DocumentEvidence* evidence) {
  for (const auto& path : documents) {
    const Naming naming = naming_of(path);
    const auto entry = entry_name(naming.name);
    if (!entry) continue;
    Series& series = series_[naming.folder];
    ++series.numbered;
    if (entry->padded()) ++series.padded;
    const auto* view = evidence == nullptr ? nullptr : evidence->of(path);
    if (view != nullptr) count_headings(naming.folder, view->facts.headings);
  }
  for (auto& [folder, series] : series_) series.one_skeleton = has_skeleton(folder, series);
}

Series AllSeries::of(std::string_view folder) const {
  const auto found = series_.find(folder);
  return found == series_.end() ? Series{} : found->second;
}

void AllSeries::count_headings(std::string_view folder, std::vector<std::uint32_t> headings) {
  std::ranges::sort(headings);
  headings.erase(std::unique(headings.begin(), headings.end()), headings.end());
  for (const auto heading : headings) ++headings_[folder][heading];
}

// Siblings that are written after one form share most of its headings.
bool AllSeries::has_skeleton(std::string_view folder, const Series& series) const {
  const auto found = headings_.find(folder);
  if (found == headings_.end() || series.numbered < kSeriesLength) return false;
  const auto shared = std::ranges::count_if(found->second, [&](const auto& heading) {
    return heading.second * 3 >= series.numbered * 2;
  });
  return shared >= 2 && !any_folder(folder, reports_news);
}

}  // namespace kestrix
