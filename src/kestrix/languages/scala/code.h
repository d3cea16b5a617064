#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

/// How declarations and mentions stand in the trees of Scala.
extern const CodeRules scala_code;

}  // namespace kestrix::index
