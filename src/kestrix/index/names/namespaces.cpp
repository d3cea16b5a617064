#include "kestrix/index/names/namespaces.h"

#include <algorithm>

namespace kestrix::index {
namespace {

constexpr int kMostHolders = 64;  // around one declaration

bool is_callable(DeclarationKind kind) {
  return kind == DeclarationKind::kFunction || kind == DeclarationKind::kMethod;
}

bool is_value(DeclarationKind kind) {
  return kind == DeclarationKind::kConstant || kind == DeclarationKind::kVariable;
}

bool encloses(std::string_view space, std::string_view inner) {
  return space.empty() || inner == space ||
         (inner.starts_with(space) && inner[space.size()] == '.');
}

}  // namespace

std::string namespace_of(const DeclarationTable& table, FileId file, std::uint32_t holder) {
  const auto rows = table.of(file);
  std::string space;
  int left = kMostHolders;
  for (std::uint32_t at = holder; at > 0 && at <= rows.size() && left > 0; --left) {
    const DeclarationView& row = rows[at - 1];
    at = row.container;
    if (row.kind != DeclarationKind::kModule) continue;
    space.insert(0, std::string(row.name) + (space.empty() ? "" : "."));
  }
  return space;
}

std::string namespace_of(const DeclarationTable& table, DeclarationRef at) {
  return namespace_of(table, at.file, table[at].container);
}

bool is_in_namespace(const DeclarationTable& table, DeclarationRef at, std::string_view space) {
  const std::string full = namespace_of(table, at);
  return full == space || (full.ends_with(space) && full.size() > space.size() &&
                           full[full.size() - space.size() - 1] == '.');
}

void keep_nearest(const DeclarationTable& table, std::string_view space,
                  std::vector<DeclarationRef>& among) {
  if (among.size() < 2) return;
  std::vector<DeclarationRef> nearest;
  std::size_t longest = 0;
  for (const DeclarationRef at : among) {
    const std::string own = namespace_of(table, at);
    if (!encloses(own, space)) continue;
    if (own.size() > longest) nearest.clear();
    if (own.size() >= longest) nearest.push_back(at);
    longest = std::max(longest, own.size());
  }
  if (!nearest.empty()) among = std::move(nearest);
}

void keep_definitions(const DeclarationTable& table, std::vector<DeclarationRef>& among) {
  if (among.size() < 2) return;
  const auto only_declared = [&](DeclarationRef at) { return table[at].is_abstract; };
  if (std::ranges::all_of(among, only_declared)) {
    among.resize(1);
  } else {
    std::erase_if(among, only_declared);
  }
}

std::string full_name(const DeclarationTable& table, DeclarationRef at) {
  const auto rows = table.of(at.file);
  std::string name(table[at].name);
  std::uint32_t holder = table[at].container;
  for (int left = kMostHolders; holder > 0 && left > 0; --left) {
    if (is_type(rows[holder - 1].kind)) name.insert(0, std::string(rows[holder - 1].name) + ".");
    holder = rows[holder - 1].container;
  }
  return name;
}

bool may_be_defined_elsewhere(const DeclarationView& row) {
  if (row.kind == DeclarationKind::kMethod) return !row.is_abstract;
  return row.is_abstract && (is_callable(row.kind) || is_value(row.kind));
}

bool defines(const DeclarationView& definition, const DeclarationView& declared) {
  return !definition.is_abstract && is_callable(definition.kind) == is_callable(declared.kind) &&
         is_value(definition.kind) == is_value(declared.kind);
}

}  // namespace kestrix::index
