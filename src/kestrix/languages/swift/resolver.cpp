#include "kestrix/languages/swift/resolver.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/languages/dependencies.h"
#include "kestrix/languages/packaged/packages.h"
#include "kestrix/languages/packaged/reading.h"
#include "kestrix/languages/swift/modules.h"
#include "kestrix/text/paths.h"

namespace kestrix::index {
namespace {

constexpr std::size_t kMostParts = 64;    // extensions of one type that count
constexpr std::size_t kMostModules = 64;  // that one file knows

class SwiftResolver : public Resolver {
 public:
  explicit SwiftResolver(const FileTable& files)
      : files_(files), modules_(files), packages_(files) {
    for (FileId id = 0; id < files.size(); ++id) {
      if (files.language(id) == "swift") add_file(id);
    }
  }

  Resolution resolve(FileId file) const override {
    Dependencies found(file);
    const std::vector<std::string_view> known = known_modules(file, found);
    for (const NameUse& use : files_.facts(file).uses) resolve_use(use, known, file, found);
    add_parts(file, found);
    return found.take();
  }

 private:
  void add_file(FileId id) {
    const std::string_view module = modules_.module_of(files_.path(id));
    const FileFacts& facts = files_.facts(id);
    for (const std::string_view name : facts.declares) {
      if (name.starts_with(kExtended)) {
        std::vector<FileId>& parts = parts_[{module, name.substr(kExtended.size())}];
        if (parts.size() < kMostParts) parts.push_back(id);
      } else {
        packages_.declare(module, name, id);
      }
    }
    for (const ImportFact& import : facts.imports) {
      if (static_cast<SwiftImport>(import.form) == SwiftImport::kReexport)
        handed_on_[module].insert(import.module);
    }
  }

  // The own module first, then those that are imported, and what they hand on.
  std::vector<std::string_view> known_modules(FileId file, Dependencies& found) const {
    std::vector<std::string_view> known{modules_.module_of(files_.path(file))};
    const auto add = [&](std::string_view module) {
      const bool listed = std::ranges::find(known, module) != known.end();
      if (listed || !modules_.contains(module)) return;
      if (known.size() < kMostModules)
        known.push_back(module);
      else
        found.limit();
    };
    for (const ImportFact& import : files_.facts(file).imports) add(import.module);
    for (std::size_t at = 0; at < known.size(); ++at) {
      const auto more = handed_on_.find(known[at]);
      if (more == handed_on_.end()) continue;
      for (const std::string_view module : more->second) add(module);
    }
    return known;
  }

  void resolve_use(const NameUse& use, const std::vector<std::string_view>& known, FileId file,
                   Dependencies& found) const {
    for (const std::string_view module : known) {
      const auto targets = packages_.find(module, use.name, file);
      if (targets.empty()) continue;
      // Which of several functions is called only their parameters say.
      if (targets.size() > 1 && !packaged::is_type_like(use.name)) return;
      for (const FileId target : targets) found.add(target, use.uses);
      if (const auto one = packages_.find_one(module, use.name, file))
        found.bind({.local = use.name, .target = *one, .name = use.name});
      return;
    }
  }

  // What the module's other files add to the types of this one.
  void add_parts(FileId file, Dependencies& found) const {
    const std::string_view module = modules_.module_of(files_.path(file));
    for (const std::string_view name : files_.facts(file).declares) {
      const auto parts = parts_.find({module, name});
      if (parts == parts_.end()) continue;
      for (const FileId part : parts->second) {
        if (part != file) found.bind({.local = name, .target = part, .name = name});
      }
    }
  }

  const FileTable& files_;
  SwiftModules modules_;
  Packages packages_;
  std::map<std::pair<std::string_view, std::string_view>, std::vector<FileId>> parts_;  // by type
  std::map<std::string_view, std::set<std::string_view>> handed_on_;                    // by module
};

}  // namespace

std::unique_ptr<Resolver> make_swift_resolver(const FileTable& files) {
  return std::make_unique<SwiftResolver>(files);
}

}  // namespace kestrix::index
