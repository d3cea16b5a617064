#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kPhpExtensions = std::to_array<std::string_view>({"php"});
constexpr std::array kPhp{
    Evidence{kEntity, R"(^[ \t]*(?:#\[|\*[ \t]*@)(?:\w+\\)*(?:Entity|Embeddable|Document)\b)"},
    Evidence{kEntity, R"(\bclass\s+\w+\s+extends\s+\\?(?:Model|Eloquent|Authenticatable|Pivot|)"
                      R"(ActiveRecord)\b)"},
    Evidence{kColumn, R"(^[ \t]*(?:#\[|\*[ \t]*@)(?:\w+\\)*(?:Column|Id|OneToMany|ManyToOne|)"
                      R"(OneToOne|ManyToMany)\b)"},
    Evidence{kMapping,
             R"(\$this->(?:hasOne|hasMany|belongsTo|belongsToMany|morph(?:To|One|Many)\w*))"
             R"(\()"},
    Evidence{kDdlCall, R"(\bSchema::create\s*\()"},
};

}  // namespace

const DataLanguage& php_data() {
  static constexpr DataLanguage kLanguage{kPhpExtensions, DataSyntax::kCode, kPhp};
  return kLanguage;
}

}  // namespace kestrix
