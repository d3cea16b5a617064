#include "kestrix/languages/csharp/resolver.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "kestrix/languages/dependencies.h"
#include "kestrix/languages/csharp/projects.h"
#include "kestrix/languages/csharp/types.h"

namespace kestrix::index {
namespace {

using Files = std::vector<FileId>;

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

  void import(std::string_view name) {
    const bool known = std::ranges::find(imported, name) != imported.end();
    if (!known && imported.size() < kMostSpaces) imported.push_back(name);
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
    add_project(file, spaces);
    for (const ImportFact& import : facts.imports) {
      if (static_cast<CSharpImport>(import.form) == CSharpImport::kInCode) {
        resolve_chain(import, file, spaces, found);
      }
    }
    resolve_uses(file, spaces, found);
    add_other_parts(file, found);
    return found.take();
  }

 private:
  struct Declared {
    std::string_view space;
    std::string_view name;
    bool partial;
  };

  static Declared parse(std::string_view declared) {
    const bool partial = declared.starts_with(kPartial);
    if (partial) declared.remove_prefix(kPartial.size());
    return {without_last_part(declared), last_part(declared), partial};
  }

  Files find(std::string_view space, std::string_view name, FileId from) const {
    const bool hidden =
        first_part(space) == kPlatform && first_part(files_.facts(from).package) != kPlatform;
    if (hidden) return {};
    Files files = types_.find(space, name, from);
    // Which of several methods is called takes a compiler to tell.
    if (name.starts_with(kMethodMark) && files.size() > 1) files.clear();
    return files;
  }

  // Looks a dotted name up, whose last parts may be nested types or members.
  Files find_dotted(std::string_view dotted, std::size_t least_parts, FileId from) const {
    auto parts = static_cast<std::size_t>(std::ranges::count(dotted, '.')) + 1;
    for (; parts >= least_parts && !dotted.empty(); --parts, dotted = without_last_part(dotted)) {
      const auto space = without_last_part(dotted);
      if (!space.empty() && !types_.has_space(space)) continue;
      if (Files files = find_any_arity(space, last_part(dotted), from); !files.empty()) {
        return files;
      }
    }
    return {};
  }

  Files find_any_arity(std::string_view space, std::string_view name, FileId from) const {
    Files files = find(space, name, from);
    for (std::size_t arity = 1; files.empty() && arity <= kMostArity; ++arity) {
      if (name.find(kArityMark) != name.npos) break;
      files = find(space, std::string(name) + kArityMark + std::to_string(arity), from);
    }
    return files;
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
    if (own.size() > kMostSpaces) own.resize(kMostSpaces);
    return {.own = std::move(own), .imported = {}, .aliases = {}};
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
    const Files targets = find_named(import, file, spaces);
    for (const FileId target : targets) found.add(target, 1.0 + import.uses);
    if (targets.empty() && looks_local(import.module, file)) found.miss();
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

  Files find_named(const ImportFact& import, FileId file, const Spaces& spaces) const {
    for (const std::string_view own : spaces.own) {
      if (import.level == 0 && !own.empty()) continue;
      Files files = find_dotted(below(own, import.module), 1, file);
      if (!files.empty()) return files;
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

  void add_project(FileId file, Spaces& spaces) const {
    const DotnetProjects& projects = types_.projects();
    for (const GlobalUsing& directive : projects.global_usings(projects.project_of(file))) {
      if (!directive.alias.empty()) {
        spaces.aliases.push_back(&directive);
      } else if (!directive.type && types_.has_space(directive.name)) {
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
      const Files targets = find_dotted(below(own, import.module), own_parts + 2, file);
      for (const FileId target : targets) found.add(target, import.uses);
      if (!targets.empty()) return;
    }
  }

  void resolve_uses(FileId file, const Spaces& spaces, Dependencies& found) const {
    std::unordered_set<FileId> imported;
    for (const NameUse& use : files_.facts(file).uses) {
      std::string_view name = use.name;
      const bool attribute = name.starts_with(kAttributeMark);
      if (attribute) name.remove_prefix(1);
      if (attribute && resolve_use(attribute_name(name), use.uses, file, spaces, imported, found)) {
        continue;
      }
      resolve_use(name, use.uses, file, spaces, imported, found);
    }
  }

  void add_other_parts(FileId file, Dependencies& found) const {
    for (const std::string& name : files_.facts(file).declares) {
      const Declared declared = parse(name);
      if (!declared.partial) continue;
      for (const FileId part : find(declared.space, declared.name, file)) found.add(part, 1.0);
    }
  }

  static std::string attribute_name(std::string_view name) {
    const std::size_t end = std::min(name.find(kArityMark), name.size());
    return std::string(name.substr(0, end)) + "Attribute" + std::string(name.substr(end));
  }

  bool resolve_use(std::string_view name, double uses, FileId file, const Spaces& spaces,
                   std::unordered_set<FileId>& imported, Dependencies& found) const {
    for (const std::string_view space : spaces.own) {
      const Files own = find(space, name, file);
      for (const FileId target : own) found.add(target, uses);
      if (!own.empty()) return true;
    }
    for (const GlobalUsing* alias : spaces.aliases) {
      if (alias->alias != name) continue;
      for (const FileId target : find_dotted(alias->name, 1, file)) found.add(target, 1.0 + uses);
      return true;
    }
    for (const std::string_view space : spaces.imported) {
      const Files targets = find(space, name, file);
      for (const FileId target : targets) {
        found.add(target, (imported.insert(target).second ? 1.0 : 0.0) + uses);
      }
      if (!targets.empty()) return true;
    }
    return false;
  }

  const FileTable& files_;
  DotnetTypes types_;
};

}  // namespace

std::unique_ptr<Resolver> make_csharp_resolver(const FileTable& files) {
  return std::make_unique<CSharpResolver>(files);
}

}  // namespace kestrix::index
