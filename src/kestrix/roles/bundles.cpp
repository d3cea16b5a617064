#include "kestrix/roles/bundles.h"

#include <fmt/format.h>
#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "kestrix/roles/folder_names.h"
#include "kestrix/roles/licence.h"
#include "kestrix/roles/path_roles.h"
#include "kestrix/text/paths.h"

namespace kestrix {
namespace {

using index::base_name;
using index::folder_of;
using Place = JudgedRepository::Place;
using Words = std::set<std::string, std::less<>>;

// Beside the code of a folder that stands for itself.
constexpr auto kOwnTexts = std::to_array<std::string_view>(
    {"readme", "changelog", "changes", "news", "history", "configure", "makefile", "manifest"});
constexpr auto kScripts = std::to_array<std::string_view>({".js", ".css", ".mjs", ".cjs"});
// Of the files below a folder that depend on the rest of the repository, one in this many is too
// much for another project's.
constexpr Place kForeignShare = 10;
// A holder whom this many licences name, and half of all, is one of the project's own.
constexpr std::size_t kOwnLicences = 3;
// So many other projects side by side make a folder of other projects.
constexpr std::size_t kFewestNeighbours = 3;
// Folders within each other would be looked through again and again.
constexpr std::size_t kMostLookedThrough = 16;

// "zlib-1.2.11", "jquery_ui-1.13.2"
bool has_version(std::string_view name) {
  static const RE2 pattern(
      R"([A-Za-z][A-Za-z0-9+._]*?[-_.]v?\d+\.\d+(?:\.\d+)*(?:[-._]?[A-Za-z0-9]+)*)");
  return RE2::FullMatch(re2::StringPiece(name.data(), name.size()), pattern);
}

// A licence of the whole folder is called so and nothing else; "LICENSE-fonts" is of a part.
bool covers_folder(std::string_view path) {
  const auto name = base_name(path);
  return name.find_first_of("-_") == name.npos;
}

Words words_of(const JudgedLicence& licence) {
  return {licence.holders.begin(), licence.holders.end()};
}

bool share_a_word(const Words& known, const std::vector<std::string>& words) {
  return std::ranges::any_of(words, [&](const auto& word) { return known.contains(word); });
}

// Who the repository's own licences name: those at its top, and whom most of the others name.
Words own_holders(const JudgedRepository& repository) {
  Words own;
  std::map<std::string_view, std::size_t> counts;
  std::size_t licences = 0;
  for (const JudgedLicence& licence : repository.licences) {
    const bool top = folder_of(repository.files[licence.file].path).empty();
    if (top) own.merge(words_of(licence));
    if (top || licence.holders.empty()) continue;
    ++licences;
    for (const std::string& word : licence.holders) ++counts[word];
  }
  if (own.empty()) return own;
  for (const auto& [word, count] : counts) {
    if (count >= kOwnLicences && count * 2 >= licences) own.emplace(word);
  }
  return own;
}

// Folder by folder what speaks for another project; not yet whether its code agrees.
Bundles candidates(const JudgedRepository& repository) {
  Bundles found;
  const Words own = own_holders(repository);
  for (const JudgedLicence& licence : repository.licences) {
    const auto path = repository.files[licence.file].path;
    const auto folder = folder_of(path);
    if (own.empty() || folder.empty() || licence.holders.empty() || !covers_folder(path)) continue;
    if (share_a_word(own, licence.holders)) continue;
    found.try_emplace(folder, fmt::format("{} names other holders of the copyright", path));
  }
  for (const JudgedFile& file : repository.files) {
    const auto folder = folder_of(file.path);
    if (folder.empty() || !has_version(base_name(folder))) continue;
    const auto name = base_name(file.path);
    const auto stem = name.substr(0, name.find('.'));
    if (!is_licence_path(file.path) && !is_among(kOwnTexts, stem)) continue;
    found.try_emplace(folder, fmt::format("a version in the name of {}/", folder));
  }
  return found;
}

// The folders directly below one, each with its files.
std::map<std::string_view, JudgedRepository::Range> folders_in(const JudgedRepository& repository,
                                                               std::string_view parent) {
  std::map<std::string_view, JudgedRepository::Range> folders;
  const auto all = repository.below(parent);
  for (Place file = all.first; file < all.last;) {
    const auto path = repository.files[file].path;
    const auto end = path.find('/', parent.size() + 1);
    if (end == path.npos) {
      ++file;
      continue;
    }
    const auto folder = path.substr(0, end);
    file = folders.emplace(folder, repository.below(folder)).first->second.last;
  }
  return folders;
}

// Which files below a folder the product elsewhere depends on.
std::vector<bool> used_from_outside(const JudgedRepository& repository,
                                    JudgedRepository::Range folder) {
  std::vector<bool> used(folder.size());
  for (Place source = 0; source < repository.files.size(); ++source) {
    if (folder.holds(source) || is_test_by_path(repository.files[source].path)) continue;
    for (const Place target : repository.targets[source]) {
      if (folder.holds(target)) used[target - folder.first] = true;
    }
  }
  return used;
}

// A folder that stands among other projects is one, if it needs nothing of the rest, either, and
// the rest needs it: the product itself may stand there, too.
void add_neighbours(const JudgedRepository& repository, Bundles& bundles) {
  std::map<std::string_view, std::size_t> parents;
  for (const auto& [folder, evidence] : bundles) ++parents[folder_of(folder)];
  std::size_t looked_through = 0;
  for (const auto& [parent, count] : parents) {
    if (parent.empty() || count < kFewestNeighbours) continue;
    const auto folders = folders_in(repository, parent);
    if (count * 2 < folders.size() || ++looked_through > kMostLookedThrough) continue;
    const auto all = repository.below(parent);
    const auto used = used_from_outside(repository, all);
    for (const auto& [folder, range] : folders) {
      const auto first = used.begin() + (range.first - all.first);
      const bool is_used = std::find(first, first + range.size(), true) != first + range.size();
      if (!is_used || depends_on_the_rest(repository, range)) continue;
      bundles.try_emplace(folder, fmt::format("it stands among {} other projects", count));
    }
  }
}

}  // namespace

bool depends_on_the_rest(const JudgedRepository& repository, JudgedRepository::Range folder) {
  Place leaving = 0;
  for (Place file = folder.first; file < folder.last; ++file) {
    const auto& targets = repository.targets[file];
    leaving += std::ranges::any_of(targets, [&](Place to) { return !folder.holds(to); }) ? 1 : 0;
  }
  return leaving > 0 && leaving * kForeignShare >= repository.count_code(folder);
}

Bundles bundled_folders(const JudgedRepository& repository) {
  Bundles bundles;
  const Place code = repository.count_code(repository.below(""));
  std::set<std::string_view> refused;
  for (auto& [folder, evidence] : candidates(repository)) {
    std::size_t refused_above = 0;
    bool bundled_above = false;
    index::for_each_folder_up(folder, [&](std::string_view above) {
      refused_above += refused.contains(above) ? 1 : 0;
      bundled_above = bundled_above || bundles.contains(above);
    });
    if (bundled_above || refused_above >= kMostLookedThrough) continue;
    const auto range = repository.below(folder);
    // The product is what most of the code is, unless that lies among the tests.
    const bool is_most = code > 0 && repository.count_code(range) * 2 >= code &&
                         !is_test_by_path(repository.files[range.first].path);
    if (is_most || depends_on_the_rest(repository, range))
      refused.insert(folder);
    else
      bundles.emplace(folder, std::move(evidence));
  }
  add_neighbours(repository, bundles);
  return bundles;
}

bool is_versioned_script(std::string_view path) {
  auto name = base_name(path);
  const auto dot = name.rfind('.');
  if (dot == name.npos || !is_among(kScripts, name.substr(dot))) return false;
  return has_version(name.substr(0, dot));
}

}  // namespace kestrix
