# What every target of this project has in common. Nothing here touches global flags.

# Link privately to get our warnings; never part of what a consumer inherits.
add_library(kestrix_warnings INTERFACE)
target_compile_options(kestrix_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${KESTRIX_WERROR}>:-Werror>)

# kestrix_defaults(TARGET): the standard, warnings, and includes written from src/. Every own
# library and executable calls it once.
function(kestrix_defaults target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:kestrix_warnings>)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF
    POSITION_INDEPENDENT_CODE ON)
endfunction()

# kestrix_add_tests(TARGET SOURCES FILE... LIBRARIES TARGET...): a GoogleTest executable whose cases
# are tests of ctest, each with a limit in seconds that only a hang reaches.
function(kestrix_add_tests target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  add_executable(${target} ${arg_SOURCES})
  kestrix_defaults(${target})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${target} PRIVATE ${arg_LIBRARIES} GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${target} NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
