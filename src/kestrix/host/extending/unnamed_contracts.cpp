#include "kestrix/host/extending/unnamed_contracts.h"

#include <algorithm>

#include "kestrix/host/evidence/typed_values.h"

namespace kestrix {

using index::DeclarationKind;
using index::DeclarationRef;
using index::FileId;
using index::IndexedReference;

namespace {

constexpr std::uint32_t kLeastPointers = 2;  // to functions
constexpr std::size_t kLeastMethods = 2;     // types have one in common by accident
constexpr std::size_t kMostMethods = 40;
constexpr std::size_t kMostTypes = 200;        // with one method
constexpr std::uint32_t kFarthestValue = 200;  // declarations behind where it is announced

}  // namespace

UnnamedContracts::UnnamedContracts(const CodeEvidence& evidence) : evidence_(evidence) {
  collect_protocols();
  collect_methods();
  collect_tables();
  types_.insert(protocols_.begin(), protocols_.end());
}

std::vector<DeclarationRef> UnnamedContracts::implementers(DeclarationRef type) const {
  if (protocols_.contains(type)) return shaped_like(type);
  return types_.contains(type) ? values_of(type) : std::vector<DeclarationRef>();
}

void UnnamedContracts::collect_protocols() {
  for (const IndexedReference& to : evidence_.index().references()) {
    if (to.target != IndexedReference::kOutside || to.within == 0) continue;
    if (!kSubtyping.has(to.role) || !evidence_.is_product(to.source)) continue;
    if (evidence_.index().files()[to.source].language != "python") continue;
    if (to.name == "Protocol" || to.name.ends_with(".Protocol")) {
      protocols_.insert({to.source, to.within - 1});
    }
  }
}

// Who has a method that a protocol asks for, too; of those that many have, the first.
void UnnamedContracts::collect_methods() {
  for (const DeclarationRef protocol : protocols_) {
    for (const std::string_view method : methods_of(protocol)) having_.try_emplace(method);
  }
  const auto files = evidence_.index().files();
  for (FileId file = 0; file < files.size() && !having_.empty(); ++file) {
    if (files[file].language != "python" || !evidence_.is_product(file)) continue;
    const auto rows = evidence_.index().declarations(file);
    for (const auto& row : rows) {
      if (row.kind != DeclarationKind::kMethod || row.container == 0) continue;
      const DeclarationRef type{file, row.container - 1};
      const auto found = having_.find(row.name);
      if (found == having_.end() || !is_type(rows[type.place].kind)) continue;
      if (!protocols_.contains(type) && found->second.size() < kMostTypes) {
        found->second.push_back(type);
      }
    }
  }
}

void UnnamedContracts::collect_tables() {
  for (FileId file = 0; file < evidence_.index().files().size(); ++file) {
    const std::string_view language = evidence_.index().files()[file].language;
    if ((language != "c" && language != "cpp") || !evidence_.is_product(file)) continue;
    const auto rows = evidence_.index().declarations(file).size();
    for (std::uint32_t at = 0; at < rows; ++at) {
      if (is_table({file, at})) types_.insert({file, at});
    }
  }
}

bool UnnamedContracts::is_table(DeclarationRef type) const {
  const auto& row = evidence_[type];
  return row.kind == DeclarationKind::kStruct && row.abstract_methods >= kLeastPointers &&
         row.methods == 0;
}

std::vector<std::string_view> UnnamedContracts::methods_of(DeclarationRef protocol) const {
  std::vector<std::string_view> methods;
  for (const auto& row : evidence_.index().declarations(protocol.file)) {
    const bool own = row.kind == DeclarationKind::kMethod && row.container == protocol.place + 1;
    if (own && !row.name.starts_with("__")) methods.push_back(row.name);
  }
  return methods;
}

// The types that have all of its methods, if those are several.
std::vector<DeclarationRef> UnnamedContracts::shaped_like(DeclarationRef protocol) const {
  const auto methods = methods_of(protocol);
  if (methods.size() < kLeastMethods || methods.size() > kMostMethods) return {};
  const auto holders = [this](std::string_view method) -> const auto& {
    return having_.find(method)->second;
  };
  const auto rarest = std::ranges::min(
      methods, {}, [&](std::string_view method) { return holders(method).size(); });
  const auto& table = evidence_.index().declarations();
  std::set<DeclarationRef> types;
  for (const DeclarationRef other : holders(rarest)) {
    const auto has = [&](std::string_view method) {
      return table.find_member(other, method).has_value();
    };
    if (std::ranges::all_of(methods, has)) types.insert(other);
  }
  return {types.begin(), types.end()};
}

// The values at the top of files that hold something from the start. They may be announced before.
std::vector<DeclarationRef> UnnamedContracts::values_of(DeclarationRef table) const {
  std::set<DeclarationRef> values;
  for (const std::uint32_t at : evidence_.references_to(table)) {
    const IndexedReference& to = evidence_.reference(at);
    if (to.role != index::Role::kType || !evidence_.is_product(to.source)) continue;
    const auto value = value_of_type(evidence_, to);
    if (!value) continue;
    const auto rows = evidence_.index().declarations(to.source);
    const auto last = std::min<std::size_t>(rows.size(), value->place + kFarthestValue);
    for (std::uint32_t place = value->place; place < last; ++place) {
      if (rows[place].name != evidence_[*value].name || rows[place].container != 0) continue;
      if (rows[place].shape == index::ValueShape::kUnknown) continue;
      values.insert({to.source, place});
      break;
    }
  }
  return {values.begin(), values.end()};
}

}  // namespace kestrix
