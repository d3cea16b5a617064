#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kScalaExtensions = std::to_array<std::string_view>({"scala", "sc"});
constexpr std::array kScala{
    Evidence{kEntity, R"(\bclass\s+\w+\s*\([^)\n]*\)\s*extends\s+Table\s*\[)"},
    Evidence{kColumn, R"(^[ \t]*(?:val|def)\s+\w+\s*=\s*column\s*\[)"},
    Evidence{kRecord, R"(^[ \t]*(?:(?:private|protected|sealed|final|@\w+(?:\([^)\n]*\))?)\s+)*)"
                      R"(case\s+class\s+\w)"},
};

}  // namespace

const DataLanguage& scala_data() {
  static constexpr DataLanguage kLanguage{kScalaExtensions, DataSyntax::kCode, kScala};
  return kLanguage;
}

}  // namespace kestrix
