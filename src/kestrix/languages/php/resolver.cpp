#include "kestrix/languages/php/resolver.h"

#include <optional>
#include <string_view>

#include "kestrix/languages/dependencies.h"
#include "kestrix/languages/packaged/packages.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

class PhpResolver : public Resolver {
 public:
  explicit PhpResolver(const FileTable& files) : files_(files), packages_(files) {
    for (FileId id = 0; id < files.size(); ++id) {
      if (files.language(id) != "php") continue;
      const FileFacts& facts = files.facts(id);
      for (const std::string& name : facts.declares) packages_.declare(facts.package, name, id);
    }
  }

  Resolution resolve(FileId file) const override {
    const FileFacts& facts = files_.facts(file);
    Dependencies found(file);
    for (const ImportFact& import : facts.imports) {
      const auto form = static_cast<PhpImport>(import.form);
      if (form == PhpImport::kUse || form == PhpImport::kInCode) {
        resolve_name(import, file, found);
      } else {
        resolve_file(import, file, found);
      }
    }
    for (const NameUse& use : facts.uses) {
      auto own = packages_.find_one(facts.package, use.name, file);
      // Functions without an import may be those of no namespace.
      if (!own && ascii::is_lower(use.name.front())) own = packages_.find_one("", use.name, file);
      if (!own) continue;
      found.add(*own, use.uses);
      found.bind({.local = use.name, .target = *own, .name = use.name});
    }
    return found.take();
  }

 private:
  void resolve_name(const ImportFact& import, FileId file, Dependencies& found) const {
    const std::string_view name = import.module;
    const std::size_t dot = name.rfind('.');
    const std::string_view package = name.substr(0, dot == std::string_view::npos ? 0 : dot);
    const auto targets = packages_.find(package, name.substr(dot + 1), file);
    const bool stated = static_cast<PhpImport>(import.form) == PhpImport::kUse;
    for (const FileId target : targets) found.add(target, (stated ? 1.0 : 0.0) + import.uses);
    if (const auto one = packages_.find_one(package, name.substr(dot + 1), file)) {
      found.bind({.local = import.local, .target = *one, .name = name.substr(dot + 1)});
    }
    if (stated && targets.empty() && !package.empty() && packages_.contains(package, file))
      found.miss();
  }

  void resolve_file(const ImportFact& import, FileId file, Dependencies& found) const {
    auto target = find_below(folder_of(files_.path(file)), import.module);
    const bool here = static_cast<PhpImport>(import.form) == PhpImport::kHere;
    if (!target && !here) target = find_below("", import.module);
    if (target) {
      found.add(*target, 1.0);
      found.bind({.local = "*", .target = *target, .exported = "*"});
    } else if (here) {
      found.miss();
    }
  }

  std::optional<FileId> find_below(std::string_view folder, std::string_view path) const {
    const auto joined = join_normal(folder, path);
    return joined ? files_.find(*joined) : std::nullopt;
  }

  const FileTable& files_;
  Packages packages_;
};

}  // namespace

std::unique_ptr<Resolver> make_php_resolver(const FileTable& files) {
  return std::make_unique<PhpResolver>(files);
}

}  // namespace kestrix::index
