#include "kestrix/languages/jvm/resolver.h"

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kestrix/languages/dependencies.h"
#include "kestrix/languages/jvm/source_sets.h"
#include "kestrix/languages/packaged/packages.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"
#include "kestrix/text/sorting.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 2> kPlatform = {"java", "kotlin"};

constexpr std::size_t kMostPackages = 8;     // around one file
constexpr std::size_t kMostWildcards = 256;  // packages that one file imports all of

std::string below(std::string_view package, std::string_view name) {
  return package.empty() ? std::string(name) : std::string(package).append(".").append(name);
}

std::string_view first_part(std::string_view dotted) { return dotted.substr(0, dotted.find('.')); }

// The package of a dotted name, as its letters tell: what stands before the first type.
std::string_view likely_package(std::string_view dotted) {
  std::size_t end = 0;
  while (end < dotted.size()) {
    const std::size_t dot = std::min(dotted.find('.', end), dotted.size());
    if (dot == dotted.size() || packaged::is_type_like(dotted.substr(end, dot - end))) break;
    end = dot + 1;
  }
  return dotted.substr(0, end == 0 ? 0 : end - 1);
}

// The class that holds the functions of a Kotlin file.
std::string facade_of(std::string_view path) {
  const std::string_view name = base_name(path);
  std::string facade(name.substr(0, name.rfind('.')));
  if (facade.front() >= 'a' && facade.front() <= 'z') {
    facade.front() = static_cast<char>(facade.front() - 'a' + 'A');
  }
  return facade + "Kt";
}

class JvmResolver : public Resolver {
 public:
  explicit JvmResolver(const FileTable& files) : files_(files), sets_(files), packages_(files) {
    for (FileId id = 0; id < files.size(); ++id) {
      const std::string_view language = files.language(id);
      if (language == "scala") add_scala_file(id);
      if (language == "java" || language == "kotlin") add_file(id, language == "kotlin");
    }
  }

  Resolution resolve(FileId file) const override {
    const FileFacts& facts = files_.facts(file);
    Dependencies found(file);
    std::vector<std::string> wildcards;
    std::unordered_set<std::string, SeededHash> known;
    for (const ImportFact& import : facts.imports) {
      if (is_platform(import.module, facts.package)) continue;
      const bool all = static_cast<JvmImport>(import.form) == JvmImport::kEverything;
      auto package = all ? package_named(import.module, file) : std::nullopt;
      if (package) {
        if (!known.insert(*package).second) continue;
        if (wildcards.size() < kMostWildcards)
          wildcards.push_back(std::move(*package));
        else
          found.limit();
      } else {
        resolve_name(import, file, found);
      }
    }
    resolve_uses(file, wildcards, found);
    return found.take();
  }

 private:
  using Targets = std::vector<FileId>;

  void add_file(FileId id, bool kotlin) {
    if (files_.path(id).ends_with(".kts")) return;
    const FileFacts& facts = files_.facts(id);
    const std::string_view platform = kotlin ? sets_.platform_of(files_.path(id)) : "";
    bool functions = false;
    for (std::string_view name : facts.declares) {
      const bool actual = name.starts_with(kActual);
      if (actual) name.remove_prefix(kActual.size());
      packages_.declare(
          facts.package, name, id,
          actual || !platform.empty() ? Packages::Standing::kStandIn : Packages::Standing::kFull);
      if (!platform.empty()) {
        platforms_.try_emplace(platform, files_).first->second.declare(facts.package, name, id);
      }
      functions |= !packaged::is_type_like(name);
    }
    if (!kotlin || !functions) return;
    names_.push_back(facade_of(files_.path(id)));
    packages_.declare(facts.package, names_.back(), id);
  }

  // "inner.name" is what a package object holds; scripts declare nothing for others.
  void add_scala_file(FileId id) {
    if (!files_.path(id).ends_with(".scala")) return;
    const FileFacts& facts = files_.facts(id);
    for (const std::string_view name : facts.declares) {
      const std::size_t dot = name.rfind('.');
      if (dot == std::string_view::npos) {
        packages_.declare(facts.package, name, id);
      } else {
        names_.push_back(below(facts.package, name.substr(0, dot)));
        packages_.declare(names_.back(), name.substr(dot + 1), id);
      }
    }
  }

  // The packages that a file's names are looked up in, inner first: in Scala also those around the
  // one that it belongs to, and where a name is spelled out, none.
  std::vector<std::string_view> own_packages(FileId file) const {
    std::vector<std::string_view> own{files_.facts(file).package};
    if (files_.language(file) != "scala") return own;
    while (own.back().find('.') != std::string_view::npos && own.size() < kMostPackages)
      own.push_back(own.back().substr(0, own.back().rfind('.')));
    return own;
  }

  std::vector<std::string_view> packages_around(FileId file) const {
    std::vector<std::string_view> around;
    if (files_.language(file) == "scala") around = own_packages(file);
    if (around.empty() || !around.back().empty()) around.emplace_back();
    return around;
  }

  std::optional<std::string> package_named(std::string_view name, FileId file) const {
    for (const std::string_view around : packages_around(file)) {
      std::string package = below(around, name);
      if (packages_.contains(package, file)) return package;
    }
    return std::nullopt;
  }

  static bool is_platform(std::string_view module, std::string_view package) {
    const std::string_view first = first_part(module);
    return std::ranges::find(kPlatform, first) != kPlatform.end() && first != first_part(package);
  }

