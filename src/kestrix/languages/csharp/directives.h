#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kestrix/syntax/lexis.h"

namespace kestrix::index::csharp {

/// What comments, directives and strings of C# look like. "#" opens a directive, which is as little
/// code as a comment.
const Lexis& lexis();

/// Blanks the lines of directives (#if, #region …), which may stand where the grammar expects none.
/// Of the branches of a conditional the first one stays, and others when they are whole: when each
/// adds complete statements, declarations or list entries, so that all can be read one after the
/// other. None when there is no directive; else a text of equal length. One pass.
std::optional<std::string> mask(std::string_view text);

}  // namespace kestrix::index::csharp
