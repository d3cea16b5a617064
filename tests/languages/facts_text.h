#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "kestrix/facts/facts.h"

namespace kestrix::index {

/// Facts as fixtures write them, one text a fact, by the line that they stand on.
///
///   class Name | signature                      likewise interface, constant, variable
///   import module                               "..module" for level 2, "import" for no module
///   import module form=2 uses=3 name*4 other>exported*1
///
/// What is not tied to a line (the package, declared names, used names) is under line 0:
///
///   package a.b     declares Name     uses Name*2
std::map<std::uint32_t, std::vector<std::string>> facts_text(const FileFacts& facts);

/// The facts that a fixture expects: comments "#- fact" or "//- fact" (several on a line each with
/// its own mark), for the line that they stand on or, when nothing else stands there, for the next
/// line that holds code. Facts of the whole file may stand on any line.
std::map<std::uint32_t, std::vector<std::string>> expected_facts(std::string_view fixture);

}  // namespace kestrix::index
