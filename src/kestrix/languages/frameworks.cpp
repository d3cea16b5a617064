#include "kestrix/languages/frameworks.h"

#include <algorithm>
#include <array>
#include <bitset>
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

// Without what stands before the last dot or slash.
std::string_view last_word(std::string_view name) {
  std::size_t first = name.size();
  while (first > 0 && name[first - 1] != '.' && name[first - 1] != '/') --first;
  return name.substr(first);
}

// The rows of a language by the last words of their names, each word's in the order of the table.
// Nearly every name that is asked for is none of them, so most are turned away before the hash, by
// what they are asked as, their length and their last character.
class NamesByWord {
 public:
  explicit NamesByWord(std::span<const FrameworkName> names) {
    for (const FrameworkName& row : names) {
      const std::string_view word = last_word(row.name);
      rows_[word].push_back(&row);
      Sieve& sieve = sieves_[static_cast<std::size_t>(row.known)];
      sieve.lengths.set(word.size() % sieve.lengths.size());
      sieve.ends.set(end_of(word));
    }
  }

  std::span<const FrameworkName* const> of(Known known, std::string_view word) const {
    const Sieve& sieve = sieves_[static_cast<std::size_t>(known)];
    const bool may_be =
        sieve.lengths[word.size() % sieve.lengths.size()] && sieve.ends[end_of(word)];
    if (!may_be) return {};
    const auto found = rows_.find(word);
    return found == rows_.end() ? std::span<const FrameworkName* const>() : found->second;
  }

 private:
  struct Sieve {
    std::bitset<64> lengths;
    std::bitset<256> ends;
  };

  static std::size_t end_of(std::string_view word) {
    return word.empty() ? 0 : static_cast<unsigned char>(word.back());
  }

  std::array<Sieve, static_cast<std::size_t>(Known::kTestBase) + 1> sieves_{};
  std::unordered_map<std::string_view, std::vector<const FrameworkName*>> rows_;
};

struct LanguageNames {
  std::string_view language;
  std::span<const FrameworkName> names;
  NamesByWord by_word;
};

const LanguageNames* names_of(std::string_view language) {
  static const auto tables = [] {
    std::vector<LanguageNames> all;
    all.reserve(kLanguages.size());
    for (const auto& [name, table] : kLanguages)
      all.push_back({name, table(), NamesByWord(table())});
    return all;
  }();
  // Who asks goes through one file's names after the other's, all of one language.
  thread_local const LanguageNames* last = tables.data();
  if (last->language == language) return last;
  const auto found = std::ranges::find(tables, language, &LanguageNames::language);
  if (found == tables.end()) return nullptr;
  return last = &*found;
}

}  // namespace

std::span<const FrameworkName> framework_names(std::string_view language) {
  const LanguageNames* names = names_of(language);
  return names == nullptr ? std::span<const FrameworkName>() : names->names;
}

const FrameworkName* known_as(std::string_view language, Known known, std::string_view name) {
  const LanguageNames* names = names_of(language);
  if (names == nullptr) return nullptr;
  for (const FrameworkName* row : names->by_word.of(known, last_word(name))) {
    if (row->known != known || !name.ends_with(row->name)) continue;
    const std::size_t before = name.size() - row->name.size();
    if (before == 0 || name[before - 1] == '.' || name[before - 1] == '/') return row;
  }
  return nullptr;
}

}  // namespace kestrix::index
