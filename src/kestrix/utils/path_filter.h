#pragma once

#include <string_view>

namespace kestrix {

/// Whether a repository-relative path is a test file. The one predicate that the planner, the test
/// detector and the examples page share. Deterministic, without allocation; reads nothing but the
/// path.
///
/// The directories decide first, by their whole names and in any case: a file below "tests",
/// "spec", "testdata", "integration-tests" … is a test whatever it is called, and one in the
/// production tree of a build tool ("src/main/java/…") is none. Then the naming conventions of the
/// file's language do, in the language's own case. Words that merely contain "test" mean nothing:
/// "testutils/" and "utils/test.py" are production code.
bool is_test_path(std::string_view path);

}  // namespace kestrix
