#include "kestrix/host/flows/classes/path_patterns.h"

#include <algorithm>
#include <set>

#include "kestrix/host/flows/folders.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::FileId;

// Fewer are named each, where nothing else tells them from what lies beside.
constexpr std::size_t kMostListed = 6;
constexpr FileId kMostLookedAt = 200;

bool is_separator(char c) { return c == '_' || c == '-' || c == '.'; }
bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
bool is_lower(char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); }

// The extension with all that belongs to it: ".cshtml.cs", but of "user.service.ts" only ".ts".
std::string_view extension_of(std::string_view name) {
  const auto dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot);
}

// "_controller", "Controller", ".service"; "" for a name of one word.
std::string_view last_word(std::string_view stem) {
  for (std::size_t at = stem.size(); at-- > 1;) {
    if (is_separator(stem[at])) return stem.substr(at);
    if (is_upper(stem[at]) && is_lower(stem[at - 1])) return stem.substr(at);
  }
  return {};
}

// "t_", "cmd-"; "" for a name of one word.
std::string_view first_word(std::string_view stem) {
  for (std::size_t at = 1; at + 1 < stem.size(); ++at) {
    if (is_separator(stem[at])) return stem.substr(0, at + 1);
  }
  return {};
}

std::string_view name_of_path(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::string below(std::string_view folder, bool deep, std::string_view name) {
  std::string glob(folder);
  if (!folder.empty()) glob += '/';
  if (deep) glob += "**/";
  return glob.append(name);
}

}  // namespace

PathPatterns::PathPatterns(const CodeEvidence& evidence)
    : evidence_(evidence),
      folder_(evidence.index().files().size()),
      patterns_(evidence.index().files().size()),
      parent_(1),
      folders_(1),
      globs_(1) {
  for (FileId file = 0; file < folder_.size(); ++file) {
    if (evidence_.is_product(file)) take(file);
  }
}

void PathPatterns::take(FileId file) {
  const std::string_view path = evidence_.path(file);
  folder_[file] = folder_number(directory_of(path));
  const std::string_view name = name_of_path(path);
  const std::string_view extension = extension_of(name);
  const std::string_view stem = name.substr(0, name.size() - extension.size());
  const std::string_view last = last_word(stem);
  const std::string_view first = first_word(stem);
  auto& patterns = patterns_[file];
  patterns[0] = pattern_number(std::string("*").append(extension));
  patterns[1] = pattern_number(std::string(name));
  if (!last.empty()) patterns[2] = pattern_number(std::string("*").append(last).append(extension));
  if (!first.empty())
    patterns[3] = pattern_number(std::string(first).append("*").append(extension));
}

std::uint32_t PathPatterns::folder_number(std::string_view folder) {
  const auto known = folder_numbers_.find(folder);
  if (known != folder_numbers_.end()) return known->second;
  const std::uint32_t above = folder.empty() ? 0 : folder_number(directory_of(folder));
  const auto number = static_cast<std::uint32_t>(folders_.size());
  folders_.push_back(folder);
  parent_.push_back(above);
  folder_numbers_.emplace(folder, number);
  return number;
}

std::uint32_t PathPatterns::pattern_number(std::string glob) {
  const auto [entry, fresh] =
      pattern_numbers_.try_emplace(std::move(glob), static_cast<std::uint32_t>(globs_.size()));
  if (fresh) globs_.push_back(entry->first);
  return entry->second;
}

bool PathPatterns::matches(FileId file, Key key) const {
  return std::ranges::find(patterns_[file], pattern_of(key)) != patterns_[file].end() &&
         lies_in(evidence_.path(file), folders_[folder_of(key)]);
}

bool PathPatterns::is_beside(Key key, FileId file) const {
  const std::string_view folder = folders_[folder_of(key)];
  const std::string& glob = globs_[pattern_of(key)];
  return !matches(file, key) && lies_in(evidence_.path(file), folder) &&
         glob.ends_with(extension_of(name_of_path(evidence_.path(file))));
}

PathPatterns::Key PathPatterns::above(Key key) const {
  const std::uint32_t folder = parent_[folder_of(key)];
  return folder == 0 ? 0 : key_of(folder, pattern_of(key));
}

std::pair<FileId, FileId> PathPatterns::range(Key key) const {
  return range_of(folders_[folder_of(key)]);
}

std::pair<FileId, FileId> PathPatterns::range_of(std::string_view folder) const {
  const auto files = evidence_.index().files();
  if (folder.empty()) return {0, static_cast<FileId>(files.size())};
  const std::string first = std::string(folder) + '/';
  const std::string last = std::string(folder) + static_cast<char>('/' + 1);
  const auto at = [&](const std::string& path) {
    return static_cast<FileId>(
        std::ranges::lower_bound(files, std::string_view(path), {}, &index::IndexedFile::path) -
        files.begin());
  };
  return {at(first), at(last)};
}

