#include "kestrix/languages/rust/crates.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>
#include <utility>

#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 4> kTargetFolders = {"src/bin", "tests", "examples",
                                                            "benches"};

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\"'");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r\"'") - first + 1);
}

std::string as_name(std::string_view package) {
  std::string name(package);
  std::ranges::replace(name, '-', '_');
  return name;
}

// What a Cargo.toml says of its targets, read by line.
struct Manifest {
  bool package = false;
  std::string name;
  std::string library;  // its name, when it is given one
  std::optional<std::string> library_path;
  std::vector<std::string> target_paths;
  std::vector<std::pair<std::string, std::string>> renamed;
};

void read_dependency(Manifest& manifest, std::string_view key, std::string_view value) {
  constexpr std::string_view kPackage = "package";
  std::size_t at = value.find(kPackage);
  if (!value.starts_with('{') || at == std::string_view::npos) return;
  value = value.substr(at + kPackage.size());
  const std::size_t open = value.find('"');
  const std::size_t close = value.find('"', open + 1);
  if (open == value.npos || close == value.npos) return;
  manifest.renamed.emplace_back(as_name(key), as_name(value.substr(open + 1, close - open - 1)));
}

void read_entry(Manifest& manifest, std::string_view table, std::string_view key,
                std::string_view value) {
  const std::string text(trim(value));
  if (table == "package" && key == "name") manifest.name = text;
  if (table == "lib" && key == "name") manifest.library = text;
  if (table == "lib" && key == "path") manifest.library_path = text;
  if ((table == "[bin]" || table == "[test]" || table == "[example]" || table == "[bench]") &&
      key == "path") {
    manifest.target_paths.push_back(text);
  }
  if (table == "package" && key == "build" && text != "false")
    manifest.target_paths.push_back(text);
  if (table.ends_with("dependencies")) {
    read_dependency(manifest, key, value);
  } else if (const std::size_t at = table.find("dependencies."); at != table.npos) {
    if (key == "package") {
      manifest.renamed.emplace_back(as_name(trim(table.substr(at + 13))), as_name(text));
    }
  }
}

Manifest read_manifest(std::string_view text) {
  Manifest manifest;
  std::string_view table;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    line = line.substr(0, line.find('#'));
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == line.npos) continue;
    line = line.substr(first);
    const std::size_t equals = line.find('=');
    if (line.starts_with('[')) {
      table = trim(line.substr(1, line.rfind(']') == line.npos ? line.npos : line.rfind(']') - 1));
      manifest.package |= table == "package";
    } else if (equals != line.npos) {
      const std::size_t value = line.find_first_not_of(" \t", equals + 1);
      read_entry(manifest, table, trim(line.substr(0, equals)),
                 value == line.npos ? std::string_view() : line.substr(value));
    }
  }
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

  std::optional<FileId> find(std::string_view folder, std::string_view relative) const {
    const auto path = join_normal(folder, relative);
    return path ? files_.find(*path) : std::nullopt;
  }

  void add_other(std::string_view folder, std::string_view relative) {
    if (const auto root = find(folder, relative)) others_.push_back({*root, std::string(folder)});
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
  std::unordered_set<std::string> packages_;  // folders
};

}  // namespace

RustCrates rust_crates_of(const FileTable& files) { return Collector(files).run(); }

}  // namespace kestrix::index
