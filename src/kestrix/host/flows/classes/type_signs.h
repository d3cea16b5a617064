#pragma once

#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrix/host/evidence/code_evidence.h"

namespace kestrix {

/// What files of a product may have in common through which others call them, by what it is. The
/// files as often as they show it, in any order.
struct TypeSigns {
  using Files = std::vector<index::FileId>;
  /// By language or folder, and name.
  using ByName = std::map<std::pair<std::string_view, std::string_view>, Files>;

  std::map<index::DeclarationRef, Files> bases{};    ///< own types that they name as bases
  std::map<index::DeclarationRef, Files> markers{};  ///< own decorators and annotations
  std::map<index::DeclarationRef, Files> tables{};   ///< own types of the tables that they fill
  std::map<index::DeclarationRef, Files> on_load{};  ///< own functions that they call on load alone
  std::map<index::DeclarationRef, Files> methods{};  ///< own types that they give methods to
  ByName outside{};                                  ///< a library's base types
  ByName same{};                                     ///< functions of one name in one folder
  std::set<index::DeclarationRef> data{};            ///< types that a library calls a record
};

TypeSigns type_signs(const CodeEvidence& evidence);

}  // namespace kestrix
