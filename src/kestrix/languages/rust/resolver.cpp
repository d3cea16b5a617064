#include "kestrix/languages/rust/resolver.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "kestrix/languages/dependencies.h"
#include "kestrix/languages/rust/modules.h"
#include "kestrix/languages/rust/uses.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

// How often a name may be handed on, and how many modules are asked for it, before it is given up.
constexpr int kMostHops = 4;
constexpr int kMostAsked = 64;
// Declarations of one file that are tried to find where a name comes from.
constexpr std::size_t kMostTried = 64;

std::string_view take_first(std::string_view& path) {
  const std::size_t at = path.find("::");
  const std::string_view first = path.substr(0, at);
  path = at == path.npos ? std::string_view() : path.substr(at + 2);
  return first;
}

std::string append(const std::string& path, std::string_view part) {
  return path.empty() ? std::string(part) : path + "::" + std::string(part);
}

RustImport form_of(const ImportFact& import) { return static_cast<RustImport>(import.form); }

class RustResolver : public Resolver {
 public:
  explicit RustResolver(const FileTable& files) : files_(files), modules_(files), uses_(files) {}

  Resolution resolve(FileId file) const override {
    Dependencies found(file);
    if (modules_.is_limited(file)) found.limit();
    const auto& imports = files_.facts(file).imports;
    for (std::size_t i = 0; i < imports.size(); ++i) {
      switch (form_of(imports[i])) {
        case RustImport::kUse:
        case RustImport::kPath:
          add_names(file, imports[i], found);
          break;
        case RustImport::kCrate:
          add_crate(file, imports[i], found);
          break;
        case RustImport::kMod:
        case RustImport::kModFile:
          add_mod(file, imports, i, found);
          break;
        case RustImport::kInline:
          break;
      }
    }
    return found.take();
  }

 private:
  using Imports = std::vector<ImportFact>;

  // A module and what of a path is left below it.
  struct Spot {
    std::size_t crate;
    std::string module;
    FileId file;
    std::string rest;
  };

  void add_mod(FileId file, const Imports& imports, std::size_t at, Dependencies& found) const {
    const auto target = modules_.file_of_mod(file, imports[at]);
    if (target) {
      found.add(*target, 1 + imports[at].uses);
      const std::string_view name = module_of(imports[at]);
      found.bind({.local = name, .target = *target, .exported = name});
    } else if (form_of(imports[at]) == RustImport::kMod &&
               (at == 0 || form_of(imports[at - 1]) != RustImport::kModFile)) {
      found.miss();
    }
  }

  void add_crate(FileId file, const ImportFact& import, Dependencies& found) const {
    const auto* place = modules_.place_of(file);
    if (place == nullptr) return;
    const auto crate = modules_.crate_named(import.module, place->crate);
    const auto root = crate ? modules_.find(*crate, "") : std::nullopt;
    if (!root) return;
    found.add(*root, 1 + import.uses);
    found.bind({.local = import.local.empty() ? import.module : import.local, .target = *root});
  }

  static std::string_view module_of(const ImportFact& mod) {
    return form_of(mod) == RustImport::kMod ? mod.module : mod.names.front().name;
  }

  // A module as a whole, or what it declares or hands on. What stands in the file itself is found
  // there, but not what the file calls by another name or through its module.
  void bind(FileId file, const ImportedName& name, const Spot& spot, Dependencies& found) const {
    if (name.name == "*") {
      if (!spot.rest.empty() || spot.file != file) {
        found.bind({.local = "*",
                    .target = spot.file,
                    .name = keep(spot.rest),
                    .exported = name.exported});
      }
      return;
    }
    const std::string_view local = name.bound();
    const std::string_view target = spot.rest == name.name ? name.name : keep(spot.rest);
    if (spot.file == file && (target == local || spot.rest.empty())) return;
    found.bind({.local = local, .target = spot.file, .name = target, .exported = name.exported});
  }

  // "A::B" as "A.B", for as long as the resolver lives.
  std::string_view keep(std::string_view path) const {
    if (path.empty()) return {};
    std::string dotted;
    for (std::size_t at = 0; at < path.size(); ++at) {
      if (path[at] == ':') ++at;
      dotted += path[at] == ':' ? '.' : path[at];
    }
    const std::lock_guard lock(mutex_);
    return *kept_.insert(std::move(dotted)).first;
  }

  void add_names(FileId file, const ImportFact& import, Dependencies& found) const {
    const auto* place = modules_.place_of(file);
    if (place == nullptr) return;
    for (const ImportedName& name : import.names) {
      const bool all = name.name == "*";
      const std::string path = all ? import.module : append(import.module, name.name);
      const auto spot = walk(*place, path, file);
      if (!spot) continue;
      found.add(spot->file, 1 + name.uses);
      bind(file, name, *spot, found);
      if (spot->rest.empty()) continue;
      int asked = 0;
      const auto source = origin(*spot, kMostHops, asked);
      if (source && *source != spot->file) found.add(*source, 1 + name.uses);
      if (asked > kMostAsked) found.limit();
    }
  }

  // NOLINTBEGIN(misc-no-recursion): kMostHops at most

