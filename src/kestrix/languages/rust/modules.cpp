#include "kestrix/languages/rust/modules.h"

#include <utility>

#include "kestrix/languages/rust/resolver.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kLongestPath = 1000;
// A file may be one module for each place that names it, and what it names as often again.
constexpr int kMostPlaces = 8;
// Bytes of paths, for all mod declarations of all modules of all crates.
constexpr std::size_t kMostPathBytes = std::size_t{32} << 20U;
constexpr std::size_t kBytesPerModule = 32;

std::string below(const std::string& module, std::string_view name) {
  return module.empty() ? std::string(name) : module + "::" + std::string(name);
}

std::string as_folders(std::string_view path) {
  std::string folders;
  for (std::size_t at = 0; at < path.size(); ++at) {
    if (path.substr(at).starts_with("::")) {
      folders += '/';
      ++at;
    } else {
      folders += path[at];
    }
  }
  return folders;
}

}  // namespace

RustModules::RustModules(const FileTable& files)
    : files_(files), crates_(rust_crates_of(files)), roots_(files.size()), left_(kMostPathBytes) {
  for (const RustCrate& crate : crates_.crates) roots_[crate.root] = true;
  modules_.resize(crates_.crates.size());
  for (std::size_t crate = 0; crate < crates_.crates.size(); ++crate) add_tree(crate);
}

void RustModules::add_tree(std::size_t crate) {
  std::unordered_map<FileId, int> places;
  std::vector<Pending> pending = {{crates_.crates[crate].root, ""}};
  while (!pending.empty()) {
    const Pending at = std::move(pending.back());
    pending.pop_back();
    if (!modules_[crate].try_emplace(at.path, at.file).second) continue;
    places_.try_emplace(at.file, Place{crate, at.path});
    if (at.path.size() > kLongestPath || ++places[at.file] > kMostPlaces) {
      limited_.insert(at.file);
    } else {
      add_modules(crate, at, pending);
    }
  }
}

void RustModules::add_modules(std::size_t crate, const Pending& at, std::vector<Pending>& pending) {
  for (const ImportFact& import : files_.facts(at.file).imports) {
    const auto form = static_cast<RustImport>(import.form);
    const bool inner = form == RustImport::kInline;
    if (!inner && form != RustImport::kMod && form != RustImport::kModFile) continue;
    const std::string& name =
        form == RustImport::kModFile ? import.names.front().name : import.module;
    const std::size_t cost = at.path.size() + name.size() + kBytesPerModule;
    if (cost > left_) {
      limited_.insert(at.file);
      return;
    }
    left_ -= cost;
    if (inner) {
      modules_[crate].try_emplace(below(at.path, name), at.file);
    } else if (const auto target = file_of_mod(at.file, import); target && target != at.file) {
      pending.push_back({*target, below(at.path, name)});
    }
  }
}

const RustModules::Place* RustModules::place_of(FileId file) const {
  const auto found = places_.find(file);
  return found == places_.end() ? nullptr : &found->second;
}

std::optional<FileId> RustModules::find(std::size_t crate, const std::string& path) const {
  const auto found = modules_[crate].find(path);
  if (found == modules_[crate].end()) return std::nullopt;
  return found->second;
}

std::optional<std::size_t> RustModules::crate_named(std::string_view name,
                                                    std::size_t crate) const {
  std::string key(name);
  std::optional<std::string> renamed;
  for_each_folder_up(crates_.crates[crate].package, [&](std::string_view folder) {
    const auto names = crates_.renamed.find(std::string(folder));
    if (renamed || names == crates_.renamed.end()) return;
    if (const auto entry = names->second.find(key); entry != names->second.end()) {
      renamed = entry->second;
    }
  });
  const auto found = crates_.libraries.find(renamed.value_or(key));
  if (found == crates_.libraries.end()) return std::nullopt;
  return found->second;
}

// Where the files of a file's modules stand: beside a root and a mod.rs, else in a folder of the
// file's name.
std::string RustModules::folder_below(FileId file) const {
  const std::string_view path = files_.path(file);
  const std::string_view name = base_name(path);
  const std::string_view folder = folder_of(path);
  if (roots_[file] || name == "mod.rs") return std::string(folder);
  return join(folder, name.substr(0, name.rfind('.')));
}

std::optional<FileId> RustModules::file_of_mod(FileId file, const ImportFact& import) const {
  if (static_cast<RustImport>(import.form) == RustImport::kMod) {
    const std::string path = join(folder_below(file), as_folders(import.module));
    const auto target = files_.find(path + ".rs");
    return target ? target : files_.find(path + "/mod.rs");
  }
  const std::string_view module = import.names.front().name;
  const std::size_t inner = module.rfind("::");
  const std::string folder = inner == module.npos
                                 ? std::string(folder_of(files_.path(file)))
                                 : join(folder_below(file), as_folders(module.substr(0, inner)));
  const auto path = join_normal(folder, import.module);
  return path ? files_.find(*path) : std::nullopt;
}

}  // namespace kestrix::index
