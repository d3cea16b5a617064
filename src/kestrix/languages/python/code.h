#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How Python's declarations and mentions are found.
extern const CodeRules python_code;

}  // namespace kestrix::index
