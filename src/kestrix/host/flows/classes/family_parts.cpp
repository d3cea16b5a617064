#include "kestrix/host/flows/classes/family_parts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "kestrix/host/flows/folders.h"
#include "kestrix/host/index_evidence.h"
#include "kestrix/workers/wiki/page_sources/path_text.h"

namespace kestrix {
namespace {

using index::FileId;
using Files = std::vector<FileId>;

constexpr std::size_t kLeastArea = 20;
constexpr std::size_t kAreaShare = 6;
constexpr std::size_t kLeastPart = 10;
constexpr std::size_t kPartShare = 12;
constexpr double kLeastNamed = 0.6;

double weight_of(std::size_t files) { return std::log2(1.0 + static_cast<double>(files)); }

class Parter {
 public:
  Parter(const FlowEvidence& evidence, const PathPatterns& patterns, Family family)
      : evidence_(evidence), patterns_(patterns), family_(std::move(family)) {}

  std::vector<Family> find() {
    std::vector<Family> parts;
    if (family_.files.size() < kLeastArea) return {std::move(family_)};
    const std::size_t all = family_.files.size();
    const std::size_t least = std::max(kLeastPart, all / kPartShare);
    std::map<FileId, Files> hubs = named_by();
    const FileId main = main_of(hubs);
    const std::string_view whole = common_folder(evidence_.code, family_.files);
    for (auto& [hub, named] : hubs) {
      if (named.size() < least) continue;
      const std::string_view folder = common_folder(evidence_.code, named);
      if (folder == whole) continue;
      Files part = below(folder);
      if (part.size() < least || part.size() * 2 > all ||
          (hub != main && is_led(hubs.at(main), part)))
        continue;
      if (static_cast<double>(named.size()) < kLeastNamed * static_cast<double>(part.size()))
        continue;
      const std::string sign = fmt::format("{} names {} of {}", evidence_.code.path(hub),
                                           named.size(), counted(part.size(), "file", "files"));
      parts.push_back(cut_off(std::move(part), sign));
    }
    if (family_.by_mark) cut_off_groups(parts);
    if (family_.files.size() < all) {
      family_.sign += fmt::format("; {} of them apart", all - family_.files.size());
    }
    if (family_.files.size() >= kLeastFamily) parts.push_back(std::move(family_));
    return parts;
  }

 private:
  std::map<FileId, Files> named_by() const {
    std::map<FileId, Files> hubs;
    for (const FileId file : family_.files) {
      for (const Naming& by : evidence_.graph.to(file)) {
        if (!by.names || by.derives || !evidence_.code.is_product(by.from)) continue;
        if (!std::ranges::binary_search(family_.files, by.from)) hubs[by.from].push_back(file);
      }
    }
    return hubs;
  }

  static FileId main_of(const std::map<FileId, Files>& hubs) {
    FileId main = 0;
    std::size_t most = 0;
    for (const auto& [hub, named] : hubs) {
      if (named.size() <= most) continue;
      most = named.size();
      main = hub;
    }
    return main;
  }

  Files below(std::string_view folder) const {
    Files part;
    std::ranges::copy_if(family_.files, std::back_inserter(part),
                         [&](FileId file) { return lies_in(evidence_.code.path(file), folder); });
    return part;
  }

  // Whether what names the most of all names a good deal of the part, too.
  static bool is_led(const Files& named, const Files& part) {
    const auto both = std::ranges::count_if(
        part, [&](FileId file) { return std::ranges::binary_search(named, file); });
    return static_cast<std::size_t>(both) * 4 > part.size();
  }

  // Commands that lead to commands are no commands of their own.
  void cut_off_groups(std::vector<Family>& parts) {
    Files groups;
    for (const FileId file : family_.files) {
      const auto members = std::ranges::count_if(evidence_.graph.from(file), [&](const Naming& to) {
        return to.names && !to.derives && std::ranges::binary_search(family_.files, to.to);
      });
      if (members >= 2) groups.push_back(file);
    }
    if (groups.size() < kLeastPart || groups.size() * 3 > family_.files.size()) return;
    const std::string sign = fmt::format("{} each lead to several of {}",
                                         counted(groups.size(), "file", "files"), family_.glob);
    parts.push_back(cut_off(std::move(groups), sign));
  }

  Family cut_off(Files part, std::string sign) {
    const std::size_t before = family_.files.size();
    std::erase_if(family_.files,
                  [&](FileId file) { return std::ranges::binary_search(part, file); });
    Family cut{.glob = patterns_.glob_of(part),
               .sign = std::move(sign),
               .files = std::move(part),
               .score = family_.score,
               .key = family_.key};
    cut.score *= weight_of(cut.files.size()) / weight_of(before);
    family_.score *= weight_of(family_.files.size()) / weight_of(before);
    return cut;
  }

  const FlowEvidence& evidence_;
  const PathPatterns& patterns_;
  Family family_;
};

}  // namespace

std::vector<std::vector<FileId>> areas_of(const CodeEvidence& evidence,
                                          const std::vector<FileId>& files) {
  if (files.size() < kLeastArea) return {files};
  const std::string_view folder = common_folder(evidence, files);
  const std::size_t below = folder.empty() ? 0 : folder.size() + 1;
  std::map<std::string_view, std::vector<FileId>> areas;
  for (const FileId file : files) {
    const std::string_view rest = evidence.path(file).substr(below);
    areas[rest.substr(0, rest.find('/'))].push_back(file);
  }
  std::vector<std::vector<FileId>> split;
  std::vector<FileId> others;
  for (auto& [name, area] : areas) {
    // Folders right above the files are a part's own order, not parts.
    const bool is_part = common_folder(evidence, area).size() > below + name.size();
    if (is_part && area.size() >= std::max(kLeastArea, files.size() / kAreaShare)) {
      split.push_back(std::move(area));
    } else {
      std::ranges::move(area, std::back_inserter(others));
    }
  }
  if (split.size() < 2 || others.size() * 3 > files.size()) return {files};
  split.push_back(std::move(others));
  return split;
}

std::vector<Family> parts_of(const FlowEvidence& evidence, const PathPatterns& patterns,
                             Family family) {
  return Parter(evidence, patterns, std::move(family)).find();
}

}  // namespace kestrix
