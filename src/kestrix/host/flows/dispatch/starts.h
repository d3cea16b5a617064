#pragma once

#include <map>

#include "kestrix/host/flows/dispatch/dispatch_roots.h"
#include "kestrix/host/flows/handlers.h"

namespace kestrix {

/// Adds where a product starts whose framework finds the entry points by itself: the nearest ones
/// above them. They tell most where nothing else leads to these. `handlers`: what frameworks find.
void add_starts(Dispatch& dispatch, const std::map<index::FileId, HandlerSign>& handlers);

}  // namespace kestrix
