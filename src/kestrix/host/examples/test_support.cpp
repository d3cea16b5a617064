#include "kestrix/host/examples/test_support.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

#include "kestrix/host/examples/program.h"
#include "kestrix/roles/path_roles.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::FileId;
using index::IndexedReference;

// Outside of the tests a file must serve more of them to be no accident.
constexpr std::size_t kLeastUsers = 3;
// What no sign but its users speaks for: so many folders of tests have it.
constexpr std::size_t kLeastFoldersOfUsers = 4;
// Of code that stands among tests, this share is tests.
constexpr double kAmongTests = 0.75;
// What is declared for tests alone: so many of them name it, and this share of all.
constexpr std::size_t kLeastUsersAlone = 5;
constexpr double kLeastShareAlone = 0.04;
constexpr std::size_t kTestsForOneOfProduct = 20;
// Support may be wired into the product's start; what more folders use is the product's.
constexpr std::size_t kFewFolders = 2;

class Finder {
 public:
  Finder(const TestEvidence& tests, const CodeEvidence& code)
      : tests_(tests), code_(code), index_(code.index()) {
    namer_files_.resize(index_.files().size());
    count_namers();
    count_tests();
    alone_.resize(index_.files().size());
    // The tests of a library stand for those who use it: they alone name what it is there for.
    if (is_program(code)) count_alone();
  }

  std::vector<FileId> find() const {
    std::vector<FileId> files;
    for (FileId file = 0; file < index_.files().size(); ++file) {
      const bool serves_alone = alone_[file] && may_serve(file);
      if (serves_alone || (may_serve(file) && is_little_named(file) && serves(file))) {
        files.push_back(file);
      }
    }
    return files;
  }

 private:
  using Folders = std::set<std::string_view>;

  std::string_view folder(FileId file) const { return index::folder_of(code_.path(file)); }

  // The product's folders that name a file of another one, and that one as a whole; and its files.
  void count_namers() {
    std::vector<FileId> last(index_.files().size(), IndexedReference::kOutside);
    for (const IndexedReference& to : index_.references()) {
      if (to.target == IndexedReference::kOutside || !code_.is_product(to.source)) continue;
      if (tests_.is_test(to.source) || to.source == to.target) continue;
      if (last[to.target] != to.source) ++namer_files_[to.target];
      last[to.target] = to.source;
      if (folder(to.source) == folder(to.target)) continue;
      namers_of_folder_[folder(to.target)].insert(folder(to.source));
      if (!tests_.users(to.target).empty()) namers_[to.target].insert(folder(to.source));
    }
  }

  void count_tests() {
    std::map<std::string_view, std::pair<double, double>> counts;
    for (FileId file = 0; file < index_.files().size(); ++file) {
      if (index_.declarations(file).empty()) continue;
      index::for_each_folder_up(folder(file), [&](std::string_view up) {
        counts[up].first += tests_.is_test(file) ? 1 : 0;
        counts[up].second += 1;
      });
    }
    for (const auto& [up, count] : counts) share_of_tests_[up] = count.first / count.second;
  }

  static bool is_made_or_called(index::DeclarationKind kind, index::Role role) {
    if (is_type(kind)) return role == index::Role::kConstructs || kSubtyping.has(role);
    return kind == index::DeclarationKind::kFunction || kind == index::DeclarationKind::kMethod;
  }

  // By file, the tests that name what most of them do of what the product itself never names.
  void count_alone() {
    struct Count {
      FileId last = IndexedReference::kOutside;
      std::size_t tests = 0;
      std::size_t product = 0;
    };
    std::map<std::pair<FileId, std::uint32_t>, Count> counts;
    for (const IndexedReference& to : index_.references()) {
      if (to.target == IndexedReference::kOutside || to.declaration == 0) continue;
      if (to.source == to.target || tests_.is_test(to.target)) continue;
      const auto& row = index_.declarations(to.target)[to.declaration - 1];
      if (tests_.is_test(to.source) && !is_made_or_called(row.kind, to.role)) continue;
      Count& count = counts[{to.target, to.declaration}];
      if (count.last == to.source) continue;
      count.last = to.source;
      if (tests_.is_test(to.source)) {
        ++count.tests;
      } else if (code_.is_product(to.source)) {
        ++count.product;
      }
    }
    const auto share = kLeastShareAlone * static_cast<double>(tests_.test_count());
    const auto least = std::max(kLeastUsersAlone, static_cast<std::size_t>(share));
    for (const auto& [at, count] : counts) {
      if (count.tests < least || !code_.is_product(at.first)) continue;
      if (count.product * kTestsForOneOfProduct > count.tests) continue;
      alone_[at.first] = true;
    }
  }

  static std::size_t count_of(const auto& folders, const auto& key) {
    const auto found = folders.find(key);
    return found == folders.end() ? 0 : found->second.size();
  }

  bool may_serve(FileId file) const {
    if (tests_.is_test(file) || tests_.users(file).size() < kLeastUsers) return false;
    if (index_.files()[file].language.empty() || index_.files()[file].generated) return false;
    const Roles roles = index_.files()[file].roles;
    using enum Role;
    const bool aside = roles.has(kVendored) || roles.has(kSample) || roles.has(kMigration) ||
                       roles.has(kDocumentation) || roles.has(kArchived);
    return !aside;
  }

  bool is_little_named(FileId file) const { return count_of(namers_, file) <= kFewFolders; }

  bool serves(FileId file) const {
    if (!code_.is_product(file) || tests_.names_framework(file)) return true;
    if (is_for_tests_by_name(file)) return true;
    const auto around = index::folder_of(folder(file));
    if (!around.empty() && share_of_tests_.at(around) >= kAmongTests) return true;
    return is_cut_off(file);
  }

  bool is_for_tests_by_name(FileId file) const {
    const auto name = index::base_name(code_.path(file));
    if (!is_named_for_tests(name.substr(0, name.rfind('.')))) return false;
    return namer_files_[file] * kTestsForOneOfProduct <= tests_.users(file).size();
  }

  // Nothing of the product names its folder, and tests of many folders do.
  bool is_cut_off(FileId file) const {
    if (folder(file).empty() || count_of(namers_of_folder_, folder(file)) > 0) return false;
    Folders users;
    for (const FileId user : tests_.users(file)) {
      if (folder(user) != folder(file)) users.insert(folder(user));
    }
    return users.size() >= kLeastFoldersOfUsers;
  }

  const TestEvidence& tests_;
  const CodeEvidence& code_;
  const index::RepositoryIndex& index_;
  std::vector<std::size_t> namer_files_;  // by file
  std::map<FileId, Folders> namers_;
  std::map<std::string_view, Folders> namers_of_folder_;
  std::map<std::string_view, double> share_of_tests_;
  std::vector<bool> alone_;  // by file
};

}  // namespace

std::vector<FileId> test_support(const TestEvidence& tests, const CodeEvidence& code) {
  return Finder(tests, code).find();
}

}  // namespace kestrix
