#include "kestrix/languages/ruby/resolver.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kestrix/languages/dependencies.h"
#include "kestrix/languages/ruby/others.h"
#include "kestrix/text/ascii.h"
#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

constexpr std::array<std::string_view, 3> kLoadFolders = {"lib", "test", "spec"};

constexpr std::size_t kLongestName = 1000;
constexpr std::size_t kMostScopes = 256;      // that one file opens
constexpr std::size_t kMostLoadFolders = 64;  // above one file

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
bool is_lower_or_digit(char c) { return ascii::is_lower(c) || ascii::is_digit(c); }

// The path that a constant's name makes: "App::HTTPClient" is app/http_client.rb.
std::string conventional_path(std::string_view name) {
  std::string path;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const char c = name[i];
    if (c == ':') {
      path += '/';
      ++i;
      continue;
    }
    const bool starts_word =
        i > 0 && is_upper(c) &&
        (is_lower_or_digit(name[i - 1]) ||
         (is_upper(name[i - 1]) && i + 1 < name.size() && is_lower_or_digit(name[i + 1])));
    if (starts_word) path += '_';
    path += is_upper(c) ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return path + ".rb";
}

bool ends_with_path(std::string_view path, std::string_view end) {
  return path.ends_with(end) &&
         (path.size() == end.size() || path[path.size() - end.size() - 1] == '/');
}

class RubyResolver : public Resolver {
 public:
  explicit RubyResolver(const FileTable& files) : files_(files) {
    for (FileId id = 0; id < files.size(); ++id) {
      if (files.language(id) != "ruby") continue;
      add_load_folders(files.path(id));
      const auto& names = files.facts(id).declares;
      const bool owns = std::ranges::any_of(
          names, [&](const std::string& name) { return is_named_after(id, name); });
      for (const std::string& name : names) {
        if (name.size() > kLongestName || ruby::is_of_others(name, files.path(id))) continue;
        declare(name, id, owns);
      }
      for (const NameUse& use : files.facts(id).uses) add_dotted(use.name);
    }
    for (const auto& [name, declared] : declared_) add_dotted(name);
  }

  Resolution resolve(FileId file) const override {
    const FileFacts& facts = files_.facts(file);
    Dependencies found(file);
    const auto load_path = load_path_of(folder_of(files_.path(file)), found);
    for (const ImportFact& import : facts.imports) resolve_path(import, file, load_path, found);
    const std::vector<std::string> scopes = scopes_of(facts, found);
    for (const NameUse& use : facts.uses) {
      const auto constant = find_constant(use.name, scopes);
      if (!constant) continue;
      found.add(constant->file, use.uses);
      if (constant->whole) {
        found.bind(
            {.local = dotted(use.name), .target = constant->file, .name = dotted(constant->name)});
      }
    }
    return found.take();
  }

 private:
  struct Declared {
    std::optional<FileId> conventional{};  ///< the file whose path the name makes
    std::optional<FileId> only{};          ///< else the one file that may stand for it
    bool several = false;

    std::optional<FileId> file() const {
      if (conventional) return conventional;
      return several ? std::nullopt : only;
    }
  };

  bool is_named_after(FileId file, std::string_view name) const {
    return ends_with_path(files_.path(file), conventional_path(name));
  }

  static std::string_view last_part(std::string_view name) {
    const std::size_t last = name.rfind("::");
    return last == std::string_view::npos ? name : name.substr(last + 2);
  }

  // Whether the file lies where the name's namespace has its files.
  bool lies_in_namespace(FileId file, std::string_view name) const {
    const std::size_t last = name.rfind("::");
    if (last == std::string_view::npos) return false;
    std::string folder = conventional_path(name.substr(0, last));
    folder.resize(folder.size() - 3);
    return ends_with_path(folder_of(files_.path(file)), folder);
  }

  // A file that merely reopens what others declare, such as a library's module, stands for nothing.
  void declare(std::string_view name, FileId file, bool owns) {
    for (auto end = name.rfind("::"); end != std::string_view::npos;
         end = name.rfind("::", end - 1)) {
      if (!declared_.try_emplace(name.substr(0, end)).second || end == 0) break;
    }
    Declared& declared = declared_[name];
    if (is_named_after(file, name)) {
      if (!declared.conventional) declared.conventional = file;
    } else if (owns || lies_in_namespace(file, name) || is_named_after(file, last_part(name))) {
      declared.several |= declared.only.has_value();
      declared.only = file;
    }
  }

