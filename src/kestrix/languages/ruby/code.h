#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How declarations and mentions are found in Ruby's trees.
extern const CodeRules ruby_code;

}  // namespace kestrix::index
