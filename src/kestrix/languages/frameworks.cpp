#include "kestrix/languages/frameworks.h"

#include <array>
#include <utility>

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

std::span<const FrameworkName> framework_names(std::string_view language) {
  using Names = std::span<const FrameworkName> (*)();
  static constexpr std::array<std::pair<std::string_view, Names>, 15> kLanguages{{
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
      {"svelte", ecmascript_frameworks},
      {"tsx", ecmascript_frameworks},
      {"typescript", ecmascript_frameworks},
      {"vue", ecmascript_frameworks},
  }};
  for (const auto& [name, names] : kLanguages) {
    if (name == language) return names();
  }
  return {};
}

const FrameworkName* known_as(std::string_view language, Known known, std::string_view name) {
  for (const FrameworkName& row : framework_names(language)) {
    if (row.known != known || !name.ends_with(row.name)) continue;
    const std::size_t before = name.size() - row.name.size();
    if (before == 0 || name[before - 1] == '.' || name[before - 1] == '/') return &row;
  }
  return nullptr;
}

}  // namespace kestrix::index
