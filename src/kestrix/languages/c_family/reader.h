#pragma once

#include "kestrix/facts/facts.h"
#include "kestrix/syntax/lexis.h"
#include "kestrix/syntax/source_tree.h"

namespace kestrix::index {

/// Comments and strings of C and C++.
const Lexis& c_family_lexis();

/// Facts of a C or C++ file.
///
/// - includes wherever they stand, also within a table or a function; not in comments. Their form
///   is an IncludeForm;
/// - structs, classes, unions and enums with a body, also under their typedef's name. A class with
///   a pure virtual member has a signature that starts with "abstract";
/// - macros with a value, variables and static members that are defined here;
/// - `declares`: types, functions, values and macros outside of classes; `uses`: names that stand
///   where a type, a function or a macro may stand.
FileFacts read_c_family(const SourceTree& tree);

}  // namespace kestrix::index
