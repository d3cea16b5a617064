#include <fmt/format.h>

#include <algorithm>
#include <span>

#include "kestrix/host/examples/example_host.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"
#include "kestrix/workers/wiki/page_sources/recipes.h"

namespace kestrix {
namespace {

std::vector<Place> places_of(const CodeEvidence& code, std::span<const index::FileId> files) {
  std::vector<Place> places;
  for (const index::FileId file : files.first(std::min(files.size(), kMostPlaces))) {
    places.push_back({std::string(code.path(file)), 0, {}});
  }
  return places;
}

// Of a file that tests share, how many do; of a test, what it shows.
std::vector<Reason> reasons_of(const TestEvidence& evidence, const ExampleChoice& choice,
                               const CodeEvidence& code, index::FileId file) {
  const auto users = evidence.users(file);
  const auto reached = evidence.reached(file);
  const auto mentions = choice.shared_mentions(file);
  std::vector<Reason> reasons;
  add_counted(reasons, {"used_by_tests", "used by " + counted(users.size(), "test", "tests"),
                        users.size(), places_of(code, users)});
  add_counted(reasons, {"reaches_production",
                        fmt::format("reaches {}, {}",
                                    counted(reached.size(), "production file", "production files"),
                                    counted(evidence.reach(file), "time", "times")),
                        evidence.reach(file), places_of(code, reached)});
  if (!choice.is_shared(file) && evidence.is_test(file)) {
    if (!users.empty()) std::ranges::rotate(reasons, reasons.begin() + 1);
    add_counted(reasons, {"uses_helpers",
                          "names what tests share " + counted(mentions, "time", "times"),
                          mentions,
                          {}});
    const auto lines = evidence.lines(file);
    add_counted(reasons, {"test_size", counted(lines, "line", "lines"), lines, {}});
  }
  if (reasons.empty()) reasons.push_back({"test_path", "a test by its path", 0, {}});
  return reasons;
}

Reason sample_reason(const CodeEvidence& code, const Sample& sample) {
  const auto reached = counted(sample.reached.size(), "production file", "production files");
  return {"sample", "a sample that reaches " + reached, sample.reached.size(),
          places_of(code, sample.reached)};
}

}  // namespace

PageAnswer examples_answer(const WikiGenerator& generator) {
  const CodeEvidence& code = generator.code_evidence();
  const TestEvidence evidence(generator, code);
  const ExampleChoice choice(evidence, code);
  PageAnswer answer;
  for (std::string& path : recipes::_example_files(ExampleHost{generator, choice})) {
    const auto file = code.index().find(path);
    answer.files.push_back({std::move(path), {}});
    if (file) answer.files.back().reasons = reasons_of(evidence, choice, code, *file);
  }
  answer.total = evidence.test_count();
  const std::size_t room = room_for_further(answer.files.size());
  for (const index::FileId file : choice.support()) {
    if (answer.further.size() == room) break;
    answer.further.push_back(
        {std::string(code.path(file)), reasons_of(evidence, choice, code, file)});
  }
  for (const Sample& sample : choice.samples()) {
    if (answer.further.size() == room) break;
    answer.further.push_back({std::string(code.path(sample.file)), {sample_reason(code, sample)}});
  }
  finish(answer, "no tests");
  return answer;
}

std::string examples_why_not(const WikiGenerator& generator, std::string_view path) {
  if (is_fixture_path(path)) return "data that tests read";
  const CodeEvidence& code = generator.code_evidence();
  const TestEvidence evidence(generator, code);
  const auto file = code.index().find(path);
  if (!file || !evidence.is_test(*file)) return "no test";
  const ExampleChoice choice(evidence, code);
  return fmt::format("{}; the page's files are used or reach more",
                     reasons_of(evidence, choice, code, *file).front().text);
}

}  // namespace kestrix