  // The innermost module that the path names.
  std::optional<Spot> walk(const RustModules::Place& place, std::string_view path,
                           std::optional<FileId> file) const {
    std::size_t crate = place.crate;
    std::string module = place.path;
    std::string held;
    std::string_view rest = path;
    const std::string_view first = take_first(rest);
    if (first == "crate") {
      module.clear();
    } else if (first == "super") {
      module = parent(module);
    } else if (first != "self") {
      auto start = start_of(place, path, file);
      if (!start) return std::nullopt;
      crate = start->crate;
      module = std::move(start->module);
      rest = held = std::move(start->rest);
    }
    while (rest == "super" || rest.starts_with("super::")) {
      take_first(rest);
      module = parent(module);
    }
    return descend(crate, std::move(module), rest);
  }

  static std::string parent(const std::string& module) {
    const std::size_t at = module.rfind("::");
    return at == std::string::npos ? "" : module.substr(0, at);
  }

  std::optional<Spot> descend(std::size_t crate, std::string module, std::string_view rest) const {
    auto file = modules_.find(crate, module);
    if (!file) return std::nullopt;
    while (!rest.empty()) {
      std::string_view below = rest;
      std::string inner = append(module, take_first(below));
      const auto next = modules_.find(crate, inner);
      if (!next) break;
      file = next;
      module = std::move(inner);
      rest = below;
    }
    return Spot{crate, std::move(module), *file, std::string(rest)};
  }

  // Where a path starts that says neither crate nor self nor super: a module below, a crate, a
  // module that a use declaration brought in, and in old editions a module of the root.
  std::optional<Spot> start_of(const RustModules::Place& place, std::string_view path,
                               std::optional<FileId> file) const {
    std::string_view rest = path;
    const std::string_view first = take_first(rest);
    if (modules_.find(place.crate, append(place.path, first))) {
      return Spot{place.crate, place.path, 0, std::string(path)};
    }
    if (const auto spot = brought_in(place, first, file)) {
      return Spot{spot->crate, spot->module, 0, std::string(rest)};
    }
    if (const auto crate = modules_.crate_named(first, place.crate)) {
      return Spot{*crate, "", 0, std::string(rest)};
    }
    if (modules_.find(place.crate, std::string(first))) {
      return Spot{place.crate, "", 0, std::string(path)};
    }
    return std::nullopt;
  }

  std::optional<Spot> brought_in(const RustModules::Place& place, std::string_view name,
                                 std::optional<FileId> file) const {
    if (!file) return std::nullopt;
    const auto named = uses_.binding(*file, name);
    const auto all = uses_.binding(*file, "*");
    std::size_t tried = 0;
    auto one = named.begin();
    auto some = all.begin();
    while ((one != named.end() || some != all.end()) && tried++ < kMostTried) {
      const bool wildcard = one == named.end() || (some != all.end() && some->place < one->place);
      const auto& [import, imported, at] = wildcard ? *some++ : *one++;
      if (!wildcard && import->module.empty() && imported->local.empty()) continue;
      const std::string_view wanted = wildcard ? name : imported->name;
      auto spot = walk(place, append(import->module, wanted), std::nullopt);
      if (spot && spot->rest.empty()) return spot;
    }
    return std::nullopt;
  }

  // The file that declares what is left of the path, through pub use. What is declared here and
  // handed on too is declared for one configuration and handed on for another.
  std::optional<FileId> origin(const Spot& spot, int hops, int& asked) const {
    if (++asked > kMostAsked) return std::nullopt;
    if (const auto source = handed_on(spot, false, hops, asked)) return source;
    std::string_view rest = spot.rest;
    const auto& declares = files_.facts(spot.file).declares;
    if (std::ranges::binary_search(declares, take_first(rest))) return spot.file;
    return handed_on(spot, true, hops, asked);
  }

  std::optional<FileId> handed_on(const Spot& spot, bool all, int hops, int& asked) const {
    std::string_view rest = spot.rest;
    const std::string_view name = take_first(rest);
    const auto* place = modules_.place_of(spot.file);
    if (hops == 0 || place == nullptr) return std::nullopt;
    const auto uses = uses_.handing_on(spot.file, all ? "*" : name);
    for (const auto& [import, imported, at] : uses.first(std::min(uses.size(), kMostTried))) {
      const std::string path = all ? append(import->module, spot.rest)
                                   : append(append(import->module, imported->name), rest);
      if (const auto source = declared_at(*place, path, all, hops - 1, asked)) return source;
    }
    return std::nullopt;
  }

  // A name that is handed on with others must be declared there; one that is named is believed.
  std::optional<FileId> declared_at(const RustModules::Place& place, const std::string& path,
                                    bool all, int hops, int& asked) const {
    const auto spot = walk(place, path, std::nullopt);
    if (!spot) return std::nullopt;
    if (spot->rest.empty()) return spot->file;
    const auto source = origin(*spot, hops, asked);
    return source || all ? source : std::optional(spot->file);
  }

  // NOLINTEND(misc-no-recursion)

  const FileTable& files_;
  RustModules modules_;
  RustUses uses_;
  mutable std::mutex mutex_;
  mutable std::unordered_set<std::string, SeededHash> kept_;
};

}  // namespace

std::unique_ptr<Resolver> make_rust_resolver(const FileTable& files) {
  return std::make_unique<RustResolver>(files);
}

}  // namespace kestrix::index
