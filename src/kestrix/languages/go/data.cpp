#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kGoExtensions = std::to_array<std::string_view>({"go"});
constexpr std::array kGo{
    Evidence{kTaggedStruct, R"(^[ \t]*(?:type\s+)?\w+(?:\[[^\]\n]*\])?\s+struct\s*\{)"},
    Evidence{kEntity, R"(^[ \t]+(?:ent\.Schema|gorm\.Model|bun\.BaseModel)\b)"},
};

}  // namespace

const DataLanguage& go_data() {
  static constexpr DataLanguage kLanguage{kGoExtensions, DataSyntax::kCode, kGo};
  return kLanguage;
}

}  // namespace kestrix
