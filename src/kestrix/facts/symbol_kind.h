#pragma once

#include <string_view>

namespace kestrix {

enum class SymbolKind { kClass, kInterface, kConstant, kVariable };

/// "class", "interface", "constant" or "variable".
constexpr std::string_view to_string(SymbolKind kind) {
  switch (kind) {
    case SymbolKind::kClass:
      return "class";
    case SymbolKind::kInterface:
      return "interface";
    case SymbolKind::kConstant:
      return "constant";
    case SymbolKind::kVariable:
      return "variable";
  }
  return {};
}

}  // namespace kestrix
