#include "tests/languages/allocation.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<std::size_t> allocated{0};
}

void* operator new(std::size_t size) {
  allocated += size;
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace kestrix::index {

std::size_t allocated_bytes() { return allocated; }

}  // namespace kestrix::index
