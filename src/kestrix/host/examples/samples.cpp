#include "kestrix/host/examples/samples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>

#include "kestrix/host/examples/program.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::FileId;
using index::IndexedReference;

constexpr std::size_t kLeastReached = 2;
// So many declarations of its own halve what a sample is worth.
constexpr double kDeclarationsOfSample = 8;
// They stand among the samples, and measure.
constexpr auto kMeasureFolders =
    std::to_array<std::string_view>({"bench", "benchmark", "benchmarks"});

bool measures(std::string_view path) {
  bool found = false;
  index::for_each_folder_up(index::folder_of(path), [&](std::string_view folder) {
    const auto name = index::base_name(folder);
    found = found || std::ranges::any_of(kMeasureFolders, [name](std::string_view known) {
              return ascii::equals(name, known);
            });
  });
  return found;
}

bool is_sample(const CodeEvidence& code, FileId file) {
  const auto& row = code.index().files()[file];
  Roles roles = code.roles(file);
  if (!roles.has(Role::kSample) || row.generated || row.language.empty()) return false;
  roles.remove(Role::kSample);
  roles.remove(Role::kDocumentation);
  return roles.empty() && !measures(row.path);
}

}  // namespace

std::vector<Sample> samples_of(const CodeEvidence& code) {
  const auto& index = code.index();
  std::vector<bool> samples(index.files().size());
  for (FileId file = 0; file < samples.size(); ++file) samples[file] = is_sample(code, file);
  if (std::ranges::find(samples, true) == samples.end()) return {};
  if (is_program(code) || is_application(code)) return {};
  std::vector<std::vector<FileId>> reached(samples.size());
  std::vector<std::size_t> namers(samples.size());
  std::vector<FileId> last(samples.size(), IndexedReference::kOutside);
  for (const IndexedReference& to : index.references()) {
    if (to.target == IndexedReference::kOutside || to.target == to.source) continue;
    if (samples[to.target]) samples[to.target] = false;
    if (last[to.target] == to.source || !code.is_product(to.target)) continue;
    last[to.target] = to.source;
    if (samples[to.source]) reached[to.source].push_back(to.target);
    if (samples[to.source] || code.is_test(to.source)) ++namers[to.target];
  }
  std::vector<std::pair<double, FileId>> ranked;
  for (FileId file = 0; file < samples.size(); ++file) {
    if (!samples[file] || reached[file].size() < kLeastReached) continue;
    double points = 0;
    for (const FileId target : reached[file]) {
      points += std::log2(1.0 + static_cast<double>(namers[target]));
    }
    const auto own = static_cast<double>(index.declarations(file).size());
    ranked.emplace_back(-points / (1 + own / kDeclarationsOfSample), file);
  }
  std::ranges::sort(ranked);
  std::vector<Sample> found;
  for (const auto& [points, file] : ranked) found.push_back({file, std::move(reached[file])});
  return found;
}

}  // namespace kestrix
