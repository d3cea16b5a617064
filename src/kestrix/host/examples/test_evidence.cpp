#include "kestrix/host/examples/test_evidence.h"

#include <algorithm>
#include <map>
#include <set>

#include "kestrix/host/examples/test_scripts.h"
#include "kestrix/host/page_answer.h"
#include "kestrix/languages/frameworks.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/wildmatch.h"
#include "kestrix/workers/wiki/page_sources/rules.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::FileId;
using index::IndexedReference;

// What fewer tests use is their own. Among few tests that is one; from sixty on it is two.
constexpr std::size_t kTestsForOneUserMore = 20;
constexpr std::size_t kMostLeastUsers = 3;
// Where something serves nearly all tests, what serves a few of one kind is theirs.
constexpr double kShareOfMostUsed = 0.04;
constexpr std::size_t kEnoughNamed = 4;
// A file of the product that one test alone names is the unit that it tests, not what it goes
// through.
constexpr std::size_t kLeastTestsOfInterface = 2;
// Many tests of one thing show no more than a few do.
constexpr std::uint32_t kMostOfOneThing = 3;
// Where one file serves so many of the tests, those without it are written another way.
constexpr double kMostTests = 0.6;

constexpr std::size_t kLeastAskers = 4;
constexpr std::size_t kLeastScripts = 8;
// Scripts are read when they are asked for.
constexpr std::size_t kMostScripts = 1024;
constexpr std::size_t kMostCharsOfScript = 200000;

void make_distinct(std::vector<FileId>& files) {
  std::ranges::sort(files);
  files.erase(std::unique(files.begin(), files.end()), files.end());
}

void make_distinct(std::vector<std::pair<FileId, FileId>>& pairs) {
  std::ranges::sort(pairs);
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
}

bool may_be_field(DeclarationKind kind) {
  return is_type(kind) || kind == DeclarationKind::kField || kind == DeclarationKind::kVariable;
}

}  // namespace

TestEvidence::TestEvidence(const WikiGenerator& generator, const CodeEvidence& code)
    : code_(code), index_(code.index()) {
  const std::size_t files = index_.files().size();
  choose_tests(generator);
  users_.resize(files);
  reached_.resize(files);
  reach_.resize(files);
  names_framework_.resize(files);
  measure_lines();
  read_scripts(generator);
  read_references();
  read_edges();
  hand_down();
  hand_on();
  give_by_framework();
  for (auto& users : users_) make_distinct(users);
  measure_reach();
}

void TestEvidence::choose_tests(const WikiGenerator& generator) {
  tests_.resize(index_.files().size());
  std::vector<bool> others(tests_.size());
  std::vector<FileId> scripts;
  for (const std::string& path : generator._test_files()) {
    const auto file = is_fixture_path(path) ? std::nullopt : index_.find(path);
    if (!file) continue;
    const bool own = is_own(*file);
    (own && is_code(*file) ? tests_ : others)[*file] = true;
    if (own && !is_code(*file) && is_script_path(path)) scripts.push_back(*file);
  }
  // A few serve other tests; where they are the most, they are the tests.
  test_count_ = static_cast<std::size_t>(std::ranges::count(tests_, true));
  if (scripts.size() >= std::max(kLeastScripts, test_count_)) {
    for (const FileId file : scripts) tests_[file] = true;
  }
  if (std::ranges::find(tests_, true) == tests_.end()) tests_ = std::move(others);
  test_count_ = static_cast<std::size_t>(std::ranges::count(tests_, true));
}

void TestEvidence::read_scripts(const WikiGenerator& generator) {
  std::vector<FileId> files;
  std::vector<std::string_view> paths;
  std::vector<std::string> texts;
  std::size_t scripts = 0;
  for (FileId file = 0; file < tests_.size(); ++file) {
    if (!tests_[file]) continue;
    // What is none has a name that scripts may take it in by.
    files.push_back(file);
    paths.push_back(code_.path(file));
    texts.emplace_back();
    if (!is_script(file) || ++scripts > kMostScripts) continue;
    const ReadTextOptions options{.max_chars = kMostCharsOfScript};
    texts.back() = _read_text({&generator.repo_root(), std::string(paths.back())}, options).str();
  }
  if (scripts == 0) return;
  const ScriptUses found = uses_among_scripts(paths, texts);
  for (const ScriptUse& use : found.uses) {
    users_[files[use.helper]].push_back(files[use.user]);
    script_mentions_[{files[use.user], files[use.helper]}] = use.count;
  }
  for (std::size_t at = 0; at < files.size(); ++at) {
    if (found.lines[at] > 0) lines_[files[at]] = found.lines[at];
  }
}

