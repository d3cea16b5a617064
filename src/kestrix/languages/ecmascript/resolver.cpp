#include "kestrix/languages/ecmascript/resolver.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/languages/dependencies.h"
#include "kestrix/languages/ecmascript/configs.h"
#include "kestrix/languages/ecmascript/files.h"
#include "kestrix/languages/ecmascript/packages.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"
#include "kestrix/text/wildmatch.h"

namespace kestrix::index {
namespace {

using ecmascript::Configs;
using ecmascript::Dialect;
using ecmascript::Packages;

constexpr int kAliasHops = 4;
constexpr std::size_t kMostAll = 256;  // files of which one file hands on all names

constexpr std::size_t kMostGlobs = 64;
constexpr std::size_t kMostGlobbed = 4096;  // files of one that has patterns
constexpr double kGlobWeight = 2;           // it does something with each

bool is_glob(const ImportFact& import) {
  return import.form == static_cast<std::uint16_t>(ecmascript::Form::kGlob);
}

// What an import means: a file of the repository, nothing in it although it should be, or
// something outside.
struct Found {
  std::optional<FileId> file;
  bool local = false;
};

bool is_relative(std::string_view specifier) {
  return specifier == "." || specifier == ".." || specifier.starts_with("./") ||
         specifier.starts_with("../");
}

bool means_folder(std::string_view specifier) {
  return specifier.ends_with('/') || specifier == "." || specifier == ".." ||
         specifier.ends_with("/.") || specifier.ends_with("/..");
}

// Bundlers put loaders before the module ("raw-loader!./x") and queries behind it ("./x?url").
std::string_view without_decoration(std::string_view specifier) {
  specifier = specifier.substr(specifier.rfind('!') + 1);
  return specifier.substr(0, specifier.find('?'));
}

struct Named {
  std::string_view package;
  std::string_view subpath;
};

Named split_package(std::string_view specifier) {
  std::size_t end = specifier.find('/');
  if (specifier.starts_with('@') && end != std::string_view::npos) {
    end = specifier.find('/', end + 1);
  }
  if (end == std::string_view::npos) return {specifier, {}};
  return {specifier.substr(0, end), specifier.substr(end + 1)};
}

class EcmascriptResolver : public Resolver {
 public:
  explicit EcmascriptResolver(const FileTable& files)
      : files_(files), packages_(files), configs_(files, packages_) {
    for (FileId id = 0; id < files.size(); ++id) {
      add_barrel(id);
      add_globs(id);
    }
  }

  Resolution resolve(FileId file) const override {
    Dependencies dependencies(file);
    if (const auto own = barrels_.find(file); own != barrels_.end() && own->second.limited)
      dependencies.limit();
    if (const auto own = globbed_.find(file); own != globbed_.end()) {
      for (const FileId target : own->second) dependencies.add(target, kGlobWeight);
    }
    for (const ImportFact& import : files_.facts(file).imports) {
      if (is_glob(import)) continue;
      if (import.form == static_cast<std::uint16_t>(ecmascript::Form::kOwn)) {
        bind_own(import, file, dependencies);
        continue;
      }
      const Found found = find(import.module, file);
      if (!found.file) {
        bind_outside(import, file, dependencies);
        if (found.local) dependencies.miss();
        if (packages_.is_cut() || configs_.is_cut()) dependencies.limit();
        continue;
      }
      double weight = 1 + import.uses;
      for (const ImportedName& name : import.names) weight += name.uses;
      dependencies.add(*found.file, weight);
      bind(import, *found.file, dependencies);
      follow(*found.file, import, dependencies);
    }
    return dependencies.take();
  }

 private:
  // What the whole of a module is, those who ask for its default get, too.
  static void hand_on(Binding binding, Dependencies& dependencies) {
    dependencies.bind(binding);
    if (binding.exported != kSoleExport) return;
    binding.local = {};
    binding.exported = "default";
    dependencies.bind(binding);
  }

  // What a file hands on from outside ends at the file.
  static void bind_outside(const ImportFact& import, FileId file, Dependencies& dependencies) {
    for (const ImportedName& name : import.names) {
      if (name.exported.empty() || name.exported == "*") continue;
      dependencies.bind(
          {.local = {}, .target = file, .name = name.exported, .exported = name.exported});
    }
  }

  static void bind_own(const ImportFact& own, FileId file, Dependencies& dependencies) {
    for (const ImportedName& name : own.names) {
      // "exports.name" is a name of the file, too.
      const bool dotted = name.name.starts_with("exports.");
      hand_on({.local = dotted ? std::string_view(name.name) : std::string_view(),
               .target = file,
               .name = name.name,
               .exported = name.exported},
              dependencies);
    }
  }

