#include "support/allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<int> allocations{0};
}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size ? size : 1);
}

void* operator new(std::size_t size) {
  if (void* const memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace ZIRK::support {

int Allocations() {
  return allocations;
}

}  // namespace ZIRK::support
