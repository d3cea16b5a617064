#pragma once

#include <string_view>

namespace kestrix {

/// Whether a repository-relative path is a test file, by its directories first and then by the
/// naming conventions of its language. The one predicate that the planner, the test detector and
/// the examples page share. Deterministic; reads nothing but the path.
bool is_test_path(std::string_view path);

}  // namespace kestrix