  static void bind(const ImportFact& import, FileId target, Dependencies& dependencies) {
    const auto form = static_cast<ecmascript::Form>(import.form);
    const bool exports = form == ecmascript::Form::kExport;
    if (!import.local.empty()) dependencies.bind({.local = import.local, .target = target});
    if (import.local.empty() && import.names.empty() && form != ecmascript::Form::kImport) {
      dependencies.bind({.local = import.module, .target = target});
    }
    for (const ImportedName& name : import.names) {
      const bool whole = name.name == "*";
      hand_on({.local = whole || exports ? std::string_view() : name.bound(),
               .target = target,
               .name = whole ? std::string_view() : std::string_view(name.name),
               .exported = name.exported},
              dependencies);
    }
  }

  // What a file hands on.
  struct Barrel {
    // By name, the file that it comes from; none for what is found nowhere.
    std::unordered_map<std::string_view, std::optional<FileId>, SeededHash> named;
    std::vector<FileId> all;  // files of which it hands on all names, each once
    bool limited = false;
  };

  void add_barrel(FileId id) {
    Barrel barrel;
    std::unordered_set<FileId> known;
    for (const ImportFact& import : files_.facts(id).imports) {
      if (is_glob(import)) continue;
      if (std::ranges::all_of(import.names, [](auto& name) { return name.exported.empty(); }))
        continue;
      const auto target = find(import.module, id).file;
      for (const ImportedName& name : import.names) {
        if (name.exported == "*") {
          if (target && known.insert(*target).second) add_all(*target, barrel);
        } else if (!name.exported.empty()) {
          auto& origin = barrel.named[name.exported];
          if (target) origin = target;
        }
      }
    }
    if (!barrel.named.empty() || !barrel.all.empty()) barrels_.emplace(id, std::move(barrel));
  }

  // Only so many patterns are followed, each of which looks at the files below its folder.
  void add_globs(FileId id) {
    for (const ImportFact& import : files_.facts(id).imports) {
      if (!is_glob(import) || globs_ == kMostGlobs) continue;
      ++globs_;
      if (const auto pattern = pattern_of(import.module, folder_of(files_.path(id)))) {
        add_matching(*pattern, globbed_[id]);
      }
    }
  }

  // From the top of the repository.
  std::optional<std::string> pattern_of(std::string_view written, std::string_view folder) const {
    if (is_relative(written)) return join_normal(folder, written);
    const auto* package = packages_.around(folder);
    if (package == nullptr) return std::nullopt;
    if (written.starts_with('/')) return join_normal(package->folder, written.substr(1));
    if (written.starts_with("@/") || written.starts_with("~/")) {
      return join_normal(join(package->folder, "src"), written.substr(2));
    }
    return std::nullopt;
  }

  void add_matching(const std::string& pattern, std::vector<FileId>& found) const {
    const std::size_t folder = pattern.substr(0, pattern.find_first_of("*?[")).rfind('/') + 1;
    const std::string_view below = std::string_view(pattern).substr(0, folder);
    const Wildmatch match(pattern);
    for (FileId id = first_from(below); id < files_.size(); ++id) {
      const std::string_view path = files_.path(id);
      if (!path.starts_with(below) || found.size() == kMostGlobbed) return;
      if (match.matches(path)) found.push_back(id);
    }
  }

  // The first file whose path is not before `path`.
  FileId first_from(std::string_view path) const {
    FileId first = 0;
    for (auto count = static_cast<FileId>(files_.size()); count > 0;) {
      const FileId half = count / 2;
      const bool before = files_.path(first + half) < path;
      if (before) first += half + 1;
      count = before ? count - half - 1 : half;
    }
    return first;
  }

  static void add_all(FileId target, Barrel& barrel) {
    barrel.limited |= barrel.all.size() >= kMostAll;
    if (!barrel.limited) barrel.all.push_back(target);
  }

  // export *: every name but the default, unless the barrel names it itself.
  std::optional<FileId> origin(const Barrel& barrel, std::string_view name) const {
    const auto named = barrel.named.find(name);
    if (named != barrel.named.end() && named->second) return named->second;
    if (name == "default") return std::nullopt;
    const auto hands_on = [&](FileId target) {
      if (std::ranges::binary_search(files_.facts(target).declares, name)) return true;
      const auto other = barrels_.find(target);
      return other != barrels_.end() && other->second.named.contains(name);
    };
    const auto found = std::ranges::find_if(barrel.all, hands_on);
    return found == barrel.all.end() ? std::nullopt : std::optional(*found);
  }

