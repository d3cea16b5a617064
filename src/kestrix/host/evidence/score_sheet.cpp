#include "kestrix/host/evidence/score_sheet.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

#include "kestrix/host/index_evidence.h"

namespace kestrix {

void ScoreSheet::add(index::FileId file, const Signal& signal, std::uint64_t count,
                     std::vector<Place> at, std::string detail) {
  if (count == 0) return;
  std::ranges::sort(
      at, {}, [](const Place& place) { return std::tie(place.path, place.line, place.name); });
  if (at.size() > kMostPlaces) at.resize(kMostPlaces);
  std::string text = fmt::format(fmt::runtime(count == 1 ? signal.one : signal.many), count);
  if (!detail.empty()) text.append(": ").append(detail);
  const double points = signal.weight * std::log2(1.0 + static_cast<double>(count));
  entries_[file].items.push_back(
      {points, {std::string(signal.kind), std::move(text), count, std::move(at)}});
}

double ScoreSheet::score(index::FileId file) const {
  const auto found = entries_.find(file);
  if (found == entries_.end()) return 0;
  double sum = 0;
  for (const Item& item : found->second.items) sum += item.points;
  return sum * found->second.factor;
}

std::vector<Reason> ScoreSheet::reasons(index::FileId file) const {
  const auto found = entries_.find(file);
  if (found == entries_.end()) return {};
  std::vector<Item> items = found->second.items;
  std::ranges::stable_sort(items, std::ranges::greater(), &Item::points);
  std::vector<Reason> reasons;
  for (Item& item : items) reasons.push_back(std::move(item.reason));
  return reasons;
}

std::vector<ScoreSheet::Scored> ScoreSheet::ranked() const {
  std::vector<Scored> all;
  for (const auto& [file, entry] : entries_) {
    if (const double points = score(file); points > 0) all.push_back({points, file});
  }
  // A file's number is its place among the paths.
  std::ranges::sort(all, {}, [](const Scored& each) { return std::pair(-each.points, each.file); });
  return all;
}

std::vector<Pick> ScoreSheet::further(const std::vector<Pick>& files, std::size_t room,
                                      double least, double share) const {
  const std::vector<Scored> all = ranked();
  std::vector<Pick> picks;
  const double best = all.empty() ? 0 : all.front().points;
  for (const auto& [points, file] : all) {
    if (picks.size() == room || points < std::max(least, share * best)) break;
    const std::string_view path = evidence_.path(file);
    if (std::ranges::find(files, path, &Pick::path) != files.end()) continue;
    picks.push_back({std::string(path), reasons(file)});
  }
  return picks;
}

void add_reasons(const ScoreSheet& sheet, const CodeEvidence& evidence, std::vector<Pick>& files) {
  for (Pick& pick : files) {
    const auto file = evidence.index().find(pick.path);
    if (!file) continue;
    auto reasons = sheet.reasons(*file);
    pick.reasons.insert(pick.reasons.end(), std::make_move_iterator(reasons.begin()),
                        std::make_move_iterator(reasons.end()));
  }
}

}  // namespace kestrix
