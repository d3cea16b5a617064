#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kKotlinExtensions = std::to_array<std::string_view>({"kt", "kts"});
constexpr std::array kKotlin{
    Evidence{kEntity, R"(^[ \t]*@(?:Entity|Document|Embeddable|MappedSuperclass)\b)"},
    Evidence{kColumn,
             R"(^[ \t]*@(?:field:)?(?:Column|ColumnInfo|Id|PrimaryKey|JoinColumn|OneToMany|)"
             R"(ManyToOne|OneToOne|ManyToMany)\b)"},
    Evidence{kEntity, R"(\bobject\s+\w+\s*:\s*(?:Int|Long|UUID)?(?:Id)?Table\s*\()"},
    Evidence{kRecord, R"(^[ \t]*(?:(?:public|private|internal|protected|sealed|final|)"
                      R"(@\w+(?:\([^)\n]*\))?)\s+)*data\s+class\s+\w)"},
};

}  // namespace

const DataLanguage& kotlin_data() {
  static constexpr DataLanguage kLanguage{kKotlinExtensions, DataSyntax::kCode, kKotlin};
  return kLanguage;
}

}  // namespace kestrix
