#include "kestrix/languages/python/resolver.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/languages/dependencies.h"
#include "kestrix/languages/python/names.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 3> kSuffixes = {".py", ".pyi", ".pyx"};
constexpr std::array<std::string_view, 2> kSourceFolders = {"src", "lib"};
constexpr std::array<std::string_view, 3> kProjectFiles = {"pyproject.toml", "setup.cfg",
                                                           "setup.py"};
// Projects below these show something; nobody imports them from outside.
constexpr std::array<std::string_view, 12> kAside = {"doc",      "docs",      "docs_src", "e2e",
                                                     "example",  "examples",  "sample",   "samples",
                                                     "template", "templates", "test",     "tests"};
// A folder with so many names of the standard library is a standard library.
constexpr std::size_t kStandardLibrary = 10;
constexpr std::size_t kMostRoots = 64;  // for one file

template <class List>
bool contains(const List& list, std::string_view name) {
  return std::ranges::find(list, name) != std::ranges::end(list);
}

bool is_python(std::string_view path) {
  return std::ranges::any_of(kSuffixes, [path](auto suffix) { return path.ends_with(suffix); });
}

// "a.b" as the path "a/b".
std::string as_path(std::string_view module) {
  std::string path(module);
  std::ranges::replace(path, '.', '/');
  return path;
}

std::string_view first_part(std::string_view module) { return module.substr(0, module.find('.')); }

std::string_view without_suffix(std::string_view path) {
  return path.substr(0, path.size() - (base_name(path).size() - base_name(path).rfind('.')));
}

bool is_aside(std::string_view folder) {
  for (; !folder.empty(); folder = folder_of(folder)) {
    if (contains(kAside, base_name(folder))) return true;
  }
  return false;
}

// A folder from which absolute imports start.
struct Root {
  std::string folder;
  bool top;         // the repository's own: met by every file, also under borrowed names
  bool namespaces;  // also folders without __init__.py start a package here
};

class PythonResolver : public Resolver {
 public:
  explicit PythonResolver(const FileTable& files)
      : files_(files), required_(required_distributions(files)) {
    for (FileId id = 0; id < files.size(); ++id) {
      if (is_python(files.path(id))) add_file(files.path(id));
    }
    for (FileId id = 0; id < files.size(); ++id) add_project(files.path(id));
    for (FileId id = 0; id < files.size(); ++id) {
      if (is_python(files.path(id))) add_project_module(id);
    }
  }

  Resolution resolve(FileId file) const override {
    Dependencies found(file);
    const std::string_view folder = folder_of(files_.path(file));
    std::vector<Root> roots = roots_of(folder);
    if (roots.size() > kMostRoots) {
      roots.erase(roots.begin() + kMostRoots / 2, roots.end() - kMostRoots / 2);
      found.limit();
    }
    for (const ImportFact& import : files_.facts(file).imports) {
      if (import.level > 0) {
        resolve_relative(folder, import, found);
      } else {
        resolve_absolute(roots, import, found);
      }
    }
    bind_fixtures(file, folder, found);
    return found.take();
  }

 private:
  void add_file(std::string_view path) {
    const std::string_view folder = folder_of(path);
    if (base_name(path).starts_with("__init__.")) packages_.insert(folder);
    if (is_standard_module(base_name(without_suffix(path)))) ++standard_names_[folder];
    for (std::string_view up = folder; !up.empty(); up = folder_of(up)) {
      if (!folders_.insert(up).second) return;
    }
  }

  void add_project(std::string_view path) {
    const std::string_view folder = folder_of(path);
    if (!contains(kProjectFiles, base_name(path)) || folder.empty() || is_aside(folder)) return;
    project_roots_.insert(std::string(folder));
    for (const auto name : kSourceFolders) project_roots_.insert(join(folder, name));
  }

  void add_project_module(FileId id) {
    if (project_roots_.empty()) return;
    std::string_view module = without_suffix(files_.path(id));
    if (base_name(module) == "__init__") module = folder_of(module);
    std::size_t roots = 0;
    for (std::string_view up = folder_of(module); !up.empty() && roots < kMostRoots;
         up = folder_of(up)) {
      if (!project_roots_.contains(std::string(up)) || packages_.contains(up)) continue;
      ++roots;
      const std::string_view name = module.substr(up.size() + 1);
      if (!contains(kAside, name.substr(0, name.find('/')))) project_modules_.try_emplace(name, id);
    }
  }

  bool is_standard_library(std::string_view folder) const {
    const auto found = standard_names_.find(folder);
    return found != standard_names_.end() && found->second >= kStandardLibrary;
  }

  // Nearest first: what runs a file puts the file's own root before all others.
  std::vector<Root> roots_of(std::string_view folder) const {
    while (!folder.empty() && packages_.contains(folder)) folder = folder_of(folder);
    std::vector<Root> roots;
    const std::string_view own = folder;
    for_each_folder_up(folder, [&](std::string_view up) {
      if (packages_.contains(up)) return;
      roots.push_back(
          {std::string(up), up.empty() || is_standard_library(up), up.empty() || up == own});
      for (const auto name : kSourceFolders) {
        std::string source = join(up, name);
        if (folders_.contains(source) && !packages_.contains(source)) {
          roots.push_back({std::move(source), up.empty(), true});
        }
      }
    });
    return roots;
  }

