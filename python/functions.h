#pragma once

#include <span>

#include "python/function.h"

namespace kestrix::python {

/// The selection rules: functions of the module.
std::span<const Function> rule_functions();

/// The detectors: methods of `PageSourcesMixin`.
std::span<const Function> detector_methods();

}  // namespace kestrix::python
