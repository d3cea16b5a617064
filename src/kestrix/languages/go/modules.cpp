#include "kestrix/languages/go/modules.h"

#include <algorithm>

#include "kestrix/text/paths.h"
#include "kestrix/text/seeded_hash.h"

namespace kestrix::index {
namespace {

// The words of a line of go.mod: quotes off, comments left out.
std::vector<std::string_view> words_of(std::string_view line) {
  std::vector<std::string_view> words;
  line = line.substr(0, line.find("//"));
  for (;;) {
    const std::size_t start = line.find_first_not_of(" \t\r\"`");
    if (start == std::string_view::npos) return words;
    const std::size_t end = std::min(line.find_first_of(" \t\r\"`", start), line.size());
    words.push_back(line.substr(start, end - start));
    line.remove_prefix(end);
  }
}

// Calls `visit(directive, words)` for each directive, those in blocks too.
template <class Visit>
void for_each_directive(std::string_view text, Visit visit) {
  std::string_view block;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::vector<std::string_view> words = words_of(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    if (words.empty()) continue;
    if (words[0] == ")") {
      block = {};
    } else if (words.back() == "(") {
      block = words[0];
    } else if (block.empty()) {
      const std::string_view directive = words[0];
      words.erase(words.begin());
      visit(directive, words);
    } else {
      visit(block, words);
    }
  }
}

bool is_aside(std::string_view folder) {
  for (; !folder.empty(); folder = folder_of(folder)) {
    const std::string_view name = base_name(folder);
    if (name == "testdata" || name == "vendor" || name.starts_with('_')) return true;
  }
  return false;
}

// Calls `visit(prefix, rest)` for the path itself and each prefix of whole parts, longest first.
template <class Visit>
void for_each_prefix(std::string_view path, Visit visit) {
  for (std::string_view prefix = path; !prefix.empty(); prefix = folder_of(prefix)) {
    const std::size_t size = std::min(prefix.size() + 1, path.size());
    if (visit(prefix, path.substr(size))) return;
  }
}

}  // namespace

GoModules::GoModules(const FileTable& files) {
  for (FileId id = 0; id < files.size(); ++id) {
    const std::string_view path = files.path(id);
    if (base_name(path) == "go.mod") add_module(folder_of(path), files.read(id));
    if (base_name(path) == "go.work") add_workspace(folder_of(path), files.read(id));
    const std::size_t vendor = path.find("vendor/");
    if (vendor == 0 || (vendor != path.npos && path[vendor - 1] == '/')) {
      vendored_.emplace(path.substr(0, vendor == 0 ? 0 : vendor - 1));
    }
  }
}

void GoModules::add_module(std::string_view folder, std::string_view text) {
  Module& module = by_folder_[std::string(folder)];
  for_each_directive(text, [&](std::string_view directive, const auto& words) {
    if (directive == "module" && !words.empty()) module.path = words[0];
    if (directive == "replace") add_replaced(folder, words, module.replaced);
  });
  if (!module.path.empty() && !is_aside(folder)) by_path_.try_emplace(module.path, folder);
}

void GoModules::add_workspace(std::string_view folder, std::string_view text) {
  for_each_directive(text, [&](std::string_view directive, const auto& words) {
    if (directive == "replace") add_replaced(folder, words, replaced_everywhere_);
  });
}

void GoModules::add_replaced(std::string_view folder, std::span<const std::string_view> words,
                             Replaced& replaced) {
  const auto arrow = std::ranges::find(words, "=>");
  if (arrow == words.end() || arrow + 1 == words.end()) return;
  const std::string_view target = *(arrow + 1);
  const bool is_folder =
      target.starts_with("./") || target.starts_with("../") || target == "." || target == "..";
  if (!is_folder) return;
  if (auto place = join_normal(folder, target)) replaced.emplace(words[0], std::move(*place));
}

const std::string* GoModules::module_above(std::string_view folder) const {
  const std::string* found = nullptr;
  for_each_folder_up(folder, [&](std::string_view up) {
    const auto entry = found == nullptr ? by_folder_.find(std::string(up)) : by_folder_.end();
    if (entry != by_folder_.end()) found = &entry->first;
  });
  return found;
}

std::optional<GoModules::Place> GoModules::place_of(std::string_view path,
                                                    std::string_view folder) const {
  const std::string* own = module_above(folder);
  const Module* module = own == nullptr ? nullptr : &by_folder_.at(*own);
  std::optional<Place> place;
  for_each_prefix(path, [&](std::string_view prefix, std::string_view rest) {
    if (module != nullptr && prefix == module->path) {
      place = Place{join(*own, rest), true};
      return true;
    }
    const std::string key(prefix);
    const auto find_in =
        [&](const std::unordered_map<std::string, std::string, SeededHash>& folders) {
          const auto found = folders.find(key);
          if (found == folders.end()) return false;
          place = Place{join(found->second, rest), false};
          return true;
        };
    return (module != nullptr && find_in(module->replaced)) || find_in(replaced_everywhere_) ||
           find_in(by_path_);
  });
  if (place) return place;
  for_each_folder_up(folder, [&](std::string_view up) {
    if (!place && vendored_.contains(std::string(up))) {
      place = Place{join(join(up, "vendor"), path), false};
    }
  });
  return place;
}

}  // namespace kestrix::index
