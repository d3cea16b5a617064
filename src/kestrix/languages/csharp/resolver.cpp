#include "kestrix/languages/csharp/resolver.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kestrix/languages/csharp/projects.h"
#include "kestrix/languages/csharp/types.h"
#include "kestrix/languages/dependencies.h"

namespace kestrix::index {
namespace {

using Found = DotnetTypes::Found;

constexpr std::string_view kPlatform = "System";
// Roots of which a repository holds a part at most: what is missing there is a library's.
constexpr std::array<std::string_view, 2> kShared = {kPlatform, "Microsoft"};
// What projects of web applications and services import unsaid.
constexpr std::array<std::string_view, 6> kImplicit = {"Microsoft.AspNetCore.Builder",
                                                       "Microsoft.AspNetCore.Hosting",
                                                       "Microsoft.AspNetCore.Routing",
                                                       "Microsoft.Extensions.Configuration",
                                                       "Microsoft.Extensions.DependencyInjection",
                                                       "Microsoft.Extensions.Hosting"};
constexpr std::string_view kAllMembers = "*";
constexpr std::size_t kMostSpaces = 256;
constexpr std::size_t kMostArity = 4;

std::string_view first_part(std::string_view dotted) { return dotted.substr(0, dotted.find('.')); }

std::string_view last_part(std::string_view dotted) { return dotted.substr(dotted.rfind('.') + 1); }

std::string_view without_last_part(std::string_view dotted) {
  const std::size_t dot = dotted.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : dotted.substr(0, dot);
}

std::string below(std::string_view space, std::string_view name) {
  return space.empty() ? std::string(name) : std::string(space) + "." + std::string(name);
}

// Where a file's names are looked up.
struct Spaces {
  std::vector<std::string_view> own;  // the file's namespaces and those around them, inner first
  std::vector<std::string_view> imported;
  std::vector<const GlobalUsing*> aliases;
  bool cut = false;  // there are more

  void import(std::string_view name) {
    const bool known = std::ranges::find(imported, name) != imported.end();
    if (known) return;
    cut |= imported.size() >= kMostSpaces;
    if (imported.size() < kMostSpaces) imported.push_back(name);
  }
};

class CSharpResolver : public Resolver {
 public:
  explicit CSharpResolver(const FileTable& files) : files_(files), types_(files) {
    for (FileId id = 0; id < files.size(); ++id) {
      if (files.language(id) != "csharp") continue;
      for (const std::string& name : files.facts(id).declares) {
        const Declared declared = parse(name);
        types_.declare(declared.space, declared.name, id, declared.partial);
        if (!declared.name.starts_with(kMethodMark)) continue;
        methods_.try_emplace({id, declared.name}, below(declared.holder, declared.name.substr(1)));
      }
    }
  }

  Resolution resolve(FileId file) const override {
    const FileFacts& facts = files_.facts(file);
    Dependencies found(file);
    Spaces spaces = own_spaces(file);
    for (const ImportFact& import : facts.imports) {
      if (static_cast<CSharpImport>(import.form) != CSharpImport::kInCode) {
        resolve_directive(import, file, spaces, found);
      }
    }
    add_project(file, spaces, found);
    for (const ImportFact& import : facts.imports) {
      if (static_cast<CSharpImport>(import.form) == CSharpImport::kInCode) {
        resolve_chain(import, file, spaces, found);
      }
    }
    resolve_uses(file, spaces, found);
    add_other_parts(file, found);
    if (spaces.cut) found.limit();
    return found.take();
  }

 private:
  struct Declared {
    std::string_view space;
    std::string_view name;
    std::string_view holder;  // of an extension method: its class
    bool partial;
  };

  static Declared parse(std::string_view declared) {
    const bool partial = declared.starts_with(kPartial);
    if (partial) declared.remove_prefix(kPartial.size());
    const std::string_view name = last_part(declared);
    const std::size_t mark = name.find(kMethodMark);
    const bool method = mark != std::string_view::npos;
    return {without_last_part(declared), method ? name.substr(mark) : name,
            method ? name.substr(0, mark) : std::string_view(), partial};
  }

  Found find(std::string_view space, std::string_view name, FileId from) const {
    const bool hidden =
        first_part(space) == kPlatform && first_part(files_.facts(from).package) != kPlatform;
    if (hidden) return {};
    Found found = types_.find(space, name, from);
    // Which of several methods is called takes a compiler to tell.
    if (name.starts_with(kMethodMark) && found.files.size() > 1) found.files.clear();
    return found;
  }

