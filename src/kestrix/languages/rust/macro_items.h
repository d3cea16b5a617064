#pragma once

#include <string_view>
#include <vector>

#include "kestrix/syntax/lexis.h"

namespace kestrix::index {

/// What a macro is given that looks like items ("cfg_net! { mod tcp; pub use tcp::Stream; }"): the
/// parser sees no more than tokens there. Views the text.
struct MacroItems {
  struct Use {
    std::string_view tree;  ///< behind "use", up to and without ";"
    bool handed_on;
  };
  std::vector<std::string_view> modules;  ///< declared without a body
  std::vector<Use> uses;
  std::vector<std::string_view> declared;  ///< names of other items, the outermost ones
};

/// One pass over the tokens of a macro, its braces included.
MacroItems items_of_macro(std::string_view tokens, const Lexis& lexis);

}  // namespace kestrix::index
