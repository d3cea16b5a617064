#pragma once

#include <cstddef>

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

  /// Calls `work(argument)`, which calls into the library and keeps nothing that needs a
  /// destructor. False when the library then held more than `kLimit`, or there was no memory: the
  /// call was left in its middle, and what it worked on must not be touched again, nor freed. The
  /// library looks at its time limit and its cancellation flag between steps only, and one step
  /// may take gigabytes (a Java file of 16,384 times "a<").
  bool run(void (*work)(void*), void* argument);

  /// Several times what the largest files that are parsed need.
  static constexpr std::size_t kLimit = std::size_t{128} << 20U;
};

}  // namespace kestrix::index
