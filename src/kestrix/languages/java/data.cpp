#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kJavaExtensions = std::to_array<std::string_view>({"java", "groovy"});
constexpr std::array kJava{
    Evidence{kEntity, R"(^[ \t]*@(?:Entity|Document|Embeddable|MappedSuperclass|RedisHash)\b)"},
    Evidence{kColumn, R"(^[ \t]*@(?:Column|Id|JoinColumn|OneToMany|ManyToOne|OneToOne|ManyToMany|)"
                      R"(Embedded|ElementCollection)\b)"},
    Evidence{kRecord,
             R"(^[ \t]*(?:(?:public|private|protected|static|final|sealed|strictfp|@\w+)\s+)*)"
             R"(record\s+[A-Z]\w*\s*(?:<[^()\n]*>)?\s*\()"},
    Evidence{kRecord, R"(^[ \t]*@(?:lombok\.)?Data[ \t]*\r?$)"},
};

}  // namespace

const DataLanguage& java_data() {
  static constexpr DataLanguage kLanguage{kJavaExtensions, DataSyntax::kCode, kJava};
  return kLanguage;
}

}  // namespace kestrix
