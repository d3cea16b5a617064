#include "kestrix/utils/path_filter.h"

#include "kestrix/roles/path_roles.h"

namespace kestrix {

bool is_test_path(std::string_view path) { return is_test_by_path(path); }

}  // namespace kestrix
