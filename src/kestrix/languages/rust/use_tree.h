#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kestrix/syntax/lexis.h"

namespace kestrix::index {

/// One name that a use declaration brings in: "use a::{b::C as D}" is {"a::b", "C", "D"}.
struct UseLeaf {
  std::string prefix;      ///< "" where the name stands alone
  std::string name;        ///< "*" for all
  std::string_view alias;  ///< "" where it keeps its name
};

/// The names of the tree that stands in `text` (behind "use", up to ";"), in source order. One
/// pass; what is malformed is read as far as it makes sense, and prefixes that grow beyond any
/// sense are left out.
std::vector<UseLeaf> leaves_of(std::string_view text, const Lexis& lexis);

}  // namespace kestrix::index
