#include "kestrix/host/data_models/type_table.h"

#include <string_view>
#include <unordered_map>

#include "kestrix/text/seeded_hash.h"

namespace kestrix {
namespace {

using index::DeclarationKind;
using index::DeclarationView;
using index::FileId;

bool is_getter(std::string_view name) {
  for (const std::string_view verb : {"get", "is", "has"}) {
    if (name.starts_with(verb) && name.size() > verb.size() &&
        (name[verb.size()] < 'a' || name[verb.size()] > 'z')) {
      return true;
    }
  }
  return false;
}

}  // namespace

TypeTable::TypeTable(const CodeEvidence& evidence) : evidence_(evidence) {
  const auto& index = evidence.index();
  const auto files = index.files();
  first_.resize(files.size() + 1);
  for (FileId file = 0; file < files.size(); ++file) {
    const auto rows = index.declarations(file);
    first_[file + 1] = first_[file] + static_cast<std::uint32_t>(rows.size());
    owner_.resize(first_[file + 1], kNone);
    if (!evidence_.is_product(file)) continue;
    for (std::uint32_t place = 0; place < rows.size(); ++place) add(file, rows, place);
  }
  add_methods_outside();
}

void TypeTable::add(FileId file, std::span<const DeclarationView> rows, std::uint32_t place) {
  const DeclarationView& row = rows[place];
  std::uint32_t& owner = owner_[first_[file] + place];
  const bool inside =
      row.container != 0 && rows[row.container - 1].kind != DeclarationKind::kModule;
  if (inside) {
    owner = owner_[first_[file] + row.container - 1];
    if (owner != kNone && types_[owner].at.place + 1 == row.container) count_member(owner, row);
    return;
  }
  const bool value =
      row.kind == DeclarationKind::kConstant || row.kind == DeclarationKind::kVariable;
  if (!is_type(row.kind) && !value) return;
  owner = static_cast<std::uint32_t>(types_.size());
  types_.push_back({.at = {file, place}, .fields = row.fields});
}

// Methods that are written down outside of their type, maybe in another file ("Type.method").
void TypeTable::add_methods_outside() {
  std::unordered_map<std::string_view, std::uint32_t, SeededHash> by_name;
  for (std::uint32_t at = 0; at < types_.size(); ++at) {
    const DeclarationView& row = evidence_[types_[at].at];
    if (!is_type(row.kind)) continue;
    const auto [found, first] = by_name.try_emplace(row.name, at);
    if (!first) found->second = kNone;
  }
  for (FileId file = 0; file + 1 < first_.size(); ++file) {
    const auto rows = evidence_.index().declarations(file);
    for (std::uint32_t place = 0; place < rows.size(); ++place) {
      std::uint32_t& owner = owner_[first_[file] + place];
      const auto dot = rows[place].name.find('.');
      const bool method = rows[place].kind == DeclarationKind::kMethod;
      if (owner != kNone || !method || dot == std::string_view::npos) continue;
      const auto type = by_name.find(rows[place].name.substr(0, dot));
      if (type == by_name.end() || type->second == kNone) continue;
      owner = type->second;
      count_member(owner, rows[place]);
    }
  }
}

void TypeTable::count_member(std::uint32_t owner, const DeclarationView& row) {
  if (!is_method(row)) return;
  DataType& type = types_[owner];
  const bool getter = row.is_abstract && is_getter(row.name);
  if (getter) ++type.getters;
  ++(is_accessor(row) ? type.accessors : type.workers);
}

}  // namespace kestrix
