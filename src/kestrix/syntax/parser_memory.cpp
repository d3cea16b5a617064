#include "kestrix/syntax/parser_memory.h"

#include <sys/mman.h>
#include <tree_sitter/api.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace kestrix::index {
namespace {

constexpr std::size_t kUnit = 16;
// Larger blocks come from the general allocator; all do where it watches over their bounds.
#ifdef __has_feature
#define KESTRIX_ADDRESS_SANITIZER __has_feature(address_sanitizer)
#elif defined(__SANITIZE_ADDRESS__)
#define KESTRIX_ADDRESS_SANITIZER 1
#else
#define KESTRIX_ADDRESS_SANITIZER 0
#endif
constexpr std::size_t kLargestSmall = 64;
constexpr std::size_t kSmallUnits = KESTRIX_ADDRESS_SANITIZER ? 0 : kLargestSmall;
constexpr std::size_t kSummary = 160;  // of a stack: room for eight of its entries
constexpr std::size_t kSlab = std::size_t{256} << 10;
constexpr std::size_t kSlabsKept = 32;

enum class Kind : std::size_t { kSmall, kLarge, kForeign };

struct Header {
  Kind kind;
  std::size_t size;  // usable bytes
};
static_assert(sizeof(Header) == kUnit);

// Large blocks of a session, found at its end.
struct Link {
  Link* next;
  Link* previous;
};

Header* header_of(void* block) { return static_cast<Header*>(block) - 1; }

// Slabs come from the system itself: the general allocator would keep those of a long text for the
// thread that has parsed it.
struct Unmap {
  void operator()(std::byte* slab) const { ::munmap(slab, kSlab); }
};
using Slab = std::unique_ptr<std::byte[], Unmap>;

// Null when there is no memory.
Slab map_slab() {
  void* const memory =
      ::mmap(nullptr, kSlab, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  return Slab(memory == MAP_FAILED ? nullptr : static_cast<std::byte*>(memory));
}

// NOLINTBEGIN(cppcoreguidelines-no-malloc): this is an allocator

class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;
  ~Arena() { end(); }

  void begin() { active_ = true; }

  void end() {
    active_ = false;
    while (large_ != nullptr) {
      Link* const link = large_;
      large_ = link->next;
      std::free(link);
    }
    free_.fill(nullptr);
    held_ = large_bytes_ = errors_ = 0;
    if (slabs_.size() > kSlabsKept) slabs_.resize(kSlabsKept);
    slab_ = at_ = 0;
  }

  // Null when there is no memory.
  void* allocate(std::size_t size) {
    const std::size_t units = std::max<std::size_t>((size + kUnit - 1) / kUnit, 1);
    if (!active_) return foreign(units * kUnit);
    return units <= kSmallUnits ? small(units) : large(units * kUnit);
  }

  void guard(bool on) { guarded_ = on; }
  std::size_t large_bytes() const { return large_bytes_; }
  std::size_t errors() const { return errors_; }
  void note_error() { ++errors_; }

  [[noreturn]] void give_up() const {
    if (guarded_) throw ParserMemory::Exhausted();
    std::abort();
  }

  void release(void* block) {
    Header* const header = header_of(block);
    switch (header->kind) {
      case Kind::kSmall:
        *static_cast<void**>(block) = free_[header->size / kUnit];
        free_[header->size / kUnit] = block;
        break;
      case Kind::kLarge:
        held_ -= header->size;
        drop(reinterpret_cast<Link*>(header) - 1);
        break;
      case Kind::kForeign:
        std::free(header);
        break;
    }
  }

 private:
  static void* mark(void* memory, Kind kind, std::size_t size) {
    return ::new (memory) Header{kind, size} + 1;
  }

  static void* foreign(std::size_t size) {
    void* const memory = std::malloc(sizeof(Header) + size);
    return memory == nullptr ? nullptr : mark(memory, Kind::kForeign, size);
  }

  void* small(std::size_t units) {
    if (void* const block = free_[units]) {
      free_[units] = *static_cast<void**>(block);
      return block;
    }
    const std::size_t bytes = sizeof(Header) + units * kUnit;
    if (slab_ == slabs_.size() || at_ + bytes > kSlab) {
      if (slab_ < slabs_.size()) ++slab_;
      if (slab_ == slabs_.size()) {
        Slab slab = map_slab();
        if (slab == nullptr) return nullptr;
        slabs_.push_back(std::move(slab));
      }
      hold(kSlab);
      at_ = 0;
    }
    std::byte* const memory = slabs_[slab_].get() + at_;
    at_ += bytes;
    return mark(memory, Kind::kSmall, units * kUnit);
  }

  void* large(std::size_t size) {
    auto* const memory = static_cast<std::byte*>(std::malloc(sizeof(Link) + sizeof(Header) + size));
    if (memory == nullptr) return nullptr;
    Link* const link = ::new (memory) Link{large_, nullptr};
    if (large_ != nullptr) large_->previous = link;
    large_ = link;
    if (size > kLargestSmall * kUnit) large_bytes_ += size;
    hold(size);
    return mark(memory + sizeof(Link), Kind::kLarge, size);
  }

  void hold(std::size_t bytes) {
    held_ += bytes;
    if (guarded_ && held_ > ParserMemory::kLimit) give_up();
  }

  void drop(Link* link) {
    if (link->next != nullptr) link->next->previous = link->previous;
    (link->previous == nullptr ? large_ : link->previous->next) = link->next;
    std::free(link);
  }

  bool active_ = false;
  std::vector<Slab> slabs_;
  std::size_t slab_ = 0;                       // the one that is being filled
  std::size_t at_ = 0;                         // its first free byte
  std::array<void*, kSmallUnits + 1> free_{};  // by units
  Link* large_ = nullptr;
  std::size_t held_ = 0;  // by slabs in use and large blocks
  std::size_t large_bytes_ = 0;
  std::size_t errors_ = 0;
  bool guarded_ = false;
};

// NOLINTEND(cppcoreguidelines-no-malloc)

thread_local Arena
    arena;  // NOLINT(*-avoid-non-const-global-variables): the library's hooks find it

void* allocate(std::size_t size) {
  void* const block = arena.allocate(size);
  if (block == nullptr) arena.give_up();
  return block;
}

void* allocate_block(std::size_t size) {
  if (size == kSummary) arena.note_error();
  return allocate(size);
}

void* allocate_zeroed(std::size_t count, std::size_t size) {
  if (size != 0 && count > SIZE_MAX / 2 / size) arena.give_up();
  // Who asks for nothing still writes to it, and trusts that it starts as zero.
  return std::memset(allocate(count * size), 0, std::max(count * size, kUnit));
}

void release(void* block) {
  if (block != nullptr) arena.release(block);
}

void* reallocate(void* block, std::size_t size) {
  if (block == nullptr) return allocate(size);
  const std::size_t before = header_of(block)->size;
  if (size <= before) return block;
  void* const larger = std::memcpy(allocate(size), block, before);
  release(block);
  return larger;
}

}  // namespace

ParserMemory::ParserMemory() {
  static std::once_flag once;
  std::call_once(once,
                 [] { ts_set_allocator(allocate_block, allocate_zeroed, reallocate, release); });
  arena.begin();
}

ParserMemory::~ParserMemory() { arena.end(); }

std::size_t ParserMemory::large_bytes() { return arena.large_bytes(); }
std::size_t ParserMemory::errors() { return arena.errors(); }

ParserMemory::Guard::Guard() { arena.guard(true); }
ParserMemory::Guard::~Guard() { arena.guard(false); }

}  // namespace kestrix::index
