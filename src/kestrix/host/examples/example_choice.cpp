#include "kestrix/host/examples/example_choice.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "kestrix/host/examples/test_support.h"
#include "kestrix/host/page_answer.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::FileId;
using index::IndexedReference;

// A page shows what tests are written with and what they look like: no more than two thirds of it
// the former, and not one folder's alone.
constexpr std::size_t kMostShared = 2 * kMostPageFiles / 3;
constexpr std::size_t kMostSharedOfFolder = 5;
constexpr std::size_t kMostSamples = 2;
// Where one file serves so many of the tests, those without it are written another way.
constexpr double kMostTests = 0.6;
// What a test goes through, and how long it is, tells more than how often it names what tests
// share. A script runs the product as a whole: there is no telling what it goes through but by its
// length.
constexpr double kWeightOfReach = 1;
constexpr double kWeightOfMentions = 0.5;
constexpr double kWeightOfShared = 0.25;  // for each file of it
constexpr double kWeightOfLines = 1;
constexpr double kWeightOfScriptLines = 1.75;

double logarithm(std::size_t count) { return std::log2(1.0 + static_cast<double>(count)); }

}  // namespace

ExampleChoice::ExampleChoice(const TestEvidence& tests, const CodeEvidence& code)
    : tests_(tests), code_(code) {
  shared_.resize(code.index().files().size());
  mentions_.resize(shared_.size());
  find_shared();
  samples_ = samples_of(code);
  if (samples_.size() > kMostSamples) samples_.resize(kMostSamples);
  count_mentions();
  rank_tests();
}

void ExampleChoice::find_shared() {
  std::vector<FileId> candidates = test_support(tests_, code_);
  for (FileId file = 0; file < shared_.size(); ++file) {
    if (tests_.is_test(file)) candidates.push_back(file);
  }
  std::size_t most = 0;
  for (const FileId file : candidates) most = std::max(most, tests_.users(file).size());
  const std::size_t least = tests_.least_users(most);
  std::erase_if(candidates, [&](FileId file) { return tests_.users(file).size() < least; });
  std::ranges::sort(candidates, {}, [&](FileId file) {
    return std::pair(shared_.size() - tests_.users(file).size(), file);
  });
  std::map<std::string_view, std::size_t> of_folder;
  for (const FileId file : candidates) {
    if (helpers_.size() + support_.size() == kMostShared) break;
    if (++of_folder[index::folder_of(code_.path(file))] > kMostSharedOfFolder) continue;
    shared_[file] = true;
    (tests_.is_test(file) ? helpers_ : support_).push_back(file);
  }
}

void ExampleChoice::count_mentions() {
  for (const IndexedReference& to : code_.index().references()) {
    const bool counts = to.target != IndexedReference::kOutside && to.target != to.source &&
                        shared_[to.target] && tests_.is_test(to.source);
    if (counts) mentions_[to.source] += to.count;
  }
  for (const FileId helper : helpers_) {
    for (const FileId user : tests_.users(helper)) {
      mentions_[user] += tests_.script_mentions(user, helper);
    }
  }
}

double ExampleChoice::points(FileId test) const {
  const auto used =
      std::ranges::count_if(helpers_, [&](FileId helper) { return uses(test, helper); }) +
      std::ranges::count_if(support_, [&](FileId file) { return uses(test, file); });
  // A test that calls nothing but a global driver has no line that is known.
  const auto lines = tests_.lines(test) > 0 ? tests_.lines(test) : tests_.middle_lines();
  const auto of_lines = tests_.is_script(test) ? kWeightOfScriptLines : kWeightOfLines;
  return kWeightOfReach * logarithm(tests_.reach(test)) +
         kWeightOfMentions * logarithm(mentions_[test]) +
         kWeightOfShared * static_cast<double>(used) + of_lines * logarithm(lines);
}

bool ExampleChoice::uses(FileId test, FileId shared) const {
  return std::ranges::binary_search(tests_.users(shared), test);
}

// The tests that are written with what most of them are written with; all where nothing is that.
std::vector<bool> ExampleChoice::written_alike() const {
  std::vector<bool> alike(shared_.size());
  for (FileId file = 0; file < alike.size(); ++file) alike[file] = tests_.is_test(file);
  const std::vector<bool> all = alike;
  if (tests_.test_count() <= kMostPageFiles) return all;
  const auto most = kMostTests * static_cast<double>(tests_.test_count());
  for (FileId file = 0; file < alike.size(); ++file) {
    if (static_cast<double>(tests_.users(file).size()) < most) continue;
    std::vector<bool> users(alike.size());
    for (const FileId user : tests_.users(file)) users[user] = true;
    for (FileId test = 0; test < alike.size(); ++test) alike[test] = alike[test] && users[test];
  }
  return std::ranges::find(alike, true) == alike.end() ? all : alike;
}

void ExampleChoice::rank_tests() {
  const std::vector<bool> alike = written_alike();
  std::vector<std::pair<double, FileId>> tests;
  for (FileId test = 0; test < alike.size(); ++test) {
    if (alike[test] && !shared_[test]) tests.emplace_back(-points(test), test);
  }
  const std::size_t room = std::min(tests.size(), kMostPageFiles);
  std::ranges::partial_sort(tests, tests.begin() + static_cast<std::ptrdiff_t>(room));
  for (std::size_t at = 0; at < room; ++at) ranked_.push_back(tests[at].second);
}

bool ExampleChoice::is_narrowed() const { return outside() > kFurtherOfFullPage; }

std::vector<std::string> ExampleChoice::paths() const {
  std::vector<bool> chosen(shared_.size());
  for (FileId file = 0; file < chosen.size(); ++file) {
    chosen[file] = tests_.is_test(file) && !is_narrowed();
  }
  for (const FileId file : helpers_) chosen[file] = true;
  std::size_t room = kMostPageFiles - helpers_.size() - outside();
  for (const FileId test : ranked_) {
    if (room == 0) break;
    chosen[test] = true;
    --room;
  }
  std::vector<std::string> paths;
  for (FileId file = 0; file < chosen.size(); ++file) {
    if (chosen[file]) paths.emplace_back(code_.path(file));
  }
  return paths;
}

std::vector<FileEdge> ExampleChoice::edges(const PathSet& paths) const {
  const auto is_asked = [&](FileId file) { return paths.contains(std::string(code_.path(file))); };
  std::vector<FileEdge> edges;
  for (const FileId helper : helpers_) {
    // A user that is not among the tests stands as the helper itself, for the rule to count it.
    for (const FileId user : tests_.users(helper)) {
      const FileId from = is_narrowed() ? helper : user;
      edges.push_back({code_.path(from), code_.path(helper), 1});
    }
  }
  std::optional<FileId> product;
  for (FileId file = 0; file < shared_.size() && !product; ++file) {
    if (code_.is_product(file)) product = file;
  }
  for (std::size_t place = 0; place < ranked_.size(); ++place) {
    const FileId test = ranked_[place];
    const auto reached = tests_.reached(test);
    if (!is_asked(test) || (reached.empty() && !product)) continue;
    for (std::size_t at = 0; at < ranked_.size() - place; ++at) {
      const FileId file = reached.empty() ? *product : reached[at % reached.size()];
      edges.push_back({code_.path(test), code_.path(file), 1});
    }
  }
  return edges;
}

}  // namespace kestrix
