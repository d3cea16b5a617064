# Finds the tree-sitter run-time library, which has no CMake package. Defines
# tree-sitter::tree-sitter.

find_path(TreeSitter_INCLUDE_DIR tree_sitter/api.h)
find_library(TreeSitter_LIBRARY tree-sitter)
mark_as_advanced(TreeSitter_INCLUDE_DIR TreeSitter_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(TreeSitter
  REQUIRED_VARS TreeSitter_LIBRARY TreeSitter_INCLUDE_DIR)

if(TreeSitter_FOUND AND NOT TARGET tree-sitter::tree-sitter)
  add_library(tree-sitter::tree-sitter UNKNOWN IMPORTED)
  set_target_properties(tree-sitter::tree-sitter PROPERTIES
    IMPORTED_LOCATION "${TreeSitter_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${TreeSitter_INCLUDE_DIR}")
endif()
