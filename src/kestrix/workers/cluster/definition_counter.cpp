#include "kestrix/workers/cluster/definition_counter.h"

#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <functional>
#include <span>

#include "kestrix/utils/ascii.h"
#include "kestrix/workers/cluster/ddl.h"

namespace kestrix {
namespace {

using Names = std::span<const std::string_view>;

// What one class of a schema document is worth at most: such documents repeat "properties" at every
// level, and a large one is no stronger evidence than a page of definitions.
constexpr std::uint32_t kMostDocumentMembers = 20;

// Found by hand: a pattern with a bounded run this long is too large an automaton to be fast.
constexpr std::size_t kLongestList = 400;

constexpr auto kMappedBases = std::to_array<std::string_view>(
    {"models.Model", "db.Model", "DeclarativeBase", "DeclarativeBaseNoMeta", "EmbeddedDocument",
     "Document", "DynamicDocument", "table=True"});
constexpr auto kValidatedBases = std::to_array<std::string_view>(
    {"BaseModel", "pydantic.BaseModel", "RootModel", "SQLModel", "Schema", "msgspec.Struct"});
constexpr auto kRecordBases =
    std::to_array<std::string_view>({"TypedDict", "typing.TypedDict", "typing_extensions.TypedDict",
                                     "NamedTuple", "typing.NamedTuple"});

constexpr auto kMappedTraits =
    std::to_array<std::string_view>({"Queryable", "QueryableByName", "Insertable", "Identifiable",
                                     "AsChangeset", "Selectable", "FromRow", "DeriveEntityModel"});
constexpr auto kRecordTraits = std::to_array<std::string_view>(
    {"Serialize", "Deserialize", "Serialize_repr", "Deserialize_repr"});

bool contains(Names names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

// Calls `take` with each word of a list of names, where "." and "=" are part of a name.
void for_each_name(std::string_view list, const std::function<void(std::string_view)>& take) {
  const auto is_part = [](char c) { return ascii::is_word(c) || c == '.' || c == '='; };
  for (auto at = list.begin(); at != list.end();) {
    const auto begin = std::find_if(at, list.end(), is_part);
    at = std::find_if_not(begin, list.end(), is_part);
    if (begin != at) take(std::string_view(begin, at));
  }
}

std::string_view last_name(std::string_view path) { return path.substr(path.rfind(':') + 1); }

bool has_mapping_tag(std::string_view block) {
  static const RE2 pattern(R"([`\s](?:gorm|db|bun|xorm|bson|pg|sql|dynamodbav|datastore):")");
  return RE2::PartialMatch({block.data(), block.size()}, pattern);
}

bool has_tag(std::string_view block) {
  static const RE2 pattern(R"(`[ \t]*\w+:")");
  return RE2::PartialMatch({block.data(), block.size()}, pattern);
}

// Properties of a user-interface component are no data of the product.
bool is_component_properties(std::string_view declaration) {
  static const RE2 pattern(R"((?:interface|type)\s+\w*Props\b)");
  return RE2::PartialMatch({declaration.data(), declaration.size()}, pattern);
}

}  // namespace

std::string_view DefinitionCounter::text_at(Stretch place) const {
  return text_.substr(place.begin, place.end - place.begin);
}

std::optional<std::string_view> DefinitionCounter::list_behind(Stretch place) const {
  const auto list = text_.substr(place.end, kLongestList + 1);
  const auto end = list.find(')');
  if (end == std::string_view::npos) return std::nullopt;
  return list.substr(0, end);
}

const TripleQuoted* DefinitionCounter::string_around(std::size_t at) {
  if (!strings_) strings_ = triple_quoted(text_);
  while (next_string_ < strings_->size() && (*strings_)[next_string_].end <= at) ++next_string_;
  const bool inside = next_string_ < strings_->size() && (*strings_)[next_string_].begin <= at;
  return inside ? &(*strings_)[next_string_] : nullptr;
}

void DefinitionCounter::add(EvidenceKind kind, Stretch place) {
  if (kind == EvidenceKind::kDdl) return add_ddl(place);
  if (syntax_ == DataSyntax::kPython && string_around(place.begin) != nullptr) return;
  switch (kind) {
    case EvidenceKind::kTable:
    case EvidenceKind::kDdlCall:
      ++signals_.tables;
      break;
    case EvidenceKind::kEntity:
      ++signals_.entities;
      break;
    case EvidenceKind::kSchema:
      ++signals_.schemas;
      break;
    case EvidenceKind::kRecord:
      ++signals_.records;
      break;
    case EvidenceKind::kColumn:
      add_column();
      break;
    case EvidenceKind::kPythonClass:
      add_python_class(place);
      break;
    case EvidenceKind::kMongoose:
      if (text_.find("mongoose") != std::string_view::npos) ++signals_.entities;
      break;
    case EvidenceKind::kFields:
      add_fields(place);
      break;
    case EvidenceKind::kTaggedStruct:
      add_tagged_struct(place);
      break;
    case EvidenceKind::kDerive:
      add_derive(place);
      break;
    case EvidenceKind::kDialect:
      dialect_ = true;
      break;
    case EvidenceKind::kSchemaMembers:
      ++signals_.schemas;
      break;
    case EvidenceKind::kDdl:
      break;
  }
}

DataSignals DefinitionCounter::signals() const {
  auto signals = signals_;
  signals.schema_file = syntax_ == DataSyntax::kSchema || dialect_;
  if (syntax_ == DataSyntax::kDocument) {
    signals.schemas = dialect_ ? std::min(signals.schemas, kMostDocumentMembers) : 0;
  }
  return signals;
}

void DefinitionCounter::add_ddl(Stretch place) {
  if (syntax_ == DataSyntax::kDocument) return;
  if (syntax_ == DataSyntax::kPython) {
    const auto* string = string_around(place.begin);
    if (string != nullptr && string->documentation) return;
  }
  const auto ddl = ddl_at(text_, place.begin);
  if (ddl == Ddl::kCreates) ++signals_.tables;
  if (ddl == Ddl::kAdds) ++signals_.alterations;
}

void DefinitionCounter::add_python_class(Stretch place) {
  const auto bases = list_behind(place);
  if (!bases) return;
  bool mapped = false;
  bool validated = false;
  bool record = false;
  for_each_name(*bases, [&](std::string_view base) {
    mapped = mapped || contains(kMappedBases, base);
    validated = validated || contains(kValidatedBases, base);
    record = record || contains(kRecordBases, base);
  });
  class_is_mapped_ = mapped;
  if (mapped) {
    ++signals_.entities;
  } else if (validated) {
    ++signals_.schemas;
  } else if (record) {
    ++signals_.records;
  }
}

void DefinitionCounter::add_column() {
  ++signals_.columns;
  if (syntax_ == DataSyntax::kPython && !class_is_mapped_) {
    ++signals_.entities;
    class_is_mapped_ = true;
  }
}

void DefinitionCounter::add_fields(Stretch place) {
  if (is_component_properties(text_at(place))) return;
  if (holds_only_fields(block_at(text_, place.end - 1))) ++signals_.records;
}

void DefinitionCounter::add_tagged_struct(Stretch place) {
  if (place.begin < block_end_) return;
  const auto block = block_at(text_, place.end - 1);
  block_end_ = place.end + block.size();
  if (has_mapping_tag(block)) {
    ++signals_.entities;
  } else if (has_tag(block)) {
    ++signals_.records;
  }
}

void DefinitionCounter::add_derive(Stretch place) {
  const auto traits = list_behind(place);
  if (!traits) return;
  bool mapped = false;
  bool record = false;
  for_each_name(*traits, [&](std::string_view trait) {
    mapped = mapped || contains(kMappedTraits, last_name(trait));
    record = record || contains(kRecordTraits, last_name(trait));
  });
  if (mapped) {
    ++signals_.entities;
  } else if (record) {
    ++signals_.records;
  }
}

}  // namespace kestrix
