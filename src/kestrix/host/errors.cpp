#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"

namespace kestrix {
namespace {

// Per production file, the exception classes that the detector counts.
std::map<std::string, std::vector<Place>, std::less<>> exception_types(
    const WikiGenerator& generator, const IndexEvidence& evidence) {
  const auto found = generator.repository().search_symbols(
      EXCEPTION_PATTERNS, {.kind = SymbolKind::kClass, .limit = SYMBOL_SCAN_LIMIT});
  std::map<std::string, std::vector<Place>, std::less<>> types;
  for (const Symbol& symbol : found.symbols) {
    Place place = evidence.place_of(symbol.id);
    if (generator.is_planned(place.path)) types[place.path].push_back(std::move(place));
  }
  for (auto& [path, places] : types) std::ranges::sort(places, {}, &Place::line);
  return types;
}

std::string defines(std::size_t count) {
  return fmt::format("defines {}", counted(count, "exception type", "exception types"));
}

}  // namespace

PageAnswer errors_answer(const WikiGenerator& generator) {
  const IndexEvidence evidence(generator.indexed());
  const auto types = exception_types(generator, evidence);
  PageAnswer answer;
  answer.has_material = generator._has_exceptions();
  for (std::string& path : generator._exception_files()) {
    const auto found = types.find(path);
    Pick pick{std::move(path), {}};
    if (found != types.end()) {
      pick.reasons.push_back(IndexEvidence::definitions(
          "exception_types", defines(found->second.size()), found->second));
    }
    add_counted(pick.reasons, evidence.used_by(pick.path));
    answer.files.push_back(std::move(pick));
  }
  answer.total = types.size();
  finish(answer, *answer.has_material ? "no exception class in a production file, only in others"
                                      : "no class named …Error or …Exception");
  return answer;
}

std::string errors_why_not(const WikiGenerator& generator, std::string_view path) {
  const auto types = exception_types(generator, IndexEvidence(generator.indexed()));
  const auto found = types.find(path);
  if (found == types.end()) return "defines no class named …Error or …Exception";
  return defines(found->second.size()) + ", and the page's files as many or more";
}

}  // namespace kestrix
