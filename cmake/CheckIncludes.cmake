# The component knows no host: whatever its sources and headers include, directly or not, must not
# reach a host's library or the insides of the index. The compiler itself lists what they include.
#
# Included, this defines kestrix_check_includes(TARGET), which adds a test that runs this file as a
# script.

function(kestrix_check_includes target)
  set(includes $<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>)
  add_test(NAME ${target}_includes
    COMMAND ${CMAKE_COMMAND}
      -D "COMPILER=${CMAKE_CXX_COMPILER}"
      -D "SOURCE_DIR=${PROJECT_SOURCE_DIR}"
      -D "FOLDER=$<TARGET_PROPERTY:${target},SOURCE_DIR>"
      -D "INCLUDES=$<JOIN:${includes},|>"
      -P ${PROJECT_SOURCE_DIR}/cmake/CheckIncludes.cmake)
endfunction()

if(NOT CMAKE_SCRIPT_MODE_FILE)
  return()
endif()

set(forbidden "/(SQLiteCpp|tree_sitter|git2|spdlog)/|/(sqlite3(ext)?|git2|Python)\\.h$")
set(forbidden "${forbidden}|^/(grammars|src/kestrix/(definitions|host|index|facts|files|formats|git|languages|store|syntax|text|walk))/")
set(allowed "^/src/kestrix/(index/repository|facts/(data_signals|symbol_kind))\\.h$")

string(REPLACE "|" ";" INCLUDES "${INCLUDES}")
list(TRANSFORM INCLUDES PREPEND "-I")
file(GLOB files ${FOLDER}/*.h ${FOLDER}/*.cpp ${FOLDER}/../page_sources.h)
if(NOT files)
  message(FATAL_ERROR "${FOLDER} holds no C++ files")
endif()

set(found "")
foreach(file IN LISTS files)
  execute_process(
    COMMAND ${COMPILER} -std=c++20 ${INCLUDES} -x c++ -M ${file}
    OUTPUT_VARIABLE reached
    COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "${SOURCE_DIR}/" "/" reached "${reached}")
  string(REGEX REPLACE "[ \\\\\r\n]+" ";" reached "${reached}")
  list(FILTER reached INCLUDE REGEX "${forbidden}")
  list(FILTER reached EXCLUDE REGEX "${allowed}")
  if(reached)
    list(GET reached 0 header)
    string(APPEND found "\n  ${file} reaches ${header}")
  endif()
endforeach()
if(found)
  message(FATAL_ERROR "The component includes what belongs to a host:${found}")
endif()
