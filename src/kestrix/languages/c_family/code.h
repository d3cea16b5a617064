#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

extern const CodeRules c_code;
extern const CodeRules cpp_code;

}  // namespace kestrix::index
