#include "kestrix/languages/c_family/resolver.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "kestrix/languages/c_family/compile_commands.h"
#include "kestrix/languages/dependencies.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 4> kHeaderFolders = {"", "include", "src", "inc"};

// Of longer names the last parts count.
constexpr std::size_t kMostParts = 16;
constexpr std::size_t kMostFolders = 64;  // above one file, before the top

template <class Visit>
void for_each_near_folder(std::string_view folder, Visit visit) {
  for (std::size_t i = 0; i < kMostFolders && !folder.empty(); ++i, folder = folder_of(folder))
    visit(folder);
  visit(std::string_view());
}

bool is_angled(const ImportFact& import) {
  return import.form == static_cast<std::uint16_t>(IncludeForm::kAngled);
}

// A name as a path below some root: "../a.h" and "./a.h" as "a.h".
std::string below_root(std::string_view name) {
  while (name.starts_with("../") || name.starts_with("./")) name.remove_prefix(name.find('/') + 1);
  return join_normal("", name).value_or("");
}

std::string_view first_folder(std::string_view name) {
  const std::size_t slash = name.find('/');
  return slash == std::string_view::npos ? std::string_view() : name.substr(0, slash);
}

std::string_view root_of(std::string_view path, std::string_view name) {
  path.remove_suffix(name.size());
  return path.empty() ? path : path.substr(0, path.size() - 1);
}

// Both ascend; the shorter list is gone through.
double uses_of(const std::vector<NameUse>& uses, const std::vector<std::string>& names) {
  double sum = 0;
  if (names.size() < uses.size()) {
    for (const std::string& name : names) {
      const auto use = std::ranges::lower_bound(uses, name, {}, &NameUse::name);
      if (use != uses.end() && use->name == name) sum += use->uses;
    }
    return sum;
  }
  for (const NameUse& use : uses) {
    if (std::ranges::binary_search(names, use.name)) sum += use.uses;
  }
  return sum;
}

class IncludeResolver : public Resolver {
 public:
  explicit IncludeResolver(const FileTable& files)
      : files_(files), folders_(include_folders_of_compile_commands(files)) {
    for (FileId id = 0; id < files.size(); ++id) {
      if (includes(id)) add_names(id);
    }
    for (FileId id = 0; id < files.size(); ++id) {
      if (included_.contains(std::string(base_name(files.path(id))))) add_suffixes(id);
    }
    for (FileId id = 0; id < files.size(); ++id) {
      if (includes(id)) add_votes(id);
    }
    for (FileId id = 0; id < files.size(); ++id) {
      if (included_.contains(std::string(base_name(files.path(id))))) add_nearest(id);
    }
  }

  Resolution resolve(FileId file) const override {
    Dependencies found(file);
    const FileFacts& facts = files_.facts(file);
    std::unordered_map<FileId, double> uses;  // a header may be included again and again
    for (const ImportFact& import : facts.imports) {
      const auto target = find(folder_of(files_.path(file)), import);
      if (target) {
        const auto [known, fresh] = uses.try_emplace(*target);
        if (fresh) known->second = uses_of(facts.uses, files_.facts(*target).declares);
        found.add(*target, 1 + known->second);
        // What a header includes, those who include the header know, too.
        if (*target != file) found.bind({.local = "*", .target = *target, .exported = "*"});
      } else if (looks_local(import)) {
        found.miss();
        if (folders_.size() >= kMostCommandFolders) found.limit();
      }
    }
    return found.take();
  }

 private:
  // The files whose paths end in a name that is included.
  struct Suffix {
    FileId first;
    std::uint32_t count;
  };

  // Of the files below a folder whose paths end in a name, those from the roots most used.
  struct Best {
    FileId first;
    std::optional<FileId> second;
  };

  bool includes(FileId id) const {
    const std::string_view language = files_.language(id);
    return language == "c" || language == "cpp";
  }

  void add_names(FileId id) {
    for (const ImportFact& import : files_.facts(id).imports) {
      included_.insert(std::string(base_name(import.module)));
    }
  }

  void add_suffixes(FileId id) {
    const std::string_view path = files_.path(id);
    std::size_t at = path.size();
    for (std::size_t parts = 0; at > 0 && parts < kMostParts; ++parts) {
      at = path.rfind('/', at - 1);
      const std::string_view suffix = at == std::string_view::npos ? path : path.substr(at + 1);
      ++suffixes_.try_emplace(suffix, Suffix{id, 0}).first->second.count;
      if (at == std::string_view::npos) return;
    }
  }

  void add_votes(FileId id) {
    const std::string_view folder = folder_of(files_.path(id));
    for (const ImportFact& import : files_.facts(id).imports) {
      const std::string name = below_root(import.module);
      if (is_system_header(name) || (!is_angled(import) && find_relative(folder, import))) continue;
      const auto suffix = suffixes_.find(name);
      if (suffix == suffixes_.end() || suffix->second.count > 1) continue;
      const std::string_view path = files_.path(suffix->second.first);
      if (!is_angled(import) || !first_folder(name).empty()) ++votes_[root_of(path, name)];
      local_.insert(std::string(first_folder(name)));
    }
  }