std::uint32_t TestEvidence::script_mentions(FileId script, FileId helper) const {
  const auto found = script_mentions_.find({script, helper});
  return found == script_mentions_.end() ? 0 : found->second;
}

bool TestEvidence::is_script(FileId file) const {
  return tests_[file] && !is_code(file) && is_script_path(code_.path(file));
}

void TestEvidence::measure_lines() {
  std::vector<std::uint32_t> known;
  lines_.resize(tests_.size());
  for (FileId file = 0; file < tests_.size(); ++file) {
    if (!tests_[file]) continue;
    for (const auto& row : index_.declarations(file)) {
      lines_[file] = std::max(lines_[file], row.last_line);
    }
    for (const auto& to : index_.references_from(file)) {
      lines_[file] = std::max(lines_[file], to.line);
    }
    if (lines_[file] > 0) known.push_back(lines_[file]);
  }
  if (known.empty()) return;
  const auto middle = known.begin() + std::ssize(known) / 2;
  std::ranges::nth_element(known, middle);
  middle_lines_ = *middle;
}

void TestEvidence::read_references() {
  for (const IndexedReference& to : index_.references()) {
    if (to.target == IndexedReference::kOutside) {
      const auto language = index_.files()[to.source].language;
      const bool test = known_as(language, index::Known::kTestBase, to.name) != nullptr;
      if (test) names_framework_[to.source] = true;
      continue;
    }
    if (!tests_[to.source] || to.source == to.target) continue;
    users_[to.target].push_back(to.source);
    if (to.role == index::Role::kLists) handed_on_.emplace_back(to.source, to.target);
    if (to.within == 0) continue;
    const DeclarationKind within = index_.declarations(to.source)[to.within - 1].kind;
    const bool field = to.role == index::Role::kType && may_be_field(within);
    const bool made = to.role == index::Role::kConstructs;
    if (field || made) held_.emplace_back(to.source, to.target);
    if (kSubtyping.has(to.role)) extends_.emplace_back(to.source, to.target);
  }
}

// What declares nothing only hands on, or is data; but of some languages no declarations are read.
void TestEvidence::read_edges() {
  std::set<std::string_view> declaring{""};
  for (FileId file = 0; file < tests_.size(); ++file) {
    if (!index_.declarations(file).empty()) declaring.insert(index_.files()[file].language);
  }
  for (const auto& edge : index_.edges()) {
    if (!tests_[edge.source]) continue;
    asked_for_.emplace_back(edge.target, edge.source);
    const bool declares = !index_.declarations(edge.target).empty();
    if (declares || !declaring.contains(index_.files()[edge.target].language)) {
      users_[edge.target].push_back(edge.source);
    }
  }
}

// What a base class of tests holds, each test that extends it has.
void TestEvidence::hand_down() {
  make_distinct(held_);
  make_distinct(extends_);
  for (const auto& [test, base] : extends_) {
    if (!tests_[base]) continue;
    const auto first = std::ranges::lower_bound(held_, base, {}, &Pair::first);
    for (auto at = first; at != held_.end() && at->first == base; ++at) {
      if (at->second != test && !code_.is_product(at->second)) users_[at->second].push_back(test);
    }
  }
}

std::size_t TestEvidence::least_users(std::size_t most) const {
  const auto share = static_cast<std::size_t>(kShareOfMostUsed * static_cast<double>(most));
  return std::max(std::min(1 + test_count_ / kTestsForOneUserMore, kMostLeastUsers), share);
}

