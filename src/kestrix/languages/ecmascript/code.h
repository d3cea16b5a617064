#pragma once

#include "kestrix/languages/code/rules.h"

namespace kestrix::index {

extern const CodeRules javascript_code;
extern const CodeRules typescript_code;
extern const CodeRules tsx_code;
extern const CodeRules component_code;  ///< of scripts in markup

}  // namespace kestrix::index
