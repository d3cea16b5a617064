#pragma once

// The public face of the component: the selection rules, the class of detectors that a wiki
// generator takes in as a base, and the host functions that whoever links it supplies.

#include "kestrix/utils/best_effort.h"                    // IWYU pragma: export
#include "kestrix/utils/logger.h"                         // IWYU pragma: export
#include "kestrix/utils/path_filter.h"                    // IWYU pragma: export
#include "kestrix/workers/project_units.h"                // IWYU pragma: export
#include "kestrix/workers/report_generator.h"             // IWYU pragma: export
#include "kestrix/workers/wiki/page_sources/constants.h"  // IWYU pragma: export
#include "kestrix/workers/wiki/page_sources/detectors.h"  // IWYU pragma: export
#include "kestrix/workers/wiki/page_sources/rules.h"      // IWYU pragma: export
#include "kestrix/workers/wiki/repo_facts.h"              // IWYU pragma: export
#include "kestrix/workers/wiki_cluster.h"                 // IWYU pragma: export
#include "kestrix/workers/wiki_split.h"                   // IWYU pragma: export
#include "kestrix/workers/wiki_types.h"                   // IWYU pragma: export
