#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How declarations and mentions stand in the trees of Kotlin.
extern const CodeRules kotlin_code;

}  // namespace kestrix::index
