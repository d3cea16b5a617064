#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kElixirExtensions = std::to_array<std::string_view>({"ex"});
constexpr std::array kElixir{
    Evidence{kEntity, R"(^[ \t]*schema\s+"[\w.]+"\s+do\b)"},
    Evidence{kRecord, R"(^[ \t]*(?:embedded_schema\s+do|defstruct)\b)"},
};

}  // namespace

const DataLanguage& elixir_data() {
  static constexpr DataLanguage kLanguage{kElixirExtensions, DataSyntax::kCode, kElixir};
  return kLanguage;
}

}  // namespace kestrix
