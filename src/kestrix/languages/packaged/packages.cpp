#include "kestrix/languages/packaged/packages.h"

#include <algorithm>
#include <array>

#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 10> kAside = {
    "example", "examples", "fixtures", "sample",    "samples",
    "test",    "testData", "testdata", "test-data", "tests"};

std::string_view last_part(std::string_view package) {
  return package.substr(package.rfind('.') + 1);
}

std::string_view without_last_part(std::string_view package) {
  const std::size_t dot = package.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : package.substr(0, dot);
}

// A package's own folders say nothing about the tree that it stands in: "test" in
// src/main/java/org/example/test is a part of a name.
std::string_view source_root(std::string_view folder, std::string_view package) {
  while (!package.empty() && base_name(folder) == last_part(package)) {
    folder = folder_of(folder);
    package = without_last_part(package);
  }
  return folder;
}

std::string_view stem(std::string_view path) {
  const std::string_view name = base_name(path);
  return name.substr(0, name.find('.'));
}

}  // namespace

void Packages::declare(std::string_view package, std::string_view name, FileId file,
                       Standing standing) {
  const bool aside = is_aside(file);
  Package& entry = packages_[package];
  entry.product |= !aside;
  Declared& declared = entry.names[name];
  std::vector<FileId>& files = aside                            ? declared.aside
                               : standing == Standing::kStandIn ? declared.stand_ins
                                                                : declared.product;
  if (files.empty() || files.back() != file) files.push_back(file);
}

bool Packages::contains(std::string_view package, FileId from) const {
  const auto found = packages_.find(package);
  return found != packages_.end() && (found->second.product || is_aside(from));
}

bool Packages::is_aside(FileId file) const {
  std::string_view folder = source_root(folder_of(files_.path(file)), files_.facts(file).package);
  for (; !folder.empty(); folder = folder_of(folder)) {
    if (std::ranges::find(kAside, base_name(folder)) != kAside.end()) return true;
  }
  return false;
}

std::size_t Packages::nearness(FileId file, FileId from) const {
  const std::string_view a = folder_of(files_.path(file));
  const std::string_view b = folder_of(files_.path(from));
  return static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
}

// Paths are sorted, so the nearest ones stand side by side, where `from` itself would stand.
std::span<const FileId> Packages::nearest(std::span<const FileId> declaring, FileId from) const {
  if (declaring.size() < 2) return declaring;
  const auto near = [&](std::size_t at) { return nearness(declaring[at], from); };
  const auto place = std::ranges::lower_bound(declaring, from);
  std::size_t best =
      std::min(static_cast<std::size_t>(place - declaring.begin()), declaring.size() - 1);
  if (best > 0 && near(best - 1) >= near(best)) --best;
  std::size_t first = best;
  std::size_t last = best + 1;
  while (first > 0 && last - first < kMostEqual && near(first - 1) == near(best)) --first;
  while (last < declaring.size() && last - first < kMostEqual && near(last) == near(best)) ++last;
  return declaring.subspan(first, last - first);
}

std::span<const FileId> Packages::find(std::string_view package, std::string_view name,
                                       FileId from) const {
  const auto entry = packages_.find(package);
  if (entry == packages_.end()) return {};
  const auto declared = entry->second.names.find(name);
  if (declared == entry->second.names.end()) return {};
  auto best = nearest(declared->second.product, from);
  const auto consider = [&](std::span<const FileId> others) {
    const auto other = nearest(others, from);
    if (other.empty()) return;
    const bool nearer =
        best.empty() || nearness(other.front(), from) > nearness(best.front(), from);
    if (nearer) best = other;
  };
  consider(declared->second.stand_ins);
  if (!declared->second.aside.empty() && is_aside(from)) consider(declared->second.aside);
  return best;
}

std::optional<FileId> Packages::find_one(std::string_view package, std::string_view name,
                                         FileId from) const {
  const auto files = find(package, name, from);
  if (files.size() == 1) return files.front();
  const auto named = [&](FileId file) { return stem(files_.path(file)) == name; };
  if (std::ranges::count_if(files, named) != 1) return std::nullopt;
  return *std::ranges::find_if(files, named);
}

}  // namespace kestrix::index
