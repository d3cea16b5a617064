#pragma once

#include <string_view>
#include <vector>

#include "kestrix/roles/judged_repository.h"
#include "kestrix/roles/path_roles.h"

namespace kestrix {

/// Whether a file's ending is that of data: JSON, XML, text …
bool is_data_path(std::string_view path);

/// By file: whether it lies in a folder of tests and is code that tests read and nobody calls.
/// Nothing depends on it, it depends on nothing and holds no tests; nor do most of its neighbours.
std::vector<bool> code_that_tests_read(const JudgedRepository& repository);

}  // namespace kestrix
