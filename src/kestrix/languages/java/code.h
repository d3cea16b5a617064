#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How declarations and mentions stand in the trees of Java.
extern const CodeRules java_code;

}  // namespace kestrix::index
