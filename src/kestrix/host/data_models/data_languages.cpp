#include "kestrix/host/data_models/data_languages.h"

#include <algorithm>
#include <array>

namespace kestrix {
namespace {

using enum EvidenceKind;
using Name = std::string_view;

constexpr std::array kPythonExtensions{Name("py"), Name("pyi")};
constexpr std::array kPython{
    Evidence{kRecord, R"(^[ \t]*@(?:dataclass(?:es\.dataclass)?|pydantic\.dataclasses\.dataclass|)"
                      R"(attrs?\.(?:s|attrs|attributes|define|frozen|mutable|dataclass)|)"
                      R"(define|frozen|mutable)(?:\(|[ \t]*(?:#.*)?\r?$))"},
    Evidence{kPythonClass, R"(^[ \t]*class\s+\w+\s*(?:\[[^\]\n]*\])?\s*\()"},
    Evidence{kMapping, R"(^[ \t]+__tablename__\s*=\s*f?["'])"},
    Evidence{kMapping,
             R"(^[ \t]+\w+(?:\s*:[^=\n]+)?\s+=\s+(?:(?:\w+\.)*(?:mapped_column|Column)\(|)"
             R"(models\.(?:\w+Field|ForeignKey)\())"},
    Evidence{kEntity, R"(^[ \t]*\w+\s*=\s*(?:sa\.|sqlalchemy\.|db\.)?Table\(\s*["'])"},
    Evidence{kRecord, R"(^[ \t]*\w+\s*=\s*(?:collections\.)?namedtuple\()"},
};

constexpr std::array kScriptExtensions{Name("ts"),  Name("js"),  Name("tsx"), Name("jsx"),
                                       Name("mts"), Name("cts"), Name("mjs"), Name("cjs")};
constexpr std::array kScript{
    Evidence{kEntity,
             R"(^[ \t]*@(?:Entity|ViewEntity|ChildEntity|Schema|Table|modelOptions)\s*\()"},
    Evidence{kSchema, R"(^[ \t]*@(?:ObjectType|InputType)\s*\()"},
    Evidence{kEntity, R"(\bnew\s+EntitySchema\b|=\s*(?:pg|mysql|sqlite)Table\s*\(|)"
                      R"(=\s*sequelize\.define\s*\()"},
    Evidence{kMongoose, R"(\bnew\s+(?:mongoose\.)?Schema\s*(?:<[^()]*>\s*)?\()"},
    Evidence{kSchema, R"(=\s*(?:z\s*\.\s*(?:strictObject|looseObject|object)|)"
                      R"((?:yup|Yup|Joi)\s*\.\s*object)\s*\()"},
    Evidence{kColumn,
             R"(^[ \t]*@(?:Column|PrimaryColumn|PrimaryGeneratedColumn|OneToMany|ManyToOne|)"
             R"(OneToOne|ManyToMany|Prop|Property|Field)\s*\()"},
    Evidence{kFields, R"(^[ \t]*(?:export\s+)?(?:default\s+)?(?:declare\s+)?)"
                      R"((?:interface\s+\w+[^{}\n=;(]*|type\s+\w+[^={}\n;(]*=\s*)\{)"},
};

constexpr std::array kJavaExtensions{Name("java"), Name("groovy")};
constexpr std::array kJava{
    Evidence{kEntity, R"(^[ \t]*@(?:Entity|Document|Embeddable|MappedSuperclass|RedisHash)\b)"},
    Evidence{kColumn, R"(^[ \t]*@(?:Column|Id|JoinColumn|OneToMany|ManyToOne|OneToOne|ManyToMany|)"
                      R"(Embedded|ElementCollection)\b)"},
    Evidence{kRecord,
             R"(^[ \t]*(?:(?:public|private|protected|static|final|sealed|strictfp|@\w+)\s+)*)"
             R"(record\s+[A-Z]\w*\s*(?:<[^()\n]*>)?\s*\()"},
    Evidence{kRecord, R"(^[ \t]*@(?:lombok\.)?Data[ \t]*\r?$)"},
};

constexpr std::array kKotlinExtensions{Name("kt"), Name("kts"), Name("scala")};
constexpr std::array kKotlin{
    Evidence{kEntity, R"(^[ \t]*@(?:Entity|Document|Embeddable|MappedSuperclass)\b)"},
    Evidence{kColumn,
             R"(^[ \t]*@(?:field:)?(?:Column|ColumnInfo|Id|PrimaryKey|JoinColumn|OneToMany|)"
             R"(ManyToOne|OneToOne|ManyToMany)\b)"},
    Evidence{kEntity, R"(\bobject\s+\w+\s*:\s*(?:Int|Long|UUID)?(?:Id)?Table\s*\()"},
    Evidence{kRecord, R"(^[ \t]*(?:(?:public|private|internal|protected|sealed|final|)"
                      R"(@\w+(?:\([^)\n]*\))?)\s+)*(?:data|case)\s+class\s+\w)"},
};

constexpr std::array kCSharpExtensions{Name("cs")};
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

constexpr std::array kGoExtensions{Name("go")};
constexpr std::array kGo{
    Evidence{kTaggedStruct, R"(^[ \t]*(?:type\s+)?\w+(?:\[[^\]\n]*\])?\s+struct\s*\{)"},
    Evidence{kEntity, R"(^[ \t]+(?:ent\.Schema|gorm\.Model|bun\.BaseModel)\b)"},
};

constexpr std::array kRustExtensions{Name("rs")};
constexpr std::array kRust{
    Evidence{kDerive, R"(\bderive\s*\()"},
    Evidence{kEntity, R"(^[ \t]*(?:diesel::)?table!\s*[{(])"},
};

constexpr std::array kRubyExtensions{Name("rb")};
constexpr std::array kRuby{
    Evidence{kEntity,
             R"(^[ \t]*class\s+[\w:]+\s*<\s*(?:::)?(?:ApplicationRecord|ActiveRecord::Base|)"
             R"(Sequel::Model)\b)"},
    Evidence{kEntity, R"(^[ \t]*include\s+(?:::)?Mongoid::Document\b)"},
    Evidence{kDdlCall, R"(^[ \t]*create_table[ (]\s*["':])"},
    Evidence{kMapping, R"(^[ \t]*(?:belongs_to|has_many|has_one|has_and_belongs_to_many)\s+:)"},
    Evidence{kRecord, R"(\b(?:Struct\.new|Data\.define)\b|<\s*(?:Dry::Struct|T::Struct)\b)"},
};

constexpr std::array kPhpExtensions{Name("php")};
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

constexpr std::array kElixirExtensions{Name("ex")};
constexpr std::array kElixir{
    Evidence{kEntity, R"(^[ \t]*schema\s+"[\w.]+"\s+do\b)"},
    Evidence{kRecord, R"(^[ \t]*(?:embedded_schema\s+do|defstruct)\b)"},
};

constexpr std::array kSwiftExtensions{Name("swift")};
constexpr std::array kSwift{
    Evidence{kEntity, R"(^[ \t]*@Model\b)"},
    Evidence{kRecord,
             R"(\bstruct\s+\w+\s*(?:<[^>\n]*>)?\s*:[^{\n]*\b(?:Codable|Decodable|Encodable)\b)"},
};

constexpr std::array kPlainExtensions{
    Name("sql"),  Name("ddl"), Name("cql"), Name("pgsql"), Name("psql"), Name("mysql"), Name("hql"),
    Name("c"),    Name("h"),   Name("cc"),  Name("cpp"),   Name("cxx"),  Name("hh"),    Name("hpp"),
    Name("hxx"),  Name("m"),   Name("mm"),  Name("pl"),    Name("pm"),   Name("lua"),   Name("sh"),
    Name("bash"), Name("erl"), Name("clj"), Name("dart"),  Name("hs"),   Name("ml"),    Name("fs"),
    Name("vb"),   Name("pas"), Name("r"),   Name("jl"),    Name("nim"),  Name("zig"),   Name("cr"),
    Name("exs"),  Name("tcl"), Name("d")};
constexpr std::span<const Evidence> kPlain;

constexpr std::array kProtoExtensions{Name("proto")};
constexpr std::array kProto{Evidence{kMessage, R"(^[ \t]*message\s+\w+\s*\{)"}};

constexpr std::array kGraphqlExtensions{Name("graphql"), Name("graphqls"), Name("gql")};
constexpr std::array kGraphql{
    Evidence{kSchema, R"(^(?:extend\s+)?(?:type|input|interface|enum|union)\s+\w+)"}};

constexpr std::array kPrismaExtensions{Name("prisma")};
constexpr std::array kPrisma{Evidence{kEntity, R"(^[ \t]*model\s+\w+\s*\{)"},
                             Evidence{kSchema, R"(^[ \t]*(?:enum|type|view)\s+\w+\s*\{)"}};

constexpr std::array kThriftExtensions{Name("thrift"), Name("fbs"), Name("capnp"), Name("avdl")};
constexpr std::array kThrift{
    Evidence{kSchema, R"(^[ \t]*(?:struct|table|record|exception|error|union|enum)\s+\w+)"}};

constexpr std::array kAvroExtensions{Name("avsc")};
constexpr std::array kAvro{Evidence{kSchema, R"re("type"\s*:\s*"(?:record|enum)")re"}};

constexpr std::array kJsonExtensions{Name("json")};
constexpr std::array kJson{
    Evidence{kDialect, R"re("\$schema"\s*:\s*"https?://json-schema\.org/|)re"
                       R"re("(?:openapi|swagger)"\s*:\s*"[123]\.)re"},
    Evidence{kSchemaMembers, R"re("(?:properties|definitions|\$defs|schemas)"\s*:\s*\{)re"},
};

constexpr std::array kYamlExtensions{Name("yaml"), Name("yml")};
constexpr std::array kYaml{
    Evidence{kDialect, R"(^(?:openapi|swagger)\s*:\s*["']?[123]\.|)"
                       R"(^["']?\$schema["']?\s*:\s*["']?https?://json-schema\.org/)"},
    Evidence{kSchemaMembers, R"(^\s*(?:properties|definitions|\$defs|schemas)\s*:\s*\r?$)"},
};

constexpr std::array kLanguages{
    DataLanguageRow{kPythonExtensions, DataSyntax::kPython, kPython},
    DataLanguageRow{kScriptExtensions, DataSyntax::kScript, kScript},
    DataLanguageRow{kJavaExtensions, DataSyntax::kCode, kJava},
    DataLanguageRow{kKotlinExtensions, DataSyntax::kCode, kKotlin},
    DataLanguageRow{kCSharpExtensions, DataSyntax::kCode, kCSharp},
    DataLanguageRow{kGoExtensions, DataSyntax::kCode, kGo},
    DataLanguageRow{kRustExtensions, DataSyntax::kCode, kRust},
    DataLanguageRow{kRubyExtensions, DataSyntax::kCode, kRuby},
    DataLanguageRow{kPhpExtensions, DataSyntax::kCode, kPhp},
    DataLanguageRow{kElixirExtensions, DataSyntax::kCode, kElixir},
    DataLanguageRow{kSwiftExtensions, DataSyntax::kCode, kSwift},
    DataLanguageRow{kPlainExtensions, DataSyntax::kCode, kPlain},
    DataLanguageRow{kProtoExtensions, DataSyntax::kSchema, kProto},
    DataLanguageRow{kGraphqlExtensions, DataSyntax::kSchema, kGraphql},
    DataLanguageRow{kPrismaExtensions, DataSyntax::kSchema, kPrisma},
    DataLanguageRow{kThriftExtensions, DataSyntax::kSchema, kThrift},
    DataLanguageRow{kAvroExtensions, DataSyntax::kSchema, kAvro},
    DataLanguageRow{kJsonExtensions, DataSyntax::kDocument, kJson},
    DataLanguageRow{kYamlExtensions, DataSyntax::kDocument, kYaml},
};
static_assert(std::ranges::all_of(kLanguages, [](const auto& row) {
  return row.evidence.size() <= kMostEvidence;
}));

}  // namespace

std::span<const DataLanguageRow> data_languages() { return kLanguages; }

}  // namespace kestrix