  // Tests know what the conftest.py of their folder and of those above it declare, the nearest
  // first, without an import.
  void bind_fixtures(FileId file, std::string_view folder, Dependencies& found) const {
    const std::string_view name = base_name(without_suffix(files_.path(file)));
    if (!name.starts_with("test") && !name.ends_with("_test") && name != "conftest") return;
    for_each_folder_up(folder, [&](std::string_view up) {
      const auto conftest = files_.find(join(up, "conftest.py"));
      if (conftest && *conftest != file) found.bind({.local = "*", .target = *conftest});
    });
  }

  std::optional<FileId> find_module(const std::string& path) const {
    if (packages_.contains(path)) {
      for (const auto suffix : kSuffixes) {
        if (const auto id = files_.find(path + "/__init__" + std::string(suffix))) return id;
      }
    }
    for (const auto suffix : kSuffixes) {
      if (const auto id = files_.find(path + std::string(suffix))) return id;
    }
    return std::nullopt;
  }

  // Adds what the import of the module at `path` leads to; false when that is nothing. `find` maps
  // a module's path to its file.
  template <class Find>
  static bool add_module(const std::string& path, const ImportFact& import, Find find,
                         Dependencies& found) {
    double weight = 1 + import.uses;
    bool whole = import.names.empty();
    bool any = false;
    for (const ImportedName& name : import.names) {
      const auto submodule = name.name == "*" ? std::nullopt : find(join(path, name.name));
      if (submodule) {
        found.add(*submodule, 1.0 + name.uses);
        found.bind({.local = name.bound(), .target = *submodule, .exported = name.bound()});
        any = true;
      } else {
        weight += name.uses;
        whole = true;
      }
    }
    if (!whole) return any;
    const auto module = find(path);
    if (module) {
      found.add(*module, weight);
      bind(import, *module, found);
    }
    return any || module;
  }

  // A name of a package that is no module of it is something that its __init__ has.
  static void bind(const ImportFact& import, FileId module, Dependencies& found) {
    if (import.names.empty()) {
      found.bind({.local = import.local.empty() ? import.module : import.local, .target = module});
    }
    for (const ImportedName& name : import.names) {
      found.bind(
          {.local = name.bound(), .target = module, .name = name.name, .exported = name.bound()});
    }
  }

  bool add_local(const std::string& path, const ImportFact& import, Dependencies& found) const {
    return add_module(
        path, import, [this](const std::string& module) { return find_module(module); }, found);
  }

  bool add_from_project(const std::string& path, const ImportFact& import,
                        Dependencies& found) const {
    const auto find = [this](const std::string& module) -> std::optional<FileId> {
      const auto entry = project_modules_.find(module);
      if (entry == project_modules_.end()) return std::nullopt;
      return entry->second;
    };
    return add_module(path, import, find, found);
  }

  void resolve_relative(std::string_view folder, const ImportFact& import,
                        Dependencies& found) const {
    for (std::uint16_t level = 1; level < import.level; ++level) {
      if (folder.empty()) return found.miss();
      folder = folder_of(folder);
    }
    if (!add_local(join(folder, as_path(import.module)), import, found)) found.miss();
  }

  void resolve_absolute(const std::vector<Root>& roots, const ImportFact& import,
                        Dependencies& found) const {
    const std::string_view first = first_part(import.module);
    const bool standard = is_standard_module(first);
    const bool borrowed = standard || required_.contains(std::string(first));
    const std::string path = as_path(import.module);
    bool local = false;
    for (const Root& root : roots) {
      if (borrowed && !root.top) continue;
      const std::string start = join(root.folder, first);
      const bool regular = packages_.contains(start) || find_module(start);
      if (!regular && (standard || !root.namespaces || !folders_.contains(start))) continue;
      if (add_local(join(root.folder, path), import, found)) return;
      local |= regular;
      if (regular) break;
    }
    if (!local && !standard && add_from_project(path, import, found)) return;
    if (local) found.miss();
  }

  const FileTable& files_;
  std::unordered_set<std::string, SeededHash> required_;
  std::unordered_set<std::string_view, SeededHash>
      folders_;  // that hold Python files, at any depth
  std::unordered_set<std::string_view, SeededHash> packages_;  // that have an __init__
  std::unordered_map<std::string_view, std::size_t, SeededHash> standard_names_;  // by folder
  std::unordered_set<std::string, SeededHash> project_roots_;
  std::unordered_map<std::string_view, FileId, SeededHash>
      project_modules_;  // "a/b" from a project's root
};

}  // namespace

std::unique_ptr<Resolver> make_python_resolver(const FileTable& files) {
  return std::make_unique<PythonResolver>(files);
}

}  // namespace kestrix::index
