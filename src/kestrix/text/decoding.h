#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace kestrix {

inline constexpr std::size_t kNoCharLimit = std::numeric_limits<std::size_t>::max();

/// How much of a file's beginning tells whether it is text.
inline constexpr std::size_t kBinaryWindow = 8192;

/// Whether a file that begins with `head` is no text: a NUL stands in its first 8 KiB, and no mark
/// says that it is UTF-16.
bool is_binary(std::string_view head);

/// The first `max_chars` characters of a file's bytes as valid UTF-8, without a byte-order mark.
///
/// Reads UTF-8 with or without a mark and UTF-16 with one. What is invalid becomes U+FFFD, one for
/// each maximal ill-formed run; a file that is no text gives "". Plain ASCII and valid UTF-8 are
/// handed back in the buffer that came in.
std::string decode_text(std::string bytes, std::size_t max_chars = kNoCharLimit);

}  // namespace kestrix
