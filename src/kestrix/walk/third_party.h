#pragma once

#include <string>
#include <string_view>

#include "kestrix/files/root_directory.h"

namespace kestrix::index {

/// Whether a directory holds code that a package manager put there, tracked or not: node_modules,
/// and a vendor folder with the list that Go or Composer keeps of it. A vendor folder without one
/// may be the project's own.
bool is_third_party(const RootDirectory& root, std::string_view name, const std::string& path);

}  // namespace kestrix::index
