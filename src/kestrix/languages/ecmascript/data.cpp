#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kScriptExtensions =
    std::to_array<std::string_view>({"ts", "js", "tsx", "jsx", "mts", "cts", "mjs", "cjs"});
constexpr std::array kScript{
    Evidence{kEntity,
             R"(^[ \t]*@(?:Entity|ViewEntity|ChildEntity|Schema|Table|modelOptions)\s*\()"},
    Evidence{kSchema, R"(^[ \t]*@(?:ObjectType|InputType)\s*\()"},
    Evidence{kEntity, R"(\bnew\s+EntitySchema\b|=\s*sequelize\.define\s*\()"},
    Evidence{kTable, R"(=\s*(?:pg|mysql|sqlite)Table\s*\()"},
    Evidence{kMongoose, R"(\bnew\s+(?:mongoose\.)?Schema\s*(?:<[^()]*>\s*)?\()"},
    Evidence{kSchema, R"(=\s*(?:z\s*\.\s*(?:strictObject|looseObject|object)|)"
                      R"((?:yup|Yup|Joi)\s*\.\s*object)\s*\()"},
    Evidence{kColumn,
             R"(^[ \t]*@(?:Column|PrimaryColumn|PrimaryGeneratedColumn|OneToMany|ManyToOne|)"
             R"(OneToOne|ManyToMany|Prop|Property|Field)\s*\()"},
    Evidence{kFields, R"(^[ \t]*(?:export\s+)?(?:default\s+)?(?:declare\s+)?)"
                      R"((?:interface\s+\w+[^{}\n=;(]*|type\s+\w+[^={}\n;(]*=\s*)\{)"},
};

}  // namespace

const DataLanguage& ecmascript_data() {
  static constexpr DataLanguage kLanguage{kScriptExtensions, DataSyntax::kScript, kScript};
  return kLanguage;
}

}  // namespace kestrix
