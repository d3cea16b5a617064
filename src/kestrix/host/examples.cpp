#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "kestrix/host/index_evidence.h"
#include "kestrix/host/pages.h"

namespace kestrix {
namespace {

struct TestUse {
  std::vector<Place> users;    // other tests that import the file
  std::vector<Place> reached;  // production files that it imports
};

using TestUses = std::map<std::string_view, TestUse>;

// By test, without test data: what the rule counts, with the files.
TestUses test_uses(const WikiGenerator& generator, const std::vector<std::string>& tests) {
  TestUses uses;
  for (const std::string& path : tests) {
    if (!is_fixture_path(path)) uses.try_emplace(path);
  }
  PathSet paths(tests.begin(), tests.end());
  insert_all(paths, generator._planner_paths());
  for (const FileEdge& edge : generator._file_edges(paths)) {
    const auto source = uses.find(edge.source);
    if (source == uses.end()) continue;
    if (const auto target = uses.find(edge.target); target != uses.end()) {
      target->second.users.push_back({std::string(edge.source), 0, {}});
    } else if (!is_test_path(edge.target)) {
      source->second.reached.push_back({std::string(edge.target), 0, {}});
    }
  }
  return uses;
}

Reason counted_files(std::string kind, std::string text, std::vector<Place> files) {
  Reason reason{std::move(kind), std::move(text), files.size(), std::move(files)};
  if (reason.at.size() > kMostPlaces) reason.at.resize(kMostPlaces);
  return reason;
}

std::vector<Reason> reasons_of(const TestUse& use) {
  std::vector<Reason> reasons;
  add_counted(reasons, counted_files("used_by_tests",
                                     "imported by " + counted(use.users.size(), "test", "tests"),
                                     use.users));
  add_counted(reasons, counted_files("reaches_production",
                                     "reaches " + counted(use.reached.size(), "production file",
                                                          "production files"),
                                     use.reached));
  if (reasons.empty()) reasons.push_back({"test_path", "a test by its path", 0, {}});
  return reasons;
}

}  // namespace

PageAnswer examples_answer(const WikiGenerator& generator) {
  const auto tests = generator._test_files();
  const auto uses = test_uses(generator, tests);
  PageAnswer answer;
  for (std::string& path : generator._example_files()) {
    const auto found = uses.find(path);
    Pick pick{std::move(path), {}};
    if (found != uses.end()) pick.reasons = reasons_of(found->second);
    answer.files.push_back(std::move(pick));
  }
  answer.total = uses.size();
  finish(answer, "no tests");
  return answer;
}

std::string examples_why_not(const WikiGenerator& generator, std::string_view path) {
  if (is_fixture_path(path)) return "data that tests read";
  const auto tests = generator._test_files();
  const auto uses = test_uses(generator, tests);
  const auto found = uses.find(path);
  if (found == uses.end()) return "no test";
  return fmt::format("{}; the page's files are used or reach more",
                     reasons_of(found->second).front().text);
}

}  // namespace kestrix
