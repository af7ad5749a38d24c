#include "support/allocations.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::atomic<int> allocations{0};

constexpr int kUnlimited = -1;
thread_local int granted = kUnlimited;
thread_local bool ranOut = false;

/// Whether the request that returns to `caller` is refused. Others than the library and its
/// plug-ins, such as a driver, need not survive that.
bool IsRefused(const void* caller) {
  if (granted == kUnlimited) return false;
  Dl_info place = {};
  if (!dladdr(caller, &place) || !std::strstr(place.dli_fname, "libZIRK")) return false;
  if (granted > 0) {
    --granted;
    return false;
  }
  ranOut = true;
  return true;
}

void* Allocate(std::size_t size, const void* caller) {
  ++allocations;
  return IsRefused(caller) ? nullptr : std::malloc(size ? size : 1);
}

void* AllocateOrThrow(std::size_t size, const void* caller) {
  if (void* const memory = Allocate(size, caller)) return memory;
  throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, __builtin_return_address(0));
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size, __builtin_return_address(0));
}

void* operator new(std::size_t size) {
  return AllocateOrThrow(size, __builtin_return_address(0));
}

void* operator new[](std::size_t size) {
  return AllocateOrThrow(size, __builtin_return_address(0));
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete[](void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace ZIRK::support {

int Allocations() {
  return allocations;
}

ScarceMemory::ScarceMemory(int count) {
  ranOut = false;
  granted = count;
}

ScarceMemory::~ScarceMemory() {
  granted = kUnlimited;
}

bool ScarceMemory::HasRunOut() const {
  return ranOut;
}

}  // namespace ZIRK::support
