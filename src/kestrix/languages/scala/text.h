#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kestrix/syntax/lexis.h"

/// What can be told of Scala's text without its grammar.
namespace kestrix::index::scala {

const Lexis& lexis();

/// A copy of the text without the annotations of constructors ("class C @Inject() (…)"): the
/// grammar takes the parameters behind them for theirs.
std::optional<std::string> mask(std::string_view text);

}  // namespace kestrix::index::scala
