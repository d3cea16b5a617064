# Writes the query file `input` as the constant <name>_query into the header `output`. A first line
# "; inherits: other" puts other.scm of the same folder before it.

file(READ ${input} text)
if(text MATCHES "^; inherits: ([a-z_/]+)\n")
  cmake_path(GET input PARENT_PATH folder)
  file(READ ${folder}/${CMAKE_MATCH_1}.scm inherited)
  string(PREPEND text "${inherited}")
endif()
file(WRITE ${output} "#pragma once

#include <string_view>

namespace kestrix::index {

inline constexpr std::string_view ${name}_query = R\"scm(${text})scm\";

}  // namespace kestrix::index
")
