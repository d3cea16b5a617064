#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How PHP's declarations and mentions are found.
extern const CodeRules php_code;

}  // namespace kestrix::index
