#pragma once

#include "kestrix/host/flows/dispatch_roots.h"

namespace kestrix {

/// Adds what has to do with those that lead to the entry points: who calls them, what they and the
/// entry points call or bear.
void add_hops(Dispatch& dispatch);

}  // namespace kestrix
