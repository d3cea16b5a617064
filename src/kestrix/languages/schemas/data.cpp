#include <array>
#include <string_view>

#include "kestrix/definitions/evidence.h"

namespace kestrix {
namespace {

using enum EvidenceKind;

constexpr auto kProtoExtensions = std::to_array<std::string_view>({"proto"});
constexpr std::array kProto{Evidence{kMessage, R"(^[ \t]*message\s+\w+\s*\{)"}};

constexpr auto kGraphqlExtensions = std::to_array<std::string_view>({"graphql", "graphqls", "gql"});
constexpr std::array kGraphql{
    Evidence{kSchema, R"(^(?:extend\s+)?(?:type|input|interface|enum|union)\s+\w+)"}};

constexpr auto kPrismaExtensions = std::to_array<std::string_view>({"prisma"});
constexpr std::array kPrisma{Evidence{kEntity, R"(^[ \t]*model\s+\w+\s*\{)"},
                             Evidence{kSchema, R"(^[ \t]*(?:enum|type|view)\s+\w+\s*\{)"}};

constexpr auto kThriftExtensions =
    std::to_array<std::string_view>({"thrift", "fbs", "capnp", "avdl"});
constexpr std::array kThrift{
    Evidence{kSchema, R"(^[ \t]*(?:struct|table|record|exception|error|union|enum)\s+\w+)"}};

constexpr auto kAvroExtensions = std::to_array<std::string_view>({"avsc"});
constexpr std::array kAvro{Evidence{kSchema, R"re("type"\s*:\s*"(?:record|enum)")re"}};

constexpr auto kJsonExtensions = std::to_array<std::string_view>({"json"});
constexpr std::array kJson{
    Evidence{kDialect, R"re("\$schema"\s*:\s*"https?://json-schema\.org/|)re"
                       R"re("(?:openapi|swagger)"\s*:\s*"[123]\.)re"},
    Evidence{kSchemaMembers, R"re("(?:properties|definitions|\$defs|schemas)"\s*:\s*\{)re"},
};

constexpr auto kYamlExtensions = std::to_array<std::string_view>({"yaml", "yml"});
constexpr std::array kYaml{
    Evidence{kDialect, R"(^(?:openapi|swagger)\s*:\s*["']?[123]\.|)"
                       R"(^["']?\$schema["']?\s*:\s*["']?https?://json-schema\.org/)"},
    Evidence{kSchemaMembers, R"(^\s*(?:properties|definitions|\$defs|schemas)\s*:\s*\r?$)"},
};

}  // namespace

const DataLanguage& proto_data() {
  static constexpr DataLanguage kLanguage{kProtoExtensions, DataSyntax::kSchema, kProto};
  return kLanguage;
}

const DataLanguage& graphql_data() {
  static constexpr DataLanguage kLanguage{kGraphqlExtensions, DataSyntax::kSchema, kGraphql};
  return kLanguage;
}

const DataLanguage& prisma_data() {
  static constexpr DataLanguage kLanguage{kPrismaExtensions, DataSyntax::kSchema, kPrisma};
  return kLanguage;
}

const DataLanguage& thrift_data() {
  static constexpr DataLanguage kLanguage{kThriftExtensions, DataSyntax::kSchema, kThrift};
  return kLanguage;
}

const DataLanguage& avro_data() {
  static constexpr DataLanguage kLanguage{kAvroExtensions, DataSyntax::kSchema, kAvro};
  return kLanguage;
}

const DataLanguage& json_data() {
  static constexpr DataLanguage kLanguage{kJsonExtensions, DataSyntax::kDocument, kJson};
  return kLanguage;
}

const DataLanguage& yaml_data() {
  static constexpr DataLanguage kLanguage{kYamlExtensions, DataSyntax::kDocument, kYaml};
  return kLanguage;
}

}  // namespace kestrix
