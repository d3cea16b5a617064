#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace kestrix {

/// The commit that the work tree around a directory is at, in hexadecimal; none outside of a work
/// tree and before its first commit. Throws `Error` when it is no directory.
std::optional<std::string> revision_of(const std::filesystem::path& directory);

}  // namespace kestrix
