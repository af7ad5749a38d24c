#include "support/allocations.h"

#include <dlfcn.h>
#include <execinfo.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::atomic<int> allocations{0};

constexpr int kUnlimited = -1;
thread_local int granted = kUnlimited;
thread_local bool ranOut = false;

bool LiesIn(const void* code, const char* file) {
  Dl_info place = {};
  return dladdr(code, &place) && std::strstr(place.dli_fname, file);
}

/// Whether the request that returns to `caller` is refused. Only requests of the library and its
/// plug-ins are, since others, such as a driver, may crash.
bool IsRefused(const void* caller) {
  if (granted == kUnlimited) return false;
  // The standard library makes the requests for strings, whichever code owns them.
  if (LiesIn(caller, "libstdc++")) {
    void* frames[16];
    const int count = backtrace(frames, 16);
    int frame = 0;
    while (frame < count && !LiesIn(frames[frame], "libstdc++")) ++frame;
    while (frame < count && LiesIn(frames[frame], "libstdc++")) ++frame;
    caller = frame < count ? frames[frame] : nullptr;
  }
  if (!LiesIn(caller, "libZIRK")) return false;
  if (granted > 0) {
    --granted;
    return false;
  }
  ranOut = true;
  return true;
}

void* Allocate(std::size_t size, const void* caller) {
  // Relaxed, so that it does not order threads: the thread sanitizer would miss races between them.
  allocations.fetch_add(1, std::memory_order_relaxed);
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
