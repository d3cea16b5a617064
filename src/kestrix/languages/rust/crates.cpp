#include "kestrix/languages/rust/crates.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <span>
#include <unordered_set>
#include <utility>

#include "kestrix/formats/scalars.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 4> kTargetFolders = {"src/bin", "tests", "examples",
                                                            "benches"};

std::string as_name(std::string_view package) {
  std::string name(package);
  std::ranges::replace(name, '-', '_');
  return name;
}

// What a Cargo.toml says of its targets and of what it calls other packages.
struct Manifest {
  bool package = false;
  std::string name;
  std::string library;  // its name, when it is given one
  std::optional<std::string> library_path;
  std::vector<std::string> target_paths;
  std::vector<std::pair<std::string, std::string>> renamed;
  std::vector<std::string> inherited;  // names under which it depends on what the workspace says
};

bool is_target(std::string_view table) {
  return table == "bin" || table == "test" || table == "example" || table == "bench";
}

// `at` is the path of `value`: "package/name", "bin/0/path", "target/cfg(unix)/dependencies/x/…".
void read_entry(Manifest& manifest, std::span<const std::string> at, std::string_view value) {
  const std::string_view table = at.front();
  const std::string_view key = at.back();
  manifest.package |= table == "package";
  if (at.size() == 2 && table == "package" && key == "name") manifest.name = value;
  if (at.size() == 2 && table == "package" && key == "build" && value != "false") {
    manifest.target_paths.emplace_back(value);
  }
  if (at.size() == 2 && table == "lib" && key == "name") manifest.library = value;
  if (at.size() == 2 && table == "lib" && key == "path") manifest.library_path = value;
  if (at.size() == 3 && is_target(table) && key == "path") {
    manifest.target_paths.emplace_back(value);
  }
  if (at.size() < 3 || !at[at.size() - 3].ends_with("dependencies")) return;
  const std::string name = as_name(at[at.size() - 2]);
  if (key == "package") manifest.renamed.emplace_back(name, as_name(value));
  if (key == "workspace" && value == "true") manifest.inherited.push_back(name);
}

Manifest read_manifest(std::string_view text) {
  Manifest manifest;
  for_each_scalar(Format::kToml, text,
                  [&](const Scalar& scalar) { read_entry(manifest, scalar.path, scalar.value); });
  return manifest;
}

class Collector {
 public:
  explicit Collector(const FileTable& files) : files_(files) {}

  RustCrates run() {
    for (FileId id = 0; id < files_.size(); ++id) {
      const std::string_view path = files_.path(id);
      if (base_name(path) == "Cargo.toml") read(folder_of(path), read_manifest(files_.read(id)));
    }
    for (const auto& [folder, name] : inherited_) inherit(folder, name);
    if (packages_.empty()) add_bare();
    for (FileId id = 0; id < files_.size(); ++id) add_usual_target(id);
    for (auto& crate : others_) found_.crates.push_back(std::move(crate));
    return std::move(found_);
  }

 private:
  void read(std::string_view folder, const Manifest& manifest) {
    for (const auto& [alias, name] : manifest.renamed) {
      found_.renamed[std::string(folder)].emplace(alias, name);
    }
    if (!manifest.package) return;
    for (const std::string& name : manifest.inherited) inherited_.emplace_back(folder, name);
    packages_.emplace(folder);
    const std::string library = manifest.library_path.value_or("src/lib.rs");
    if (const auto root = find(folder, library)) {
      const std::string& name = manifest.library.empty() ? manifest.name : manifest.library;
      found_.libraries.try_emplace(as_name(name), found_.crates.size());
      found_.crates.push_back({*root, std::string(folder)});
    }
    for (const std::string_view usual : {"src/main.rs", "build.rs"}) add_other(folder, usual);
    for (const std::string& path : manifest.target_paths) add_other(folder, path);
  }

  // The name that a dependency of the nearest workspace above stands for.
  void inherit(std::string_view folder, const std::string& name) {
    bool found = false;
    for_each_folder_up(folder, [&](std::string_view up) {
      const auto workspace = found ? found_.renamed.end() : found_.renamed.find(std::string(up));
      if (workspace == found_.renamed.end()) return;
      const auto renamed = workspace->second.find(name);
      if (renamed == workspace->second.end()) return;
      found = true;
      const std::string package = renamed->second;
      found_.renamed[std::string(folder)].emplace(name, package);
    });
  }

  std::optional<FileId> find(std::string_view folder, std::string_view relative) const {
    const auto path = join_normal(folder, relative);
    return path ? files_.find(*path) : std::nullopt;
  }

  void add_other(std::string_view folder, std::string_view relative) {
    const auto root = find(folder, relative);
    if (root && roots_.emplace(*root, folder).second)
      others_.push_back({*root, std::string(folder)});
  }

  void add_bare() {
    for (const std::string_view usual : {"src/lib.rs", "lib.rs", "src/main.rs", "main.rs"}) {
      add_other("", usual);
    }
  }

  // tests/x.rs and tests/x/main.rs, and so on.
  void add_usual_target(FileId id) {
    std::string_view path = files_.path(id);
    if (!path.ends_with(".rs")) return;
    std::string_view folder = folder_of(path);
    if (base_name(path) == "main.rs") {
      if (add_target(id, folder_of(folder))) return;
    }
    add_target(id, folder);
  }

  bool add_target(FileId id, std::string_view folder) {
    // NOLINTNEXTLINE(readability-use-anyofallof): the loop has an effect
    for (const std::string_view target : kTargetFolders) {
      if (folder != target &&
          !(folder.ends_with(target) && folder[folder.size() - target.size() - 1] == '/')) {
        continue;
      }
      const std::string_view package =
          folder.substr(0, folder.size() - std::min(folder.size(), target.size() + 1));
      if (!packages_.contains(std::string(package))) continue;
      others_.push_back({id, std::string(package)});
      return true;
    }
    return false;
  }

  const FileTable& files_;
  RustCrates found_;
  std::vector<RustCrate> others_;
  std::set<std::pair<FileId, std::string>> roots_;              // of others, with their packages
  std::unordered_set<std::string, SeededHash> packages_;        // folders
  std::vector<std::pair<std::string, std::string>> inherited_;  // folder and name
};

}  // namespace

RustCrates rust_crates_of(const FileTable& files) { return Collector(files).run(); }

}  // namespace kestrix::index
