# The folders are layers: what a folder's files include lies in folders above it in this table, and
# only in those that its row names. As each row names rows above it alone, there are no circles. The
# index has folders of its own, with rows of their own.
#
# Included, this adds a test that runs the file as a script.

if(NOT CMAKE_SCRIPT_MODE_FILE)
  add_test(NAME layers
    COMMAND ${CMAKE_COMMAND} -D "SOURCE_DIR=${PROJECT_SOURCE_DIR}"
      -P ${PROJECT_SOURCE_DIR}/cmake/CheckLayers.cmake)
  return()
endif()

cmake_policy(VERSION 3.25)
set(table
  "utils:"
  "text: utils"
  "formats: text utils"
  "contract: utils"
  "facts: contract utils"
  "files: text utils"
  "git: files text utils"
  "syntax: text utils"
  "definitions: contract text utils"
  "documents: facts text utils"
  "languages: definitions facts contract formats syntax text utils"
  "roles: languages git files facts text utils"
  "walk: roles git files text utils"
  "store: facts contract files text utils"
  "workers: contract utils"
  "index: store walk roles languages documents definitions git files facts contract formats text utils"
  "host: workers index store walk roles languages definitions git files facts contract formats text utils"
  "python: workers contract utils"
  "capi: host workers contract index roles facts files text utils"
  "apps: capi host workers contract index store roles facts files text utils")
set(table_index
  "tables:"
  "names: tables"
  "edges: names tables"
  "index: tables"
  "refresh: index edges names tables")

# The headers of the contract that stand in the folders of those who fulfil it.
set(contract "^(index/repository\\.h|facts/(data_signals|symbol_kind)\\.h)$")

set(found "")
foreach(rows IN ITEMS table table_index)
  set(known "")
  foreach(row IN LISTS ${rows})
    string(REGEX MATCH "^[a-z]+" folder "${row}")
    string(REGEX MATCHALL "[a-z]+" allowed "${row}")
    foreach(name IN LISTS allowed)
      if(NOT name STREQUAL folder AND NOT name IN_LIST known)
        string(APPEND found "\n  the row of ${folder} names ${name}, which is not above it")
      endif()
    endforeach()
    list(APPEND known ${folder})
    set(allowed_${rows}_${folder} ${allowed})
  endforeach()
endforeach()

file(GLOB_RECURSE files RELATIVE ${SOURCE_DIR}
  ${SOURCE_DIR}/src/*.h ${SOURCE_DIR}/src/*.cpp ${SOURCE_DIR}/apps/*.h ${SOURCE_DIR}/apps/*.cpp
  ${SOURCE_DIR}/capi/*.h ${SOURCE_DIR}/capi/*.cpp ${SOURCE_DIR}/python/*.h
  ${SOURCE_DIR}/python/*.cpp)
list(LENGTH files count)
if(count LESS 100)
  message(FATAL_ERROR "Only ${count} C++ files below ${SOURCE_DIR}")
endif()

foreach(file IN LISTS files)
  string(REGEX REPLACE "^src/kestrix/" "" within "${file}")
  string(REGEX REPLACE "/.*" "" folder "${within}")
  string(REGEX MATCH "^index/([a-z]+/)?" part "${within}")
  get_filename_component(part "${part}x" DIRECTORY)
  get_filename_component(part "${part}" NAME)
  if(within MATCHES "${contract}")
    set(folder contract)
  endif()
  if(NOT DEFINED allowed_table_${folder} OR (part AND NOT DEFINED allowed_table_index_${part}))
    string(APPEND found "\n  ${file} lies in no layer")
    continue()
  endif()
  file(STRINGS ${SOURCE_DIR}/${file} lines REGEX "^#include \"(kestrix|apps|capi|python)/")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE "^#include \"(kestrix/)?([^\"]*)\".*" "\\2" header "${line}")
    string(REGEX REPLACE "/.*" "" target "${header}")
    if(header MATCHES "${contract}")
      set(target contract)
    endif()
    if(NOT target IN_LIST allowed_table_${folder})
      string(APPEND found "\n  ${file} includes ${header}")
    endif()
    if(folder STREQUAL "index" AND target STREQUAL "index")
      get_filename_component(other "${header}" DIRECTORY)
      get_filename_component(other "${other}" NAME)
      if(NOT other IN_LIST allowed_table_index_${part})
        string(APPEND found "\n  ${file} includes ${header}")
      endif()
    endif()
  endforeach()
endforeach()
if(found)
  message(FATAL_ERROR "An arrow points the wrong way:${found}")
endif()
