#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>

#include "fibonaccihash.h"

namespace ZIRK {

/// A lock-free cache of how far a code point moves the pen after another one, kerning included. A
/// line's width is the sum of these, so it is measured with one look-up per character. Entries for
/// which there is no room are dropped.
///
/// One word holds key and value, so that no reader sees half of an entry: two code points of 22 and
/// 21 bits, an outline of 9, and an advance of 12.
class AdvanceCache {
 public:
  /// The code point before the first one. No UTF-8 sequence decodes to it.
  static constexpr uint32_t kNone = 0x200000;
  /// Outlines have numbers below this; advances with other outlines are not cached.
  static constexpr unsigned kOutlines = 1 << 9;

  ~AdvanceCache() { delete slots_.load(); }

  std::optional<int> Find(uint32_t previous, uint32_t code, unsigned outline) const {
    const Slots* const slots = slots_.load(std::memory_order_acquire);
    if (!slots || outline >= kOutlines) return std::nullopt;
    const uint64_t key = Key(previous, code, outline);
    for (size_t i : Places(key)) {
      const uint64_t word = (*slots)[i].load(std::memory_order_relaxed);
      if (word >> kAdvanceBits == key && word != 0)
        return static_cast<int>(word & kAdvanceMask) - kAdvanceBias;
    }
    return std::nullopt;
  }

  void Store(uint32_t previous, uint32_t code, unsigned outline, int advance) {
    if (outline >= kOutlines || advance <= -kAdvanceBias || advance >= kAdvanceBias) return;
    Slots* const slots = EnsureSlots();
    if (!slots) return;
    const uint64_t key = Key(previous, code, outline);
    const auto places = Places(key);
    const bool firstTaken = (*slots)[places[0]].load(std::memory_order_relaxed) != 0;
    (*slots)[places[firstTaken]].store(key << kAdvanceBits | uint64_t(advance + kAdvanceBias),
                                       std::memory_order_relaxed);
  }

  /// Call it only while no other thread uses the cache.
  void Clear() { delete slots_.exchange(nullptr); }

 private:
  static constexpr int kCodeBits = 21, kOutlineBits = 9, kAdvanceBits = 12, kSlotBits = 10;
  static constexpr int kAdvanceBias = 1 << (kAdvanceBits - 1);
  static constexpr uint64_t kAdvanceMask = (1 << kAdvanceBits) - 1;
  using Slots = std::array<std::atomic<uint64_t>, size_t(1) << kSlotBits>;

  static uint64_t Key(uint32_t previous, uint32_t code, unsigned outline) {
    return (uint64_t(previous) << kCodeBits | code) << kOutlineBits | outline;
  }
  /// Adjacent entries, which share a line of the processor's cache.
  static std::array<size_t, 2> Places(uint64_t key) {
    const size_t i = FibonacciHash(key, kSlotBits);
    return {i, i ^ 1};
  }
  /// Null if memory ran out; then nothing is cached.
  Slots* EnsureSlots() {
    Slots* slots = slots_.load(std::memory_order_acquire);
    if (slots) return slots;
    auto* const fresh = new (std::nothrow) Slots();
    if (!fresh || slots_.compare_exchange_strong(slots, fresh)) return fresh;
    delete fresh;
    return slots;
  }

  std::atomic<Slots*> slots_{nullptr};
};

}  // namespace ZIRK
