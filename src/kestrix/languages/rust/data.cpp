#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kRustExtensions = std::to_array<std::string_view>({"rs"});
constexpr std::array kRust{
    Evidence{kDerive, R"(\bderive\s*\()"},
    Evidence{kTable, R"(^[ \t]*(?:diesel::)?table!\s*[{(])"},
};

}  // namespace

const DataLanguage& rust_data() {
  static constexpr DataLanguage kLanguage{kRustExtensions, DataSyntax::kCode, kRust};
  return kLanguage;
}

}  // namespace kestrix
