#include "kestrix/host/examples/test_support.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

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
// Support may be wired into the product's start; what more folders use is the product's.
constexpr std::size_t kFewFolders = 2;

class Finder {
 public:
  Finder(const TestEvidence& tests, const CodeEvidence& code)
      : tests_(tests), code_(code), index_(code.index()) {
    count_namers();
    count_tests();
  }

  std::vector<FileId> find() const {
    std::vector<FileId> files;
    for (FileId file = 0; file < index_.files().size(); ++file) {
      if (may_serve(file) && serves(file)) files.push_back(file);
    }
    std::ranges::stable_sort(files, std::ranges::greater(),
                             [&](FileId file) { return tests_.users(file).size(); });
    return files;
  }

 private:
  using Folders = std::set<std::string_view>;

  std::string_view folder(FileId file) const { return index::folder_of(code_.path(file)); }

  // The product's folders that name a file of another one, and that one as a whole.
  void count_namers() {
    for (const IndexedReference& to : index_.references()) {
      if (to.target == IndexedReference::kOutside || !code_.is_product(to.source)) continue;
      if (tests_.is_test(to.source) || folder(to.source) == folder(to.target)) continue;
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

  static std::size_t count_of(const auto& folders, const auto& key) {
    const auto found = folders.find(key);
    return found == folders.end() ? 0 : found->second.size();
  }

  bool may_serve(FileId file) const {
    if (tests_.is_test(file) || tests_.users(file).size() < kLeastUsers) return false;
    if (index_.declarations(file).empty() || index_.files()[file].generated) return false;
    const Roles roles = index_.files()[file].roles;
    using enum Role;
    const bool aside = roles.has(kVendored) || roles.has(kSample) || roles.has(kMigration) ||
                       roles.has(kDocumentation) || roles.has(kArchived);
    return !aside && count_of(namers_, file) <= kFewFolders;
  }

  bool serves(FileId file) const {
    if (!code_.is_product(file) || tests_.names_framework(file)) return true;
    const auto around = index::folder_of(folder(file));
    if (!around.empty() && share_of_tests_.at(around) >= kAmongTests) return true;
    return is_cut_off(file);
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
  std::map<FileId, Folders> namers_;
  std::map<std::string_view, Folders> namers_of_folder_;
  std::map<std::string_view, double> share_of_tests_;
};

}  // namespace

std::vector<FileId> test_support(const TestEvidence& tests, const CodeEvidence& code) {
  return Finder(tests, code).find();
}

}  // namespace kestrix
