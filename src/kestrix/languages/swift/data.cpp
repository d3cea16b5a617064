#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kSwiftExtensions = std::to_array<std::string_view>({"swift"});
constexpr std::array kSwift{
    Evidence{kEntity, R"(^[ \t]*@Model\b)"},
    Evidence{kRecord,
             R"(\bstruct\s+\w+\s*(?:<[^>\n]*>)?\s*:[^{\n]*\b(?:Codable|Decodable|Encodable)\b)"},
};

}  // namespace

const DataLanguage& swift_data() {
  static constexpr DataLanguage kLanguage{kSwiftExtensions, DataSyntax::kCode, kSwift};
  return kLanguage;
}

}  // namespace kestrix
