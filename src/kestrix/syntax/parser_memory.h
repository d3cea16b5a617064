#pragma once

#include <cstddef>
#include <exception>

namespace kestrix::index {

/// While one lives, all memory that the parser library and the grammars' scanners ask for on this
/// thread comes from an arena that is dropped as a whole when it ends. So nothing of theirs has to
/// be deleted, and what a parse that was left in its middle holds is not lost.
///
/// One a thread at a time. The first one installs the allocator in the library, for good; outside
/// of a ParserMemory it serves the library from the general allocator.
class ParserMemory {
 public:
  ParserMemory();
  ~ParserMemory();
  ParserMemory(const ParserMemory&) = delete;
  ParserMemory& operator=(const ParserMemory&) = delete;

  /// Calls `work()`, which calls into the library. False when the library then held more than
  /// `kLimit`, or there was no memory: the call was left by an exception in its middle, and what it
  /// worked on must not be touched again, nor deleted.
  ///
  /// The library asks whether to go on between steps only, and one step may take gigabytes: a Java
  /// file of 16,384 times "a<" takes 3.2, and four times as much when it is twice as long.
  template <class Work>
  bool run(const Work& work) {
    const Guard guard;
    try {
      work();
    } catch (const Exhausted&) {
      return false;
    }
    return true;
  }

  /// Bytes of all large blocks that were asked for on this thread since it began. Where a text
  /// makes the parser copy long lists at each of its steps, they tell so; else there are few.
  static std::size_t large_bytes();

  /// How often the parser made a summary of its stack, as it does at an error, told by the size of
  /// the block that it asks for.
  static std::size_t errors();

  /// Several times what the largest files that are parsed need.
  static constexpr std::size_t kLimit = std::size_t{128} << 20U;

  /// Passes through the library's frames, which are compiled with -fexceptions.
  class Exhausted : public std::exception {};

 private:
  // While one lives, the limit holds.
  class Guard {
   public:
    Guard();
    ~Guard();
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;
  };
};

}  // namespace kestrix::index
