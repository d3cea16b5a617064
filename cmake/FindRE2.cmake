# Finds RE2 where it has no CMake package of its own (Debian 12). Defines re2::re2.

find_path(RE2_INCLUDE_DIR re2/re2.h)
find_library(RE2_LIBRARY re2)
mark_as_advanced(RE2_INCLUDE_DIR RE2_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(RE2 REQUIRED_VARS RE2_LIBRARY RE2_INCLUDE_DIR)

if(RE2_FOUND AND NOT TARGET re2::re2)
  include(CMakeFindDependencyMacro)
  find_dependency(Threads)
  add_library(re2::re2 UNKNOWN IMPORTED)
  set_target_properties(re2::re2 PROPERTIES
    IMPORTED_LOCATION "${RE2_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${RE2_INCLUDE_DIR}"
    INTERFACE_LINK_LIBRARIES Threads::Threads)
endif()
