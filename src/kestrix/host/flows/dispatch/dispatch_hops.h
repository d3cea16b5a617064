#pragma once

#include "kestrix/host/flows/dispatch/dispatch_roots.h"

namespace kestrix {

/// Adds what has to do with those that lead to the entry points: who calls them, what they and the
/// entry points call or bear.
void add_hops(Dispatch& dispatch);

/// Adds who makes what each of the entry points takes for its own, and what that comes from.
void add_messages(Dispatch& dispatch);

}  // namespace kestrix
