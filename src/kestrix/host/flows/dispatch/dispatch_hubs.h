#pragma once

#include "kestrix/host/flows/dispatch/dispatch_roots.h"

namespace kestrix {

/// Adds who names the entry points, and takes for hubs those that lead to them.
void add_hubs(Dispatch& dispatch);

}  // namespace kestrix
