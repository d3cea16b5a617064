#pragma once

namespace kestrix::index {

/// While one lives, all memory that the parser library asks for on this thread comes from an arena
/// that is dropped as a whole when it ends: parsers, trees and cursors must be gone by then.
///
/// This is faster than the general allocator, and it keeps the library's version in Debian 12 from
/// taking the process down: of a syntax error with more than 65,535 children (70,000 open braces)
/// it frees an address that it never got. Such a call is ignored here; the arena forgets nothing.
///
/// One a thread at a time. The first one installs the allocator in the library, for good; outside
/// of a ParserMemory it serves the library from the general allocator.
class ParserMemory {
 public:
  ParserMemory();
  ~ParserMemory();
  ParserMemory(const ParserMemory&) = delete;
  ParserMemory& operator=(const ParserMemory&) = delete;
};

}  // namespace kestrix::index
