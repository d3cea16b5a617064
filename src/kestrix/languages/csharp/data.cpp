#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kCSharpExtensions = std::to_array<std::string_view>({"cs"});
constexpr std::array kCSharp{
    Evidence{kEntity, R"(\bclass\s+\w+[^{;\n]*:\s*(?:[\w.]+\.)?(?:Identity)?DbContext\b)"},
    Evidence{kEntity, R"(\bDbSet<)"},
    Evidence{kEntity, R"(\bclass\s+\w+\s*(?:<[^>\n]*>)?\s*:\s*(?:[\w.]+\.)?)"
                      R"((?:\w*Entity|AggregateRoot|ValueObject)(?:<[^>\n]*>)?\s*(?:,|\{|;|\r?$))"},
    Evidence{kEntity, R"(^[ \t]*\[(?:Table\(|BsonCollection))"},
    Evidence{kRecord, R"(^[ \t]*(?:(?:public|internal|private|protected|sealed|abstract|readonly|)"
                      R"(partial|static|file)\s+)*record\s+(?:struct\s+|class\s+)?[A-Z]\w*)"
                      R"(\s*(?:<[^()\n]*>)?\s*(?:\(\s*[^)\s]|(?::[^;({]*)?\{))"},
};

}  // namespace

const DataLanguage& csharp_data() {
  static constexpr DataLanguage kLanguage{kCSharpExtensions, DataSyntax::kCode, kCSharp};
  return kLanguage;
}

}  // namespace kestrix
