#pragma once

#include <cstddef>
#include <string_view>

namespace kestrix {

enum class Ddl { kNone, kCreates, kAdds };

/// The start of everything that may be a DDL statement, for a scan that looks for several things at
/// once: "create … table", "create … type", "alter table", in any case. RE2 syntax without groups.
extern const char* const kDdlStart;

/// What the DDL statement that starts at `at` does; none when it is not one.
///
/// A statement names what it creates, or puts a placeholder there, and opens its columns: prose
/// that mentions CREATE TABLE does neither. One in lower case must begin a line or a literal.
/// Whether it stands in a comment is not looked at.
Ddl ddl_at(std::string_view text, std::size_t at);

}  // namespace kestrix
