#include "ring.h"

#include <signal.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

namespace ZIRK::trace {

namespace {

constexpr uint32_t kCapacity = uint32_t{4} << 20;

}  // namespace

/// The counts wrap around at 2^32. Their difference is the number of bytes in the ring.
struct Ring::Shared {
  pid_t reader;
  std::atomic<pid_t> writer{0};
  std::atomic<bool> isClosed{false};
  alignas(64) std::atomic<uint32_t> written{0};
  alignas(64) std::atomic<uint32_t> read{0};
  uint8_t bytes[kCapacity];
};

std::unique_ptr<Ring> Ring::Create() {
  // The recorded program inherits the descriptor.
  const int descriptor = memfd_create("zirktrace", 0);
  if (descriptor < 0) return nullptr;
  void* memory = MAP_FAILED;
  if (ftruncate(descriptor, sizeof(Shared)) == 0)
    memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  if (memory == MAP_FAILED) {
    close(descriptor);
    return nullptr;
  }
  auto* const shared = new (memory) Shared;
  shared->reader = getpid();
  return std::unique_ptr<Ring>(new Ring(descriptor, shared));
}

std::unique_ptr<Ring> Ring::Claim() {
  const char* const name = std::getenv(kRingVariable);
  if (!name) return nullptr;
  void* const memory =
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, std::atoi(name), 0);
  if (memory == MAP_FAILED) return nullptr;
  auto* const shared = static_cast<Shared*>(memory);
  pid_t nobody = 0;
  if (shared->writer.compare_exchange_strong(nobody, getpid()))
    return std::unique_ptr<Ring>(new Ring(-1, shared));
  munmap(memory, sizeof(Shared));
  return nullptr;
}

Ring::~Ring() {
  munmap(shared_, sizeof(Shared));
  if (descriptor_ >= 0) close(descriptor_);
}

bool Ring::IsClaimed() const {
  return shared_->writer != 0;
}

bool Ring::WaitForRoom(uint32_t written) {
  constexpr timespec kWhile{0, 100'000};
  constexpr int kLooksBeforeAsking = 1000;
  for (int looks = 1; written - shared_->read.load(std::memory_order_acquire) == kCapacity;
       ++looks) {
    const bool asks = looks % kLooksBeforeAsking == 0;
    if (asks && kill(shared_->reader, 0) != 0 && errno == ESRCH) return false;
    if (shared_->isClosed) return false;
    nanosleep(&kWhile, nullptr);
  }
  return !shared_->isClosed;
}

bool Ring::Write(std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const uint32_t written = shared_->written.load(std::memory_order_relaxed);
    if (!WaitForRoom(written)) return false;
    const uint32_t at = written % kCapacity;
    const uint32_t room = kCapacity - (written - shared_->read.load(std::memory_order_acquire));
    const size_t part = std::min({bytes.size(), size_t{room}, size_t{kCapacity - at}});
    std::memcpy(shared_->bytes + at, bytes.data(), part);
    shared_->written.store(written + static_cast<uint32_t>(part), std::memory_order_release);
    bytes = bytes.subspan(part);
  }
  return true;
}

std::span<const uint8_t> Ring::Readable() const {
  const uint32_t read = shared_->read.load(std::memory_order_relaxed);
  const uint32_t count = shared_->written.load(std::memory_order_acquire) - read;
  const uint32_t at = read % kCapacity;
  return {shared_->bytes + at, std::min(count, kCapacity - at)};
}

void Ring::Consume(size_t count) {
  shared_->read.fetch_add(static_cast<uint32_t>(count), std::memory_order_release);
}

void Ring::Close() {
  shared_->isClosed = true;
}

}  // namespace ZIRK::trace