  void follow(FileId file, const ImportFact& import, Dependencies& dependencies) const {
    const auto barrel = barrels_.find(file);
    if (barrel == barrels_.end()) return;
    for (const ImportedName& name : import.names) {
      if (const auto source = origin(barrel->second, name.name))
        dependencies.add(*source, 1.0 + name.uses);
    }
  }

  Found find(std::string_view written, FileId file) const {
    const std::string_view folder = folder_of(files_.path(file));
    const Dialect dialect = ecmascript::dialect_of(files_.path(file));
    const std::string_view specifier = without_decoration(written);
    if (is_relative(specifier)) return find_relative(specifier, folder, dialect);
    if (specifier.empty() || specifier.find(':') != std::string_view::npos) return {};
    if (specifier.starts_with('/')) return {find_rooted(specifier, folder, dialect), false};
    return find_named(specifier, folder, dialect, 0);
  }

  Found find_relative(std::string_view specifier, std::string_view folder, Dialect dialect) const {
    const auto path = join_normal(folder, specifier);
    if (!path) return {std::nullopt, true};
    return found_or_missed(means_folder(specifier) ? packages_.find_folder(*path, dialect)
                                                   : packages_.find_path(*path, dialect),
                           *path);
  }

  // A picture is there, though it is no file that one could depend on.
  Found found_or_missed(std::optional<FileId> file, std::string_view path) const {
    return {file, file.has_value() || !files_.has_binary(path)};
  }

  // "/x" as a development server sees it: from the folder of the project.
  std::optional<FileId> find_rooted(std::string_view specifier, std::string_view folder,
                                    Dialect dialect) const {
    const auto* package = packages_.around(folder);
    if (package == nullptr) return std::nullopt;
    const auto path = join_normal(package->folder, specifier);
    return path ? packages_.find_path(*path, dialect) : std::nullopt;
  }

  // NOLINTBEGIN(misc-no-recursion): kAliasHops at most

  Found find_named(std::string_view specifier, std::string_view folder, Dialect dialect,
                   int hops) const {
    const auto candidates = configs_.find(specifier, folder);
    for (const std::string& path : candidates.paths) {
      if (const auto id = packages_.find_path(path, dialect)) return {id, true};
      if (files_.has_binary(path)) return {};
    }
    if (specifier.starts_with('#')) return find_internal(specifier, folder, dialect, hops);
    if (specifier.starts_with("@/") || specifier.starts_with("~/")) {
      return find_aliased(specifier.substr(2), folder, dialect);
    }
    if (specifier.starts_with("$lib/")) {
      return find_aliased(specifier.substr(1), folder, dialect);
    }
    const Named named = split_package(specifier);
    const auto* package = packages_.named(named.package, folder);
    if (package == nullptr) return {std::nullopt, candidates.named};
    return found_or_missed(packages_.find(*package, named.subpath, dialect),
                           join(package->folder, named.subpath));
  }

  Found find_internal(std::string_view specifier, std::string_view folder, Dialect dialect,
                      int hops) const {
    const auto internal = packages_.find_internal(specifier, folder, dialect);
    if (internal.file || internal.specifiers.empty() || hops == kAliasHops) {
      return {internal.file, internal.specifiers.empty()};
    }
    return find_named(internal.specifiers.front(), folder, dialect, hops + 1);
  }

  // NOLINTEND(misc-no-recursion)

  // "@/x", "~/x" and "$lib/x" mean a project's sources wherever no configuration says otherwise.
  Found find_aliased(std::string_view path, std::string_view folder, Dialect dialect) const {
    const auto* package = packages_.around(folder);
    if (package == nullptr) return {std::nullopt, true};
    for (const std::string_view source : {"src", "", "app"}) {
      const auto place = join_normal(join(package->folder, source), path);
      if (!place) continue;
      if (const auto id = packages_.find_path(*place, dialect)) return {id, true};
      if (files_.has_binary(*place)) return {};
    }
    return {std::nullopt, true};
  }

  const FileTable& files_;
  Packages packages_;
  Configs configs_;
  std::unordered_map<FileId, Barrel> barrels_;
  std::unordered_map<FileId, std::vector<FileId>> globbed_;
  std::size_t globs_ = 0;
};

}  // namespace

std::unique_ptr<Resolver> make_ecmascript_resolver(const FileTable& files) {
  return std::make_unique<EcmascriptResolver>(files);
}

}  // namespace kestrix::index
