#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How declarations and mentions are found in Rust's trees.
extern const CodeRules rust_code;

}  // namespace kestrix::index
