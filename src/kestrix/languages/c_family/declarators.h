#pragma once

#include <optional>
#include <string>

#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {

/// What a declarator declares, below its pointers, references, arrays and initial value.
struct Declarator {
  TSNode name{};   ///< its last part: an identifier, an operator, a destructor
  TSNode whole{};  ///< the name with what qualifies it
  bool function = false;
  bool function_pointer = false;
  bool array = false;
  std::optional<TSNode> value{};
};

/// None where a grammar's guess names nothing.
std::optional<Declarator> declarator_of(TSNode node);

/// "a.Type.member" of "a::Type<T>::member", "~Type" and "operator==" as they are written.
std::string name_of(const SourceTree& tree, const Declarator& declarator);

}  // namespace kestrix::index