  // The namespaces that the file opens, the innermost first, each with "::" at its end, and "".
  static std::vector<std::string> scopes_of(const FileFacts& facts, Dependencies& found) {
    std::set<std::string> open;
    for (const std::string& name : facts.declares) {
      if (name.size() > kLongestName) continue;
      for (std::size_t end = name.size(); end != std::string::npos;
           end = name.rfind("::", end - 1)) {
        if (!open.insert(name.substr(0, end) + "::").second) break;
        if (end == 0) break;
      }
    }
    std::vector<std::string> scopes(open.begin(), open.end());
    const auto depth = [](const std::string& scope) { return std::ranges::count(scope, ':'); };
    std::ranges::stable_sort(scopes, std::ranges::greater{}, depth);
    if (scopes.size() > kMostScopes) {
      scopes.resize(kMostScopes);
      found.limit();
    }
    scopes.emplace_back();
    return scopes;
  }

  struct Constant {
    FileId file;
    std::string_view name;  // in full
    bool whole;             // whether all of the used name led there
  };

  // The first part decides the namespace; the parts behind it lead as far as they are declared.
  std::optional<Constant> find_constant(std::string_view name,
                                        const std::vector<std::string>& scopes) const {
    const std::size_t top = name.starts_with("::") ? 2 : 0;
    const std::size_t first = std::min(name.find("::", top), name.size());
    for (const std::string& scope : scopes) {
      if (top > 0 && !scope.empty()) continue;
      std::string whole = scope;
      whole += name.substr(top, first - top);
      auto found = declared_.find(whole);
      if (found == declared_.end()) continue;
      std::size_t at = first;
      auto next = found;
      while (at < name.size()) {
        const std::size_t end = std::min(name.find("::", at + 2), name.size());
        whole += name.substr(at, end - at);
        next = declared_.find(whole);
        if (next == declared_.end()) break;
        found = next;
        at = end;
      }
      const auto file = found->second.file();
      if (!file) return std::nullopt;
      return Constant{*file, found->first, at == name.size()};
    }
    return std::nullopt;
  }

  // Names are bound as mentions write them: "A.B" for "A::B", ".A" for "::A".
  void add_dotted(std::string_view name) {
    if (name.find("::") == std::string_view::npos) return;
    const auto [entry, fresh] = dotted_.try_emplace(name);
    if (!fresh) return;
    for (std::size_t at = 0; at < name.size(); ++at) {
      entry->second += name[at] == ':' ? '.' : name[at];
      if (name[at] == ':') ++at;
    }
  }

  std::string_view dotted(std::string_view name) const {
    const auto found = dotted_.find(name);
    return found == dotted_.end() ? name : std::string_view(found->second);
  }

  void resolve_path(const ImportFact& import, FileId file,
                    const std::vector<std::string>& load_path, Dependencies& found) const {
    const std::string_view folder = folder_of(files_.path(file));
    const bool relative = static_cast<RubyImport>(import.form) == RubyImport::kRelative;
    const auto target =
        relative ? find_file(folder, import.module) : find_on(load_path, import.module);
    if (target) {
      found.add(*target, 1.0);
    } else if (relative) {
      found.miss();
    }
  }

  std::optional<FileId> find_file(std::string_view folder, std::string_view path) const {
    const auto joined = join_normal(folder, path);
    if (!joined) return std::nullopt;
    if (const auto whole = files_.find(*joined + ".rb")) return whole;
    return joined->ends_with(".rb") ? files_.find(*joined) : std::nullopt;
  }

  void add_load_folders(std::string_view path) {
    for (std::string_view folder = folder_of(path); !folder.empty(); folder = folder_of(folder)) {
      if (std::ranges::find(kLoadFolders, base_name(folder)) != kLoadFolders.end())
        load_folders_.insert(folder);
    }
  }

  // The nearest come first, at last the top itself.
  std::vector<std::string> load_path_of(std::string_view folder, Dependencies& found) const {
    std::vector<std::string> load_path;
    for_each_folder_up(folder, [&](std::string_view above) {
      for (const std::string_view name : kLoadFolders) {
        std::string below = join(above, name);
        if (load_folders_.contains(below)) load_path.push_back(std::move(below));
      }
    });
    if (load_path.size() > kMostLoadFolders) {
      load_path.resize(kMostLoadFolders);
      found.limit();
    }
    load_path.emplace_back();
    return load_path;
  }

  std::optional<FileId> find_on(const std::vector<std::string>& load_path,
                                std::string_view path) const {
    if (path.starts_with('/')) return std::nullopt;
    for (const std::string& folder : load_path) {
      if (const auto target = find_file(folder, path)) return target;
    }
    return std::nullopt;
  }

  const FileTable& files_;
  std::unordered_map<std::string_view, Declared, SeededHash> declared_;
  std::unordered_map<std::string_view, std::string, SeededHash> dotted_;
  std::unordered_set<std::string_view, SeededHash> load_folders_;
};

}  // namespace

std::unique_ptr<Resolver> make_ruby_resolver(const FileTable& files) {
  return std::make_unique<RubyResolver>(files);
}

}  // namespace kestrix::index
