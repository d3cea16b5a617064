# Finds libgit2, which has no CMake package. Defines libgit2::libgit2.

find_path(LibGit2_INCLUDE_DIR git2.h)
find_library(LibGit2_LIBRARY git2)
mark_as_advanced(LibGit2_INCLUDE_DIR LibGit2_LIBRARY)

if(LibGit2_INCLUDE_DIR)
  file(STRINGS ${LibGit2_INCLUDE_DIR}/git2/version.h LibGit2_VERSION
    REGEX "^#define LIBGIT2_VERSION +\"")
  string(REGEX REPLACE ".*\"([0-9.]+)\".*" "\\1" LibGit2_VERSION "${LibGit2_VERSION}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LibGit2
  REQUIRED_VARS LibGit2_LIBRARY LibGit2_INCLUDE_DIR
  VERSION_VAR LibGit2_VERSION)

if(LibGit2_FOUND AND NOT TARGET libgit2::libgit2)
  add_library(libgit2::libgit2 UNKNOWN IMPORTED)
  set_target_properties(libgit2::libgit2 PROPERTIES
    IMPORTED_LOCATION "${LibGit2_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${LibGit2_INCLUDE_DIR}")
endif()
