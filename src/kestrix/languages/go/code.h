#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How declarations and mentions stand in the trees of Go.
extern const CodeRules go_code;

}  // namespace kestrix::index
