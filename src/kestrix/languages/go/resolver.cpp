#include "kestrix/languages/go/resolver.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kestrix/languages/dependencies.h"
#include "kestrix/languages/go/modules.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

// A name that more files of a package declare than there are platforms to build for stands in
// programs of their own.
constexpr std::size_t kMostVariants = 12;
// Files of a package that is imported without a name.
constexpr std::size_t kMostBlank = 64;

bool is_test(std::string_view path) { return path.ends_with("_test.go"); }

class GoResolver : public Resolver {
 public:
  explicit GoResolver(const FileTable& files) : files_(files), modules_(files) {
    for (FileId id = 0; id < files.size(); ++id) {
      if (files.language(id) == "go" && !files.facts(id).package.empty()) add_file(id);
    }
  }

  Resolution resolve(FileId file) const override {
    Dependencies found(file);
    const std::string_view folder = folder_of(files_.path(file));
    const FileFacts& facts = files_.facts(file);
    Targets targets;
    for (const ImportFact& import : facts.imports) {
      const auto place = modules_.place_of(import.module, folder);
      if (!place) continue;
      const Package* package = importable(place->folder);
      if (package == nullptr) {
        if (place->own) found.miss();
      } else {
        // The tests beside a package may hand names of it on to tests in a package of their own.
        const bool beside = place->folder == folder && is_test(files_.path(file));
        const bool blank = static_cast<GoImport>(import.form) == GoImport::kBlank;
        if (blank && !add_blank(*package, targets)) found.limit();
        add_import(*package, import, facts, beside, targets);
        bind_import(*package, import, facts, beside, found);
      }
    }
    for (const auto& [target, uses] : targets) found.add(target, 1 + uses);
    add_own_package(file, folder, facts, found);
    return found.take();
  }

 private:
  using Declarations = std::unordered_map<std::string_view, std::vector<FileId>, SeededHash>;
  struct Package {
    std::vector<FileId> files;
    Declarations code;
    Declarations tests;
  };
  // What one folder holds, by the package that its files name.
  using Folder = std::map<std::string_view, Package>;
  using Targets = std::map<FileId, double>;

  void add_file(FileId id) {
    const std::string_view path = files_.path(id);
    const FileFacts& facts = files_.facts(id);
    Package& package = folders_[folder_of(path)][facts.package];
    if (!is_test(path)) package.files.push_back(id);
    auto& declarations = is_test(path) ? package.tests : package.code;
    for (const std::string& name : facts.declares) declarations[name].push_back(id);
  }

  // The package that an import of the folder means: the largest one beside programs and tests.
  const Package* importable(std::string_view folder) const {
    const auto found = folders_.find(folder);
    if (found == folders_.end()) return nullptr;
    const Package* best = nullptr;
    const Package* program = nullptr;
    for (const auto& [name, package] : found->second) {
      if (package.files.empty()) continue;
      const Package*& kept = name == "main" ? program : best;
      if (kept == nullptr || kept->files.size() < package.files.size()) kept = &package;
    }
    return best != nullptr ? best : program;
  }

  static const std::vector<FileId>* declarers(const Declarations& declarations,
                                              std::string_view name) {
    const auto found = declarations.find(name);
    if (found == declarations.end() || found->second.size() > kMostVariants) return nullptr;
    return &found->second;
  }

  static void add_import(const Package& package, const ImportFact& import, const FileFacts& facts,
                         bool beside, Targets& targets) {
    switch (static_cast<GoImport>(import.form)) {
      case GoImport::kBlank:
        return;
      case GoImport::kDot:
        for (const NameUse& use : facts.uses) add_name(package.code, use.name, use.uses, targets);
        return;
      case GoImport::kNamed:
        bool any = false;
        for (const ImportedName& name : import.names) {
          any |= add_name(package.code, name.name, name.uses, targets) ||
                 (beside && add_name(package.tests, name.name, name.uses, targets));
        }
        if (!any && package.files.size() == 1) targets.try_emplace(package.files.front(), 0);
    }
  }

  static bool add_name(const Declarations& declarations, std::string_view name, double uses,
                       Targets& targets) {
    const auto* files = declarers(declarations, name);
    if (files == nullptr) return false;
    for (const FileId file : *files) targets[file] += uses;
    return true;
  }

  // The one file that declares a name; what stands in several for several platforms is none's.
  static std::optional<FileId> declarer(const Package& package, std::string_view name, bool tests) {
    const auto* files = declarers(package.code, name);
    if (files == nullptr && tests) files = declarers(package.tests, name);
    if (files == nullptr || files->size() != 1) return std::nullopt;
    return files->front();
  }

  static void bind_import(const Package& package, const ImportFact& import, const FileFacts& facts,
                          bool beside, Dependencies& found) {
    if (static_cast<GoImport>(import.form) == GoImport::kDot)
      return bind(package, facts, beside, found);
    for (const ImportedName& name : import.names) {
      const auto file = declarer(package, name.name, beside);
      if (file) found.bind({.local = name.local, .target = *file, .name = name.name});
    }
  }

  // Names that need no package before them.
  static void bind(const Package& package, const FileFacts& facts, bool tests,
                   Dependencies& found) {
    for (const NameUse& use : facts.uses) {
      const auto file = declarer(package, use.name, tests);
      if (file) found.bind({.local = use.name, .target = *file, .name = use.name});
    }
  }

  // Whether that was all of them.
  static bool add_blank(const Package& package, Targets& targets) {
    const auto* declaring = declarers(package.code, "init");
    const std::vector<FileId>& files = declaring != nullptr ? *declaring : package.files;
    const std::size_t count = std::min(files.size(), kMostBlank);
    for (std::size_t i = 0; i < count; ++i) targets.try_emplace(files[i], 0);
    return count == files.size();
  }

  void add_own_package(FileId file, std::string_view folder, const FileFacts& facts,
                       Dependencies& found) const {
    const auto packages = folders_.find(folder);
    if (packages == folders_.end()) return;
    const auto package = packages->second.find(facts.package);
    if (package == packages->second.end()) return;
    const bool test = is_test(files_.path(file));
    bind(package->second, facts, test, found);
    for (const NameUse& use : facts.uses) {
      const auto* code = declarers(package->second.code, use.name);
      if (code == nullptr && test) code = declarers(package->second.tests, use.name);
      if (code == nullptr) continue;
      for (const FileId target : *code) found.add(target, use.uses);
    }
  }

  const FileTable& files_;
  GoModules modules_;
  std::unordered_map<std::string_view, Folder, SeededHash> folders_;
};

}  // namespace

std::unique_ptr<Resolver> make_go_resolver(const FileTable& files) {
  return std::make_unique<GoResolver>(files);
}

}  // namespace kestrix::index
