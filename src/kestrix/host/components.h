#pragma once

#include <span>
#include <string>
#include <vector>

#include "kestrix/index/repository.h"

namespace kestrix {

/// The components that the structure of folders shows: each folder that is named for a layer is
/// one, with that layer and the pattern of all below it. A folder of a layer within another is a
/// component of its own. By pattern, ascending; each once.
///
/// The layers are "domain", "application", "infrastructure" and "interface" (folders "interfaces",
/// "adapters", "presentation"). Names count whole and in any case, alone or as the last part of a
/// project's dotted name ("Shop.Domain"). Linear in the paths; reads nothing else.
std::vector<Component> components_of(std::span<const std::string> paths);

}  // namespace kestrix
