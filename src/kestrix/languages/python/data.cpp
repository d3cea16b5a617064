#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kPythonExtensions = std::to_array<std::string_view>({"py", "pyi"});
constexpr std::array kPython{
    Evidence{kRecord, R"(^[ \t]*@(?:dataclass(?:es\.dataclass)?|pydantic\.dataclasses\.dataclass|)"
                      R"(attrs?\.(?:s|attrs|attributes|define|frozen|mutable|dataclass)|)"
                      R"(define|frozen|mutable)(?:\(|[ \t]*(?:#.*)?\r?$))"},
    Evidence{kPythonClass, R"(^[ \t]*class\s+\w+\s*(?:\[[^\]\n]*\])?\s*\()"},
    Evidence{kMapping, R"(^[ \t]+__tablename__\s*=\s*f?["'])"},
    Evidence{kMapping,
             R"(^[ \t]+\w+(?:\s*:[^=\n]+)?\s+=\s+(?:(?:\w+\.)*(?:mapped_column|Column)\(|)"
             R"(models\.(?:\w+Field|ForeignKey)\())"},
    Evidence{kTable, R"(^[ \t]*\w+\s*=\s*(?:sa\.|sqlalchemy\.|db\.)?Table\(\s*["'])"},
    Evidence{kRecord, R"(^[ \t]*\w+\s*=\s*(?:collections\.)?namedtuple\()"},
};

}  // namespace

const DataLanguage& python_data() {
  static constexpr DataLanguage kLanguage{kPythonExtensions, DataSyntax::kPython, kPython};
  return kLanguage;
}

}  // namespace kestrix