  void resolve_name(const ImportFact& import, FileId file, Dependencies& found) const {
    const std::string_view module = import.module;
    std::string_view name;  // what the module names in its package
    Targets targets;
    for (const std::string_view around : packages_around(file)) {
      targets = find_longest(below(around, module),
                             [&](std::string_view package, std::string_view first) {
                               if (package.size() < around.size()) return Targets();
                               const std::size_t own = package.size() - around.size();
                               name = module.substr(own > 0 && around.empty() ? own + 1 : own);
                               return find(package, first, file);
                             });
      if (!targets.empty()) break;
    }
    const bool in_code = static_cast<JvmImport>(import.form) == JvmImport::kInCode;
    for (const FileId target : targets) found.add(target, (in_code ? 0.0 : 1.0) + import.uses);
    const bool looks_local = packages_.contains(likely_package(module), file);
    if (targets.empty() && !in_code && looks_local) found.miss();
    if (const auto target = the_one(targets, first_part(name))) {
      bind(import, name, *target, found);
    } else if (!targets.empty() && !import.local.empty()) {
      // Nothing for certain, but nothing from outside either.
      found.bind({.local = import.local, .target = file});
    }
  }

  // Of several files that declare a name the one that is named after it.
  std::optional<FileId> the_one(const Targets& targets, std::string_view name) const {
    if (targets.size() == 1) return targets.front();
    std::optional<FileId> one;
    for (const FileId target : targets) {
      const std::string_view file = base_name(files_.path(target));
      if (file.substr(0, file.find('.')) != name) continue;
      if (one) return std::nullopt;
      one = target;
    }
    return one;
  }

  void bind(const ImportFact& import, std::string_view name, FileId target,
            Dependencies& found) const {
    if (is_facade(target, first_part(name))) {
      name.remove_prefix(std::min(first_part(name).size() + 1, name.size()));
    }
    const bool everything = static_cast<JvmImport>(import.form) == JvmImport::kEverything;
    const std::string_view written = import.local.empty() ? import.module : import.local;
    found.bind({.local = everything ? "*" : written, .target = target, .name = name});
  }

  bool is_facade(FileId target, std::string_view name) const {
    return name.ends_with("Kt") && files_.language(target) == "kotlin" &&
           name == facade_of(files_.path(target)) &&
           !std::ranges::binary_search(files_.facts(target).declares, name);
  }

  void resolve_uses(FileId file, const std::vector<std::string>& wildcards,
                    Dependencies& found) const {
    const FileFacts& facts = files_.facts(file);
    const auto own = own_packages(file);
    std::unordered_set<FileId> imported;
    for (const NameUse& use : facts.uses) {
      const bool type = packaged::is_type_like(use.name);
      auto targets = type ? find_own(own, use.name, file) : Targets();
      for (const FileId target : targets) found.add(target, use.uses);
      if (targets.empty()) {
        targets = find_imported(wildcards, use.name, file);
        for (const FileId target : targets) {
          found.add(target, (imported.insert(target).second ? 1.0 : 0.0) + use.uses);
        }
      }
      // Functions of the own package go before those of wildcards; being called says too little of
      // them to depend on them.
      if (auto mine = type ? Targets() : find_own(own, use.name, file); !mine.empty()) {
        targets = std::move(mine);
      }
      if (const auto target = the_one(targets, use.name)) {
        found.bind({.local = use.name, .target = *target, .name = use.name});
      }
    }
  }

  Targets find_own(const std::vector<std::string_view>& packages, std::string_view name,
                   FileId file) const {
    for (const std::string_view package : packages) {
      auto found =
          packaged::is_type_like(name) ? find_type(package, name, file) : find(package, name, file);
      if (!found.empty()) return found;
    }
    return {};
  }

  // A platform's file sees what the platform declares besides what all platforms share, and in the
  // stead of what is only expected there.
  Targets find(std::string_view package, std::string_view name, FileId file) const {
    const auto shared = packages_.find(package, name, file);
    Targets targets(shared.begin(), shared.end());
    const auto platform = platforms_.find(sets_.platform_of(files_.path(file)));
    if (platform == platforms_.end()) return targets;
    const auto own = platform->second.find(package, name, file);
    if (std::ranges::any_of(own, [&](FileId id) { return is_actual(id, name); })) targets.clear();
    targets.insert(targets.end(), own.begin(), own.end());
    sort_distinct(targets);
    return targets;
  }

  bool is_actual(FileId file, std::string_view name) const {
    return std::ranges::binary_search(files_.facts(file).declares,
                                      std::string(kActual).append(name));
  }

  // A type has one file, but in Kotlin functions that make one may share its name.
  Targets find_type(std::string_view package, std::string_view name, FileId file) const {
    if (files_.language(file) != "java") return find(package, name, file);
    const auto one = packages_.find_one(package, name, file);
    return one ? Targets{*one} : Targets{};
  }

  // The overloads of a function may come from several files and several packages.
  Targets find_imported(const std::vector<std::string>& wildcards, std::string_view name,
                        FileId file) const {
    const bool type = packaged::is_type_like(name);
    Targets targets;
    for (const std::string_view package : wildcards) {
      const auto more = type ? find_type(package, name, file) : find(package, name, file);
      targets.insert(targets.end(), more.begin(), more.end());
      if (type && !targets.empty()) break;
    }
    sort_distinct(targets);
    return targets;
  }

  const FileTable& files_;
  SourceSets sets_;
  std::deque<std::string> names_;  // what packages_ views
  Packages packages_;
  std::map<std::string_view, Packages> platforms_;
};

}  // namespace

std::unique_ptr<Resolver> make_jvm_resolver(const FileTable& files) {
  return std::make_unique<JvmResolver>(files);
}

}  // namespace kestrix::index
