#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How declarations and mentions stand in the trees of Swift.
extern const CodeRules swift_code;

}  // namespace kestrix::index
