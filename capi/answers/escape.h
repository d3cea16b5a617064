#pragma once

// How texts that may hold any byte are written so that they can be read back and cannot steer a
// terminal: control characters, those of C1 and of bidirectional text included, and the line and
// paragraph separators are always escaped.

#include <string>
#include <string_view>

namespace kestrix {

/// A JSON string, quotes included. A byte that is not part of valid UTF-8 becomes the lone
/// surrogate "\udc80" to "\udcff" whose low half is the byte. No valid text holds one, so nothing
/// is ambiguous, and Python reads the path back with `os.fsencode`.
std::string json_string(std::string_view text);

/// The text as it is, or, when it holds a control character, a quote, a backslash or a byte that is
/// not part of valid UTF-8, in double quotes with C escapes, the way git quotes paths.
std::string c_quoted(std::string_view text);

/// A quoted identifier of the DOT language that shows `c_quoted(text)`.
std::string dot_string(std::string_view text);

/// The text with every control character escaped, so that it stays on one line and cannot steer a
/// terminal.
std::string one_line(std::string_view text);

}  // namespace kestrix