  // Looks a dotted name up, whose last parts may be nested types or members.
  Found find_dotted(std::string_view dotted, std::size_t least_parts, FileId from) const {
    auto parts = static_cast<std::size_t>(std::ranges::count(dotted, '.')) + 1;
    for (; parts >= least_parts && !dotted.empty(); --parts, dotted = without_last_part(dotted)) {
      const auto space = without_last_part(dotted);
      if (!space.empty() && !types_.has_space(space)) continue;
      Found found = find_any_arity(space, last_part(dotted), from);
      if (!found.empty()) return found;
    }
    return {};
  }

  Found find_any_arity(std::string_view space, std::string_view name, FileId from) const {
    Found found = find(space, name, from);
    for (std::size_t arity = 1; found.empty() && arity <= kMostArity; ++arity) {
      if (name.find(kArityMark) != name.npos) break;
      found = find(space, std::string(name) + kArityMark + std::to_string(arity), from);
    }
    return found;
  }

  // Makes `local` stand for what was found, if that is one thing.
  void bind(std::string_view local, const Found& target, Dependencies& found) const {
    const auto file = types_.main_of(target);
    if (!file) return;
    std::string_view name = target.name.substr(0, target.name.find(kArityMark));
    if (name.starts_with(kMethodMark)) {
      const auto method = methods_.find({*file, name});
      if (method == methods_.end()) return;
      name = method->second;
    }
    found.bind({.local = local, .target = *file, .name = name});
  }

  Spaces own_spaces(FileId file) const {
    const FileFacts& facts = files_.facts(file);
    std::vector<std::string_view> own = {facts.package, ""};
    for (const std::string& name : facts.declares) {
      const std::string_view space = parse(name).space;
      if (space != own.back()) own.push_back(space);
    }
    for (std::size_t i = 0; i < own.size() && own.size() < kMostSpaces; ++i) {
      if (!own[i].empty()) own.push_back(without_last_part(own[i]));
    }
    std::ranges::sort(own, [](std::string_view a, std::string_view b) {
      return a.size() != b.size() ? a.size() > b.size() : a < b;
    });
    own.erase(std::unique(own.begin(), own.end()), own.end());
    const bool cut = own.size() > kMostSpaces;
    if (cut) own.resize(kMostSpaces);
    return {.own = std::move(own), .imported = {}, .aliases = {}, .cut = cut};
  }

  void resolve_directive(const ImportFact& import, FileId file, Spaces& spaces,
                         Dependencies& found) const {
    const auto form = static_cast<CSharpImport>(import.form);
    const std::string_view space = visible_space(import, spaces);
    if (form == CSharpImport::kNamespace || form == CSharpImport::kGlobalNamespace) {
      if (!space.empty()) return spaces.import(space);
      if (looks_local(import.module, file)) found.miss();
      return;
    }
    if (!space.empty()) return;  // an alias of a namespace
    const Found targets = find_named(import, file, spaces);
    for (const FileId target : targets.files) found.add(target, 1.0 + import.uses);
    if (targets.empty() && looks_local(import.module, file)) found.miss();
    bind(import.names.empty() ? kAllMembers : import.names.front().name, targets, found);
  }

  // The namespace of the repository that a directive names; "" when it names none. Inside of a
  // namespace the name may be relative.
  std::string_view visible_space(const ImportFact& import, const Spaces& spaces) const {
    for (const std::string_view own : spaces.own) {
      if (import.level == 0 && !own.empty()) continue;
      const std::string_view found = types_.space(below(own, import.module));
      if (!found.empty()) return found;
    }
    return {};
  }

  Found find_named(const ImportFact& import, FileId file, const Spaces& spaces) const {
    for (const std::string_view own : spaces.own) {
      if (import.level == 0 && !own.empty()) continue;
      Found found = find_dotted(below(own, import.module), 1, file);
      if (!found.empty()) return found;
    }
    return {};
  }

  bool looks_local(std::string_view name, FileId from) const {
    const std::string_view root = first_part(name);
    const bool shared = std::ranges::find(kShared, root) != kShared.end() &&
                        first_part(files_.facts(from).package) != root;
    const std::string_view around = without_last_part(name);
    return !shared && !around.empty() && types_.has_space(around);
  }

