#include "kestrix/languages/frameworks.h"

#include <array>
#include <map>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kestrix::index {

// Each is defined in its language's folder.
std::span<const FrameworkName> c_family_frameworks();
std::span<const FrameworkName> csharp_frameworks();
std::span<const FrameworkName> ecmascript_frameworks();
std::span<const FrameworkName> go_frameworks();
std::span<const FrameworkName> jvm_frameworks();
std::span<const FrameworkName> php_frameworks();
std::span<const FrameworkName> python_frameworks();
std::span<const FrameworkName> ruby_frameworks();
std::span<const FrameworkName> rust_frameworks();
std::span<const FrameworkName> scala_frameworks();
std::span<const FrameworkName> swift_frameworks();

namespace {

using Names = std::span<const FrameworkName> (*)();
constexpr std::array<std::pair<std::string_view, Names>, 17> kLanguages{{
    {"c", c_family_frameworks},
    {"cpp", c_family_frameworks},
    {"csharp", csharp_frameworks},
    {"go", go_frameworks},
    {"java", jvm_frameworks},
    {"javascript", ecmascript_frameworks},
    {"kotlin", jvm_frameworks},
    {"php", php_frameworks},
    {"python", python_frameworks},
    {"ruby", ruby_frameworks},
    {"rust", rust_frameworks},
    {"scala", scala_frameworks},
    {"svelte", ecmascript_frameworks},
    {"swift", swift_frameworks},
    {"tsx", ecmascript_frameworks},
    {"typescript", ecmascript_frameworks},
    {"vue", ecmascript_frameworks},
}};

}  // namespace

std::span<const FrameworkName> framework_names(std::string_view language) {
  for (const auto& [name, names] : kLanguages) {
    if (name == language) return names();
  }
  return {};
}

namespace {

std::string_view last_word(std::string_view name) {
  return name.substr(name.find_last_of("./") + 1);
}

// The rows of a language by the last words of their names, each word's in the order of the table.
class NamesByWord {
 public:
  explicit NamesByWord(std::span<const FrameworkName> names) {
    for (const FrameworkName& row : names) rows_[last_word(row.name)].push_back(&row);
  }
  std::span<const FrameworkName* const> of(std::string_view word) const {
    const auto found = rows_.find(word);
    return found == rows_.end() ? std::span<const FrameworkName* const>() : found->second;
  }

 private:
  std::unordered_map<std::string_view, std::vector<const FrameworkName*>> rows_;
};

const NamesByWord& names_by_word(std::span<const FrameworkName> names) {
  static const auto tables = [] {
    std::map<const FrameworkName*, NamesByWord> all;
    for (const auto& [language, table] : kLanguages) {
      all.try_emplace(table().data(), table());
    }
    return all;
  }();
  return tables.at(names.data());
}

}  // namespace

const FrameworkName* known_as(std::string_view language, Known known, std::string_view name) {
  const auto names = framework_names(language);
  if (names.empty()) return nullptr;
  for (const FrameworkName* row : names_by_word(names).of(last_word(name))) {
    if (row->known != known || !name.ends_with(row->name)) continue;
    const std::size_t before = name.size() - row->name.size();
    if (before == 0 || name[before - 1] == '.' || name[before - 1] == '/') return row;
  }
  return nullptr;
}

}  // namespace kestrix::index
