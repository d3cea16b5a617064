#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How declarations and mentions are found in C#.
extern const CodeRules csharp_code;

}  // namespace kestrix::index