  // For a name that several files end in, each folder above one of them knows the best one.
  void add_nearest(FileId id) {
    const std::string_view path = files_.path(id);
    std::size_t parts = 0;
    for (std::size_t at = path.rfind('/');
         at != std::string_view::npos && at > 0 && parts++ < kMostParts;
         at = path.rfind('/', at - 1)) {
      const std::string_view name = path.substr(at + 1);
      if (suffixes_.at(name).count == 1) return;
      auto& nearest = nearest_[name];
      for_each_near_folder(root_of(path, name), [&](std::string_view folder) {
        const auto [entry, fresh] = nearest.try_emplace(folder, Best{id, std::nullopt});
        if (!fresh) consider(id, name, entry->second);
      });
    }
  }

  void consider(FileId id, std::string_view name, Best& best) const {
    const std::uint32_t own = votes(id, name);
    if (own > votes(best.first, name)) {
      best = {id, best.first};
    } else if (!best.second || own > votes(*best.second, name)) {
      best.second = id;
    }
  }

  std::uint32_t votes(FileId id, std::string_view name) const {
    const auto found = votes_.find(root_of(files_.path(id), name));
    return found == votes_.end() ? 0 : found->second;
  }

  std::optional<FileId> find(std::string_view folder, const ImportFact& import) const {
    const bool angled = is_angled(import);
    if (!angled) {
      if (const auto target = find_relative(folder, import)) return target;
    }
    const std::string name = below_root(import.module);
    if (name.empty()) return std::nullopt;
    for (const std::string& root : folders_) {
      if (const auto target = files_.find(join(root, name))) return target;
    }
    const bool system = is_system_header(name);
    const bool bare = first_folder(name).empty();
    const auto suffix = suffixes_.find(name);
    if (suffix == suffixes_.end() || (system && angled && bare)) {
      return std::nullopt;
    }
    if (system && (angled || bare)) return find_above(folder, name, std::nullopt);
    if (suffix->second.count > 1) return find_near(folder, name, angled);
    const FileId only = suffix->second.first;
    const bool doubtful = angled && bare;
    return doubtful && !speaks_for(root_of(files_.path(only), name), folder) ? std::nullopt
                                                                             : std::optional(only);
  }

  std::optional<FileId> find_relative(std::string_view folder, const ImportFact& import) const {
    const auto path = join_normal(folder, import.module);
    return path ? files_.find(*path) : std::nullopt;
  }

  bool speaks_for(std::string_view root, std::string_view folder) const {
    return is_below(folder, root) || votes_.contains(root) ||
           std::ranges::find(kHeaderFolders, base_name(root)) != kHeaderFolders.end();
  }

  // Who writes angle brackets for a name that also stands beside the file means another one.
  std::optional<FileId> find_near(std::string_view folder, const std::string& name,
                                  bool angled) const {
    const auto own = angled ? files_.find(join(folder, name)) : std::nullopt;
    if (const auto target = find_above(folder, name, own)) return target;
    const auto nearest = nearest_.find(name);
    if (nearest == nearest_.end()) return own;
    std::optional<FileId> target;
    for_each_near_folder(folder, [&](std::string_view up) {
      const auto found = nearest->second.find(up);
      if (target || found == nearest->second.end()) return;
      const Best& best = found->second;
      target = best.first != own ? std::optional(best.first) : best.second;
    });
    return target ? target : own;
  }

  std::optional<FileId> find_above(std::string_view folder, const std::string& name,
                                   std::optional<FileId> except) const {
    std::optional<FileId> target;
    for_each_near_folder(folder, [&](std::string_view up) {
      for (const std::string_view below : kHeaderFolders) {
        if (target) return;
        target = files_.find(join(join(up, below), name));
        if (target && target == except) target.reset();
      }
    });
    return target;
  }

  bool looks_local(const ImportFact& import) const {
    const std::string name = below_root(import.module);
    if (is_system_header(name)) return false;
    return !is_angled(import) ||
           (!first_folder(name).empty() && local_.contains(std::string(first_folder(name))));
  }

  const FileTable& files_;
  std::vector<std::string> folders_;                      // of compile_commands.json
  std::unordered_set<std::string, SeededHash> included_;  // base names
  std::unordered_map<std::string_view, Suffix, SeededHash> suffixes_;
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> votes_;  // by root
  std::unordered_set<std::string, SeededHash> local_;  // first folders of names that are found here
  std::unordered_map<std::string_view, std::unordered_map<std::string_view, Best, SeededHash>,
                     SeededHash>
      nearest_;
};

}  // namespace

std::unique_ptr<Resolver> make_include_resolver(const FileTable& files) {
  return std::make_unique<IncludeResolver>(files);
}

}  // namespace kestrix::index