std::string PathPatterns::glob(Key key, bool deep) const {
  return below(folders_[folder_of(key)], deep, globs_[pattern_of(key)]);
}

double PathPatterns::likeness(const std::vector<FileId>& files) const {
  std::unordered_map<std::uint32_t, std::size_t> counts;
  std::size_t most = 0;
  for (const FileId file : files) {
    for (std::size_t at = 1; at < patterns_[file].size(); ++at) {
      const std::uint32_t pattern = patterns_[file][at];
      if (pattern != 0) most = std::max(most, ++counts[pattern]);
    }
  }
  std::unordered_map<std::uint32_t, std::size_t> folders;
  for (const FileId file : files) most = std::max(most, ++folders[folder_[file]]);
  return static_cast<double>(most) / static_cast<double>(files.size());
}

double PathPatterns::likeness_of_places(const std::vector<FileId>& files) const {
  std::unordered_map<std::string, std::size_t> counts;
  std::size_t most = 0;
  for (const FileId file : files) {
    const std::string_view folder = directory_of(evidence_.path(file));
    const std::string_view above = directory_of(folder);
    const std::string_view last = name_of_path(folder);
    most = std::max(most, ++counts[std::string(above) + "/*"]);
    most = std::max(most, ++counts[std::string(directory_of(above)).append("/*/").append(last)]);
  }
  return static_cast<double>(most) / static_cast<double>(files.size());
}

std::string PathPatterns::glob_of(const std::vector<FileId>& files) const {
  std::string_view folder = directory_of(evidence_.path(files.front()));
  std::set<std::string_view> folders;
  std::set<std::string_view> names;
  std::set<std::string_view> first;
  std::set<std::string_view> last;
  std::set<std::string_view> extensions;
  for (const FileId file : files) {
    const std::string_view path = evidence_.path(file);
    while (!lies_in(path, folder)) folder = directory_of(folder);
    const std::string_view name = name_of_path(path);
    const std::string_view extension = extension_of(name);
    const std::string_view stem = name.substr(0, name.size() - extension.size());
    folders.insert(directory_of(path));
    names.insert(name);
    extensions.insert(extension);
    first.insert(first_word(stem));
    last.insert(last_word(stem));
  }
  const bool one = extensions.size() == 1;
  std::string name("*");
  if (names.size() == 1) {
    name = *names.begin();
  } else if (last.size() == 1 && !last.begin()->empty()) {
    name.append(*last.begin());
  } else if (first.size() == 1 && !first.begin()->empty() && one) {
    name.insert(0, *first.begin());
  } else if (one && files.size() <= kMostListed && says_more(files, folder, *extensions.begin())) {
    return listed(files, folder, *extensions.begin());
  }
  if (names.size() > 1 && one) {
    name.append(*extensions.begin());
  } else if (names.size() > 1) {
    name += '{';
    for (const auto extension : extensions) name.append(extension).append(",");
    name.back() = '}';
  }
  const std::string_view above = name_of_path(*folders.begin());
  const bool alike = std::ranges::all_of(
      folders, [above](std::string_view each) { return name_of_path(each) == above; });
  if (folders.size() > 1 && alike) name = std::string(above).append("/").append(name);
  return below(folder, folders.size() > 1 || !folders.contains(folder), name);
}

// Whether what lies there with that ending is more than the files; of many it is taken for granted.
bool PathPatterns::says_more(const std::vector<FileId>& files, std::string_view folder,
                             std::string_view extension) const {
  const auto [begin, end] = range_of(folder);
  if (end - begin > kMostLookedAt) return true;
  const bool flat = std::ranges::all_of(
      files, [&](FileId file) { return folder_[file] == folder_[files.front()]; });
  for (FileId file = begin; file < end; ++file) {
    if (folder_[file] == 0 || (flat && folder_[file] != folder_[files.front()])) continue;
    if (!evidence_.path(file).ends_with(extension)) continue;
    if (evidence_.index().declarations(file).empty()) continue;  // makes a folder a package
    if (!std::ranges::binary_search(files, file)) return true;
  }
  return false;
}

// "commands/{add,list/all}.go"
std::string PathPatterns::listed(const std::vector<FileId>& files, std::string_view folder,
                                 std::string_view extension) const {
  std::string list("{");
  for (const FileId file : files) {
    std::string_view path = evidence_.path(file);
    path.remove_prefix(folder.empty() ? 0 : folder.size() + 1);
    path.remove_suffix(extension.size());
    list.append(path).append(",");
  }
  list.back() = '}';
  return below(folder, false, list.append(extension));
}

}  // namespace kestrix
