#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrix/index/tables/declaration_table.h"

namespace kestrix::index {

/// The namespaces that the declaration `holder` (from one, 0: none) of a file is or stands in:
/// "a.b".
std::string namespace_of(const DeclarationTable& table, FileId file, std::uint32_t holder);
/// The namespaces around a declaration.
std::string namespace_of(const DeclarationTable& table, DeclarationRef at);

/// Whether the declaration stands in `space`, or in one whose name ends with it.
bool is_in_namespace(const DeclarationTable& table, DeclarationRef at, std::string_view space);

/// Of several the ones in the innermost namespace around `space`; all when none is around it.
void keep_nearest(const DeclarationTable& table, std::string_view space,
                  std::vector<DeclarationRef>& among);

/// What is only declared gives way to what defines it; of several such the first one stays.
void keep_definitions(const DeclarationTable& table, std::vector<DeclarationRef>& among);

/// "Type.member" of a member.
std::string full_name(const DeclarationTable& table, DeclarationRef at);

/// Whether a declaration lacks what another file may bring along: a body or a value.
bool may_be_defined_elsewhere(const DeclarationView& row);
/// Whether the one can be the definition of the other.
bool defines(const DeclarationView& definition, const DeclarationView& declared);

}  // namespace kestrix::index