// What nearly all tests around ask for hands on what it registers: modules that are mixed into each
// test. Which of them a test needs can't be seen; what tests name themselves tells more.
void TestEvidence::hand_on() {
  make_distinct(handed_on_);
  make_distinct(asked_for_);
  for (auto& users : users_) make_distinct(users);
  std::size_t most = 0;
  for (const auto& users : users_) most = std::max(most, users.size());
  const std::size_t least = least_users(most);
  std::size_t named = 0;
  for (FileId file = 0; file < users_.size(); ++file) {
    if (tests_[file] && users_[file].size() >= least) ++named;
  }
  if (named >= kEnoughNamed) return;
  const auto tests_below = count_by_folder();
  for (const auto& [shared, file] : handed_on_) {
    const auto askers = std::ranges::equal_range(asked_for_, shared, {}, &Pair::first);
    const auto below = tests_below.find(index::folder_of(code_.path(shared)));
    const auto around = below == tests_below.end() ? test_count_ : below->second;
    const bool by_most =
        static_cast<double>(askers.size()) >= kMostTests * static_cast<double>(around);
    if (!by_most || askers.size() < kLeastAskers || shared == file) continue;
    if (code_.is_product(file)) continue;
    for (const auto& [target, test] : askers) users_[file].push_back(test);
  }
}

// The tests below each folder that has any.
std::map<std::string_view, std::size_t> TestEvidence::count_by_folder() const {
  std::map<std::string_view, std::size_t> counts;
  for (FileId file = 0; file < tests_.size(); ++file) {
    if (!tests_[file]) continue;
    index::for_each_folder_up(index::folder_of(code_.path(file)),
                              [&](std::string_view folder) { ++counts[folder]; });
  }
  return counts;
}

void TestEvidence::give_by_framework() {
  for (FileId file = 0; file < tests_.size(); ++file) {
    const auto& indexed = index_.files()[file];
    const auto names = index::framework_names(indexed.language);
    const bool given = std::ranges::any_of(names, [&](const index::FrameworkName& row) {
      return row.known == index::Known::kTestPath &&
             index::Wildmatch(row.name).matches(indexed.path);
    });
    if (!given) continue;
    const auto around = index::folder_of(index::folder_of(indexed.path));
    for (FileId test = 0; test < tests_.size(); ++test) {
      const bool below = tests_[test] && index::is_below(code_.path(test), around);
      if (below && test != file) users_[file].push_back(test);
    }
  }
}

bool TestEvidence::is_code(FileId file) const { return !index_.files()[file].language.empty(); }

bool TestEvidence::is_own(FileId file) const {
  const auto& indexed = index_.files()[file];
  return !indexed.generated && !indexed.roles.has(Role::kVendored);
}

bool TestEvidence::is_one_tests_own(FileId file) const {
  return test_count_ > kMostPageFiles && users_[file].size() < kLeastTestsOfInterface;
}

void TestEvidence::measure_reach() {
  const IndexedReference* last = nullptr;
  std::uint32_t times = 0;
  for (const IndexedReference& to : index_.references()) {
    if (to.target == IndexedReference::kOutside || !tests_[to.source]) continue;
    if (!code_.is_product(to.target) || is_one_tests_own(to.target)) continue;
    const bool same = last != nullptr && last->source == to.source && last->target == to.target &&
                      last->declaration == to.declaration;
    times = same ? times + 1 : 1;
    last = &to;
    if (times > kMostOfOneThing) continue;
    ++reach_[to.source];
    auto& reached = reached_[to.source];
    if (reached.empty() || reached.back() != to.target) reached.push_back(to.target);
  }
  // Imports count where no reference tells more.
  std::vector<Pair> more;
  for (const auto& edge : index_.edges()) {
    if (!tests_[edge.source] || !code_.is_product(edge.target)) continue;
    if (is_one_tests_own(edge.target)) continue;
    if (std::ranges::binary_search(reached_[edge.source], edge.target)) continue;
    more.emplace_back(edge.source, edge.target);
  }
  for (const auto& [test, file] : more) {
    ++reach_[test];
    reached_[test].push_back(file);
  }
}

}  // namespace kestrix
