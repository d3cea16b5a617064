#include "kestrix/host/data_models/data_ranking.h"

#include <algorithm>
#include <tuple>

namespace kestrix {

bool defines_data(const DataSignals& signals) {
  const bool stored = signals.tables + signals.alterations + signals.entities > 0;
  const bool declared = signals.schema_file && signals.schemas > 0;
  return stored || declared || signals.schemas + signals.records >= 2;
}

std::uint64_t strength(const DataSignals& signals) {
  return 3 * (std::uint64_t{signals.tables} + signals.entities) +
         2 * std::uint64_t{signals.schemas} + signals.records + signals.alterations;
}

bool DataRanking::before(const Entry& a, const Entry& b) {
  const auto key = [](const Entry& entry) {
    return std::tuple(entry.origin, -entry.points, ~strength(entry.signals), ~entry.signals.columns,
                      std::string_view(entry.path));
  };
  return key(a) < key(b);
}

void DataRanking::add(std::string_view path, const DataSignals& signals) {
  if (defines_data(signals)) add(path, signals, 0);
}

void DataRanking::add(std::string_view path, const DataSignals& signals, double points) {
  ++found_;
  const DataOrigin origin = origin_of(path, signals.made_by_program);
  entries_.push_back({origin, points, signals, std::string(path)});
  if (entries_.size() < 2 * kept_ + 1) return;
  std::ranges::nth_element(entries_, entries_.begin() + static_cast<std::ptrdiff_t>(kept_), before);
  entries_.resize(kept_);
}

bool DataRanking::is_settled(DataOrigin origin) const {
  const auto as_near = [origin](const Entry& entry) { return entry.origin <= origin; };
  return static_cast<std::size_t>(std::ranges::count_if(entries_, as_near)) >= kept_;
}

std::vector<DataFile> DataRanking::best() const {
  auto ranked = entries_;
  std::ranges::sort(ranked, before);
  if (ranked.size() > kept_) ranked.resize(kept_);
  return ranked;
}

}  // namespace kestrix