  void add_project(FileId file, Spaces& spaces, Dependencies& found) const {
    const DotnetProjects& projects = types_.projects();
    for (const GlobalUsing& directive : projects.global_usings(projects.project_of(file))) {
      if (!directive.alias.empty()) {
        spaces.aliases.push_back(&directive);
      } else if (directive.type) {
        bind(kAllMembers, find_dotted(directive.name, 1, file), found);
      } else if (types_.has_space(directive.name)) {
        spaces.import(directive.name);
      }
    }
    for (const std::string_view space : kImplicit) {
      if (types_.has_space(space)) spaces.import(space);
    }
  }

  void resolve_chain(const ImportFact& import, FileId file, const Spaces& spaces,
                     Dependencies& found) const {
    for (const std::string_view own : spaces.own) {
      const auto around = static_cast<std::size_t>(std::ranges::count(own, '.'));
      const std::size_t own_parts = own.empty() ? 0 : around + 1;
      if (!types_.has_space(below(own, first_part(import.module)))) continue;
      const std::string whole = below(own, import.module);
      const Found targets = find_dotted(whole, own_parts + 2, file);
      for (const FileId target : targets.files) found.add(target, import.uses);
      if (!targets.empty()) return bind_chain(import, whole, targets, found);
    }
  }

  // Of what the code spells out the parts up to the type stand for it.
  void bind_chain(const ImportFact& import, std::string_view whole, const Found& targets,
                  Dependencies& found) const {
    const std::string_view type = targets.name.substr(0, targets.name.find(kArityMark));
    std::string_view written = import.local.empty() ? import.module : import.local;
    while (!whole.empty() && last_part(whole) != type) {
      whole = without_last_part(whole);
      written = without_last_part(written);
    }
    if (!written.empty()) bind(written, targets, found);
  }

  void resolve_uses(FileId file, const Spaces& spaces, Dependencies& found) const {
    std::unordered_set<FileId> imported;
    for (const NameUse& use : files_.facts(file).uses) {
      std::string_view name = use.name;
      const bool attribute = name.starts_with(kAttributeMark);
      if (attribute) name.remove_prefix(1);
      const std::string_view local = name.substr(0, name.find(kArityMark));
      Used target;
      if (attribute) target = find_used(attribute_name(name), file, spaces);
      if (target.empty()) target = find_used(name, file, spaces);
      bind(local, target, found);
      for (const FileId at : target.files) {
        const bool first = target.imported && imported.insert(at).second;
        found.add(at, (first ? 1.0 : 0.0) + use.uses);
      }
    }
  }

  void add_other_parts(FileId file, Dependencies& found) const {
    for (const std::string& declared_name : files_.facts(file).declares) {
      const Declared declared = parse(declared_name);
      if (!declared.partial) continue;
      const Found parts = find(declared.space, declared.name, file);
      for (const FileId part : parts.files) {
        found.add(part, 1.0);
        const std::string_view name = parts.name.substr(0, parts.name.find(kArityMark));
        found.bind({.local = name, .target = part, .name = name});
      }
    }
  }

  static std::string attribute_name(std::string_view name) {
    const std::size_t end = std::min(name.find(kArityMark), name.size());
    return std::string(name.substr(0, end)) + "Attribute" + std::string(name.substr(end));
  }

  struct Used : Found {
    Used() = default;
    Used(Found found, bool from_import) : Found(std::move(found)), imported(from_import) {}
    bool imported = false;
  };

  Used find_used(std::string_view name, FileId file, const Spaces& spaces) const {
    for (const std::string_view space : spaces.own) {
      Found own = find(space, name, file);
      if (!own.empty()) return {std::move(own), false};
    }
    for (const GlobalUsing* alias : spaces.aliases) {
      if (alias->alias == name) return {find_dotted(alias->name, 1, file), true};
    }
    for (const std::string_view space : spaces.imported) {
      Found targets = find(space, name, file);
      if (!targets.empty()) return {std::move(targets), true};
    }
    return {};
  }

  const FileTable& files_;
  DotnetTypes types_;
  // What extension methods are called by those who name their classes, too.
  std::map<std::pair<FileId, std::string_view>, std::string> methods_;
};

}  // namespace

std::unique_ptr<Resolver> make_csharp_resolver(const FileTable& files) {
  return std::make_unique<CSharpResolver>(files);
}

}  // namespace kestrix::index
