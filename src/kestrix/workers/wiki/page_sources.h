#pragma once

// The public face of the component: the selection rules, and the class of detectors that a wiki
// generator takes in as a base. See detectors.h for what a host has to supply.

#include "kestrix/workers/wiki/page_sources/constants.h"  // IWYU pragma: export
#include "kestrix/workers/wiki/page_sources/detectors.h"  // IWYU pragma: export
#include "kestrix/workers/wiki/page_sources/rules.h"      // IWYU pragma: export
