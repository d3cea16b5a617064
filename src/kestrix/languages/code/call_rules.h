#pragma once

#include <tree_sitter/api.h>

#include <string_view>

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// The rule for a call of `path`, of which `last` is the last character as it is written; `member`:
/// it is called of an object. Null for none.
const CallRule* call_rule(const CodeRules& rules, std::string_view path, char last, bool member);

/// Null where there is none.
TSNode first_argument(TSNode call, TSFieldId arguments);
/// Without a field for the arguments, they follow the callee.
bool is_sole_argument(TSNode call, TSNode callee, TSFieldId arguments);

}  // namespace kestrix::index
