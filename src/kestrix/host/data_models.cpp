#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "kestrix/host/data_models/data_evidence.h"
#include "kestrix/host/data_models/data_ranking.h"
#include "kestrix/host/data_models/data_signals.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"
#include "kestrix/workers/wiki/page_sources/recipes.h"

namespace kestrix {
namespace {

// Texts for which the detector's recipe answers with all that decided, not the paths alone.
struct RankedTexts : PathTexts {};

DataRanking data_model_files(const RankedTexts& texts) { return rank_data_models(texts); }

// The generator as the recipe sees it, but for the type of the texts.
struct RankingHost {
  using Texts = RankedTexts;

  const WikiGenerator& generator;

  std::vector<std::string> _planner_paths() const { return generator._planner_paths(); }
  const RepoRoot& repo_root() const { return generator.repo_root(); }
};

struct SignalName {
  std::string_view kind;
  std::string_view one;
  std::string_view many;
  std::uint32_t DataSignals::*count;
};

// In the order of what they weigh.
constexpr auto kSignals = std::to_array<SignalName>({
    {"tables", "table", "tables", &DataSignals::tables},
    {"entities", "class mapped to storage", "classes mapped to storage", &DataSignals::entities},
    {"schemas", "schema definition", "schema definitions", &DataSignals::schemas},
    {"records", "data class", "data classes", &DataSignals::records},
    {"alterations", "change of a table", "changes of tables", &DataSignals::alterations},
});

// A page that is full already is lengthened only by what is as central as what is on it.
constexpr double kLeastFurther = 3.0;
constexpr double kLeastShareOfFurther = 0.5;
// One that is short, and of a repository that stores nothing, is filled up to so many files by what
// is less so.
constexpr std::size_t kFewFiles = 8;
constexpr double kLeastOfFew = 1.5;
constexpr double kLeastShareOfFew = 0.2;

std::vector<Reason> reasons_of(const DataSignals& signals) {
  std::vector<Reason> reasons;
  for (const SignalName& signal : kSignals) {
    const std::uint32_t count = signals.*signal.count;
    add_counted(reasons, {std::string(signal.kind),
                          fmt::format("defines {}", counted(count, signal.one, signal.many)),
                          count,
                          {}});
  }
  return reasons;
}

}  // namespace

PageAnswer data_models_answer(const WikiGenerator& generator) {
  const CodeEvidence& code = generator.code_evidence();
  const DataEvidence evidence(code);
  const DataPoints points = evidence.points();
  const DataPointsScope scope(points);
  const DataRanking ranking = recipes::_data_model_files(RankingHost{generator});
  PageAnswer answer;
  bool stores = false;
  for (DataFile& file : ranking.best()) {
    stores |= file.signals.tables + file.signals.entities > 0 || file.signals.schema_file;
    answer.files.push_back({std::move(file.path), {}});
    if (file.points == 0) answer.files.back().reasons = reasons_of(file.signals);
  }
  add_reasons(evidence.sheet(), code, answer.files);
  answer.total = ranking.found();
  if (!points.empty()) {
    const std::size_t room = room_for_further(answer.files.size());
    answer.further =
        evidence.sheet().further(answer.files, room, kLeastFurther, kLeastShareOfFurther);
    if (!stores && answer.files.size() + answer.further.size() < kFewFiles) {
      answer.further = evidence.sheet().further(answer.files, kFewFiles - answer.files.size(),
                                                kLeastOfFew, kLeastShareOfFew);
    }
  }
  finish(answer,
         "no type that others name as data, no table, no class mapped to storage, no schema");
  return answer;
}

std::string data_models_why_not(const WikiGenerator& generator, std::string_view path) {
  if (!may_define_data(path)) return "in no language that defines data";
  const Text text =
      _read_text({&generator.repo_root(), std::string(path)}, {.max_chars = DETECTOR_READ_CHARS});
  const DataSignals signals = data_signals(path, text);
  if (defines_data(signals)) {
    return fmt::format("{}, and the page's files define more or lie nearer to the product",
                       reasons_of(signals).front().text);
  }
  return "defines no table, no class mapped to storage, no schema, no two data classes";
}

}  // namespace kestrix
