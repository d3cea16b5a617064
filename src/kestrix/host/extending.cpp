#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "kestrix/host/extending/extension_signals.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"
#include "kestrix/workers/wiki/page_sources/recipes.h"

namespace kestrix {
namespace {

constexpr double kLeastScore = 1.0;
constexpr double kLeastShare = 0.12;

using Places = std::map<std::string, std::vector<Place>, std::less<>>;

// What the recipe counts, with the places.
struct ExtensionPlaces {
  Places contracts;
  Places registries;
};

class Collector {
 public:
  Collector(const WikiGenerator& generator, const IndexEvidence& evidence)
      : generator_(generator), evidence_(evidence) {}

  void add(Places& places, const Symbol& symbol) const {
    Place place = evidence_.place_of(symbol.id);
    if (generator_.is_planned(place.path)) places[place.path].push_back(std::move(place));
  }

 private:
  const WikiGenerator& generator_;
  const IndexEvidence& evidence_;
};

ExtensionPlaces extension_places(const WikiGenerator& generator, const IndexEvidence& evidence) {
  const Collector collector(generator, evidence);
  const auto domain = recipes::domain_roots<PageSourcesMixin>(generator);
  const auto found = recipes::look_up_extensions<PageSourcesMixin>(generator);
  ExtensionPlaces places;
  for (const Symbol& symbol : slice(found.symbols, found.classes)) {
    if (search(INTERFACE_SIGNATURE_RE, symbol.signature)) collector.add(places.contracts, symbol);
  }
  for (const Symbol& symbol : slice(found.symbols, found.contracts)) {
    const Place place = evidence.place_of(symbol.id);
    if (most_specific(domain, place.path)) collector.add(places.contracts, symbol);
  }
  for (const auto range : {found.constants, found.variables}) {
    for (const Symbol& symbol : slice(found.symbols, range)) {
      if (is_registry_name(symbol.name)) collector.add(places.registries, symbol);
    }
  }
  return places;
}

void add_definitions(std::vector<Reason>& reasons, const Places& places, std::string_view path,
                     std::string kind, std::string_view one, std::string_view many) {
  const auto found = places.find(path);
  if (found == places.end()) return;
  const std::size_t count = found->second.size();
  const std::string what = count == 1 ? std::string(one) : counted(count, one, many);
  reasons.push_back(IndexEvidence::definitions(std::move(kind), what, found->second));
}

// The picked registries of which `path` is the strongest dependent.
std::vector<Reason> wiring_reasons(const IndexEvidence& evidence,
                                   const index::RepositoryIndex& index,
                                   const std::vector<std::string>& picked, const Places& registries,
                                   std::string_view path) {
  std::vector<Reason> reasons;
  for (const std::string& registry : picked) {
    const auto places = registries.find(registry);
    if (places == registries.end()) continue;
    for (const auto& edge : evidence.edges_to(registry)) {
      if (index.files()[edge.source].path != path) continue;
      reasons.push_back({"wires_in", fmt::format("wires in {} (weight {})", registry, edge.weight),
                         1, places->second});
    }
  }
  return reasons;
}

Pick pick_of(const WikiGenerator& generator, const IndexEvidence& evidence,
             const ExtensionPlaces& places, const std::vector<std::string>& picked,
             const std::string& path) {
  Pick pick{path, {}};
  add_definitions(pick.reasons, places.registries, path, "registries", "registry", "registries");
  add_definitions(pick.reasons, places.contracts, path, "contracts", "contract", "contracts");
  if (pick.reasons.empty()) {
    pick.reasons = wiring_reasons(evidence, generator.indexed(), picked, places.registries, path);
  }
  add_counted(pick.reasons, evidence.used_by(path));
  return pick;
}

}  // namespace

PageAnswer extending_answer(const WikiGenerator& generator) {
  const IndexEvidence evidence(generator.indexed());
  const auto places = extension_places(generator, evidence);
  const auto picked = generator._extension_files();
  PageAnswer answer;
  for (const std::string& path : picked) {
    answer.files.push_back(pick_of(generator, evidence, places, picked, path));
  }
  const auto found = std::ranges::count_if(places.registries, [&](const auto& entry) {
    return !places.contracts.contains(entry.first);
  });
  const auto wiring = std::ranges::count_if(picked, [&](const std::string& path) {
    return !places.contracts.contains(path) && !places.registries.contains(path);
  });
  answer.total = places.contracts.size() + static_cast<std::size_t>(found + wiring);
  const CodeEvidence& code = generator.code_evidence();
  const ScoreSheet& sheet = generator.extensions();
  add_reasons(sheet, code, answer.files);
  answer.further =
      sheet.further(answer.files, room_for_further(answer.files.size()), kLeastScore, kLeastShare);
  finish(answer, "no contract to implement, no registry to add to");
  return answer;
}

std::string extending_why_not(const WikiGenerator& generator, std::string_view path) {
  const IndexEvidence evidence(generator.indexed());
  const auto places = extension_places(generator, evidence);
  const Pick pick = pick_of(generator, evidence, places, {}, std::string(path));
  if (places.contracts.contains(path) || places.registries.contains(path)) {
    return pick.reasons.front().text + "; the page's files come before it";
  }
  return "declares no contract and no registry, and is not what a registry of the page is mostly "
         "used by";
}

}  // namespace kestrix
