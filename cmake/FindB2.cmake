# Finds libb2 (BLAKE2), which has no CMake package. Defines b2::b2.

find_path(B2_INCLUDE_DIR blake2.h)
find_library(B2_LIBRARY b2)
mark_as_advanced(B2_INCLUDE_DIR B2_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(B2 REQUIRED_VARS B2_LIBRARY B2_INCLUDE_DIR)

if(B2_FOUND AND NOT TARGET b2::b2)
  add_library(b2::b2 UNKNOWN IMPORTED)
  set_target_properties(b2::b2 PROPERTIES
    IMPORTED_LOCATION "${B2_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${B2_INCLUDE_DIR}")
endif()
