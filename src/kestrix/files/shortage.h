#pragma once

#include <string_view>

namespace kestrix::index {

/// Throws `Error`, which names `path`, where `error` (of errno) says that the process or the system
/// has run out of descriptors or memory. What was about to be done tells nothing then, and going on
/// would pass over files for no reason of their own.
void check_shortage(std::string_view path, int error);

}  // namespace kestrix::index
