#include "kestrix/workers/wiki_cluster.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

#include "kestrix/host/data_models/data_points.h"
#include "kestrix/host/data_models/data_ranking.h"
#include "kestrix/host/data_models/data_signals.h"
#include "kestrix/host/data_models/file_origin.h"
#include "kestrix/host/decisions/design_documents.h"
#include "kestrix/host/extending/extension_signals.h"

namespace kestrix {
namespace {

using Ranked = std::vector<std::pair<std::int64_t, std::string>>;

// Highest count first, then by path.
std::vector<std::string> by_count(Ranked counts) {
  std::ranges::sort(counts, {}, [](const auto& entry) {
    return std::tuple(-entry.first, std::string_view(entry.second));
  });
  std::vector<std::string> paths;
  paths.reserve(counts.size());
  for (auto& entry : counts) paths.push_back(std::move(entry.second));
  return paths;
}

std::vector<std::string> in_both(const PathCounts& a, const PathCounts& b) {
  Ranked counts;
  for (const auto& [path, count] : a) {
    if (b.contains(path)) counts.emplace_back(count + b[path], path);
  }
  return by_count(std::move(counts));
}

std::vector<std::string> only_in(const PathCounts& a, const PathCounts& b) {
  Ranked counts;
  for (const auto& [path, count] : a) {
    if (!b.contains(path)) counts.emplace_back(count, path);
  }
  return by_count(std::move(counts));
}

using Candidates = std::array<std::vector<const PathTexts::value_type*>, kDataOrigins.size()>;

// The files that are worth reading, by what their path says of their origin.
Candidates candidates(const PathTexts& texts) {
  Candidates by_origin;
  for (const auto& entry : texts) {
    if (!may_define_data(entry.first)) continue;
    by_origin[static_cast<std::size_t>(origin_of_path(entry.first))].push_back(&entry);
  }
  return by_origin;
}

// Where nothing of the product itself is stored, the tables that its migrations make are the only
// ones; the first few make most of them.
constexpr std::size_t kMostMigrations = 3;

void rank_by_points(const PathTexts& texts, const DataPoints& points, DataRanking& ranking) {
  bool stores = false;
  DataRanking migrations(kMostMigrations);
  for (const auto& [path, text] : texts) {
    if (const auto found = points.find(path); found != points.end()) {
      const DataSignals signals = data_signals(path, text);
      stores = stores || signals.tables + signals.entities > 0;
      ranking.add(path, signals, found->second);
    } else if (may_define_data(path) && origin_of_path(path) == DataOrigin::kMigration) {
      const DataSignals signals = data_signals(path, text);
      if (signals.tables > 0) migrations.add(path, signals);
    }
  }
  if (stores || ranking.found() == 0) return;
  for (const DataFile& file : migrations.best()) ranking.add(file.path, file.signals);
}

}  // namespace

AspectFileLimit::operator std::ptrdiff_t() const { return 12; }

DataRanking rank_data_models(const PathTexts& texts) {
  DataRanking ranking(static_cast<std::size_t>(std::ptrdiff_t{MAX_ASPECT_FILES}));
  if (const DataPoints* points = DataPointsScope::current(); points != nullptr) {
    rank_by_points(texts, *points, ranking);
    if (ranking.found() > 0) return ranking;
  }
  const auto by_origin = candidates(texts);
  for (const auto origin : kDataOrigins) {
    for (const auto* entry : by_origin[static_cast<std::size_t>(origin)]) {
      ranking.add(entry->first, data_signals(entry->first, entry->second));
    }
    if (ranking.is_settled(origin)) break;
  }
  return ranking;
}

std::vector<std::string> data_model_files(const PathTexts& texts) {
  std::vector<std::string> paths;
  for (auto& entry : rank_data_models(texts).best()) paths.push_back(std::move(entry.path));
  return paths;
}

std::vector<std::string> decision_docs(const std::vector<std::string>& documents,
                                       std::size_t max_files) {
  auto ranked = rank_design_documents(documents, DocumentEvidenceScope::current());
  if (ranked.size() > max_files) ranked.resize(max_files);
  std::vector<std::string> paths;
  paths.reserve(ranked.size());
  for (auto& pick : ranked) paths.push_back(std::move(pick.path));
  return paths;
}

std::vector<std::string> extension_files(const PathCounts& contracts, const PathCounts& registries,
                                         std::size_t limit) {
  auto ranked = in_both(contracts, registries);
  const auto implemented = only_in(contracts, registries);
  const auto registered = only_in(registries, contracts);
  for (std::size_t i = 0; i < std::max(implemented.size(), registered.size()); ++i) {
    if (i < implemented.size()) ranked.push_back(implemented[i]);
    if (i < registered.size()) ranked.push_back(registered[i]);
  }
  if (const auto* scores = ExtensionRankingScope::current()) {
    std::ranges::stable_sort(ranked, std::ranges::greater(), [scores](const std::string& path) {
      const auto found = scores->find(path);
      return found == scores->end() ? 0.0 : found->second;
    });
  }
  if (ranked.size() > limit) ranked.resize(limit);
  return ranked;
}

}  // namespace kestrix
