#include "kestrix/definitions/definition_counter.h"

#include <re2/re2.h>

#include <algorithm>
#include <array>
#include <span>

#include "kestrix/definitions/ddl.h"
#include "kestrix/text/ascii.h"

namespace kestrix {
namespace {

using Names = std::span<const std::string_view>;

// What one class of a schema document is worth at most: such documents repeat "properties" at every
// level, and a large one is no stronger evidence than a page of definitions.
constexpr std::uint32_t kMostDocumentMembers = 20;

struct BaseName {
  std::string_view name;
  ClassSort sort;
};

constexpr auto kBases = std::to_array<BaseName>({
    {"models.Model", ClassSort::kMapped},
    {"db.Model", ClassSort::kMapped},
    {"EmbeddedDocument", ClassSort::kMapped},
    {"Document", ClassSort::kMapped},
    {"DynamicDocument", ClassSort::kMapped},
    {"table=True", ClassSort::kMapped},
    {"BaseModel", ClassSort::kValidated},
    {"pydantic.BaseModel", ClassSort::kValidated},
    {"RootModel", ClassSort::kValidated},
    {"SQLModel", ClassSort::kValidated},
    {"Schema", ClassSort::kValidated},
    {"msgspec.Struct", ClassSort::kValidated},
    {"TypedDict", ClassSort::kRecord},
    {"typing.TypedDict", ClassSort::kRecord},
    {"typing_extensions.TypedDict", ClassSort::kRecord},
    {"NamedTuple", ClassSort::kRecord},
    {"typing.NamedTuple", ClassSort::kRecord},
});

constexpr std::size_t kLongestList = 400;

constexpr auto kMappedTraits =
    std::to_array<std::string_view>({"Queryable", "QueryableByName", "Insertable", "Identifiable",
                                     "AsChangeset", "Selectable", "FromRow", "DeriveEntityModel"});
constexpr auto kRecordTraits = std::to_array<std::string_view>(
    {"Serialize", "Deserialize", "Serialize_repr", "Deserialize_repr"});

bool contains(Names names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

// Calls `take` with each word of a list of names, where "." and "=" are part of a name.
template <class Take>
void for_each_name(std::string_view list, Take take) {
  const auto is_part = [](char c) { return ascii::is_word(c) || c == '.' || c == '='; };
  for (auto at = list.begin(); at != list.end();) {
    const auto begin = std::find_if(at, list.end(), is_part);
    at = std::find_if_not(begin, list.end(), is_part);
    if (begin != at) take(std::string_view(begin, at));
  }
}

// What stands between an opening parenthesis that ends before `at` and the next closing one.
std::string_view list_at(std::string_view text, std::size_t at) {
  const auto list = text.substr(at, kLongestList);
  return list.substr(0, list.find(')'));
}

// The name in "class Name(" or "class Name[T](".
std::string_view declared_class(std::string_view head) {
  head = head.substr(0, head.find_first_of("[("));
  while (!head.empty() && ascii::is_space(head.back())) head.remove_suffix(1);
  const auto begin = std::find_if_not(head.rbegin(), head.rend(), ascii::is_word).base();
  return {begin, head.end()};
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

// "message GetUserRequest {": what a procedure takes and gives, not what there is.
bool is_call_envelope(std::string_view declaration) {
  static const RE2 pattern(R"((?:Request|Response|Reply)\s*\{$)");
  return RE2::PartialMatch({declaration.data(), declaration.size()}, pattern);
}

// Properties of a user-interface component, and the actions of its store, are no data of the
// product.
bool is_component_type(std::string_view declaration) {
  static const RE2 pattern(R"((?:interface|type)\s+\w*(?:Props|Action)\b)");
  return RE2::PartialMatch({declaration.data(), declaration.size()}, pattern);
}

}  // namespace

const TripleQuoted* DefinitionCounter::string_around(std::size_t at) {
  if (!strings_) strings_ = triple_quoted(text_);
  while (next_string_ < strings_->size() && (*strings_)[next_string_].end <= at) ++next_string_;
  const bool inside = next_string_ < strings_->size() && (*strings_)[next_string_].begin <= at;
  return inside ? &(*strings_)[next_string_] : nullptr;
}

bool DefinitionCounter::is_documentation(std::size_t at) {
  if (syntax_ != DataSyntax::kPython) return false;
  const auto* string = string_around(at);
  return string != nullptr && string->documentation;
}

bool DefinitionCounter::is_quoted_code(std::size_t at) {
  if (syntax_ == DataSyntax::kPython) return string_around(at) != nullptr;
  return syntax_ == DataSyntax::kScript && literals_.hold(at);
}

void DefinitionCounter::add(EvidenceKind kind, Stretch place) {
  if (kind == EvidenceKind::kDdl) return add_ddl(place);
  if (kind == EvidenceKind::kPythonClass) return add_python_class(place);
  if (is_quoted_code(place.begin)) return;
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
      ++signals_.columns;
      break;
    case EvidenceKind::kMapping:
      add_mapping();
      break;
    case EvidenceKind::kMessage:
      if (!is_call_envelope(text_.substr(place.begin, place.end - place.begin))) ++signals_.schemas;
      break;
    case EvidenceKind::kMongoose:
      if (uses_mongoose()) ++signals_.entities;
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
    case EvidenceKind::kPythonClass:
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

// Without the brace that the head ends in; "" once too much was looked into.
std::string_view DefinitionCounter::block_behind(Stretch head) {
  const auto block = block_at(text_.substr(0, head.end + block_bytes_left_), head.end - 1);
  block_bytes_left_ -= std::min(block.size(), block_bytes_left_);
  return block;
}

bool DefinitionCounter::uses_mongoose() {
  if (!uses_mongoose_) uses_mongoose_ = text_.find("mongoose") != std::string_view::npos;
  return *uses_mongoose_;
}

void DefinitionCounter::add_ddl(Stretch place) {
  if (syntax_ == DataSyntax::kDocument) return;
  if (comments_.hold(place.begin)) return;
  const auto ddl = ddl_at(text_, place.begin);
  if (ddl == Ddl::kNone || is_documentation(place.begin)) return;
  ++(ddl == Ddl::kCreates ? signals_.tables : signals_.alterations);
}

ClassSort DefinitionCounter::sort_of_base(std::string_view base) const {
  const auto own = classes_.find(base);
  if (own != classes_.end()) return own->second;
  const auto known = std::ranges::find(kBases, base, &BaseName::name);
  return known == kBases.end() ? ClassSort::kPlain : known->sort;
}

void DefinitionCounter::add_python_class(Stretch place) {
  auto sort = ClassSort::kPlain;
  for_each_name(list_at(text_, place.end),
                [&](std::string_view base) { sort = std::max(sort, sort_of_base(base)); });
  class_is_mapped_ = sort == ClassSort::kMapped;
  if (sort == ClassSort::kPlain || is_quoted_code(place.begin)) return;
  const auto head = text_.substr(place.begin, place.end - place.begin);
  classes_.insert_or_assign(declared_class(head), sort);
  if (sort == ClassSort::kMapped) ++signals_.entities;
  if (sort == ClassSort::kValidated) ++signals_.schemas;
  if (sort == ClassSort::kRecord) ++signals_.records;
}

void DefinitionCounter::add_mapping() {
  ++signals_.columns;
  const bool fresh = syntax_ == DataSyntax::kPython ? !class_is_mapped_ : signals_.entities == 0;
  if (fresh) ++signals_.entities;
  class_is_mapped_ = true;
}

void DefinitionCounter::add_fields(Stretch place) {
  if (is_component_type(text_.substr(place.begin, place.end - place.begin))) return;
  if (holds_only_fields(block_behind(place))) ++signals_.records;
}

void DefinitionCounter::add_tagged_struct(Stretch place) {
  if (place.begin < block_end_) return;
  const auto block = block_behind(place);
  block_end_ = place.end + block.size();
  if (block.find('`') == std::string_view::npos || !has_tag(block)) return;
  ++(has_mapping_tag(block) ? signals_.entities : signals_.records);
}

void DefinitionCounter::add_derive(Stretch place) {
  bool mapped = false;
  bool record = false;
  for_each_name(list_at(text_, place.end), [&](std::string_view trait) {
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
