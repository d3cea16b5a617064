# Writes a digest of the files whose names stand in `list`, one a line, as the constant
# sources_digest into the header `output`. The files' contents and order count, their places do not.

file(STRINGS ${list} files)
set(digests "")
foreach(file IN LISTS files)
  file(SHA256 ${file} digest)
  string(APPEND digests "${digest}\n")
endforeach()
string(SHA256 digest "${digests}")
file(WRITE ${output} "#pragma once

#include <string_view>

namespace kestrix::index {

inline constexpr std::string_view sources_digest = \"${digest}\";

}  // namespace kestrix::index
")
