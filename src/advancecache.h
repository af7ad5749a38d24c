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

/// How far a code point moves the pen after another one, kerning included: what measuring a line
/// adds up. A cache without locks that forgets what finds no room, so that a line is measured with
/// one look-up a character.
///
/// One word holds key and value, so that no reader sees half of an entry: two code points of 22 and
/// 21 bits, an outline of 9, and an advance of 12.
class AdvanceCache {
 public:
  /// Stands for the code point before the first; no sequence of UTF-8 gives it.
  static constexpr uint32_t kNone = 0x200000;
  /// Outlines are told apart by numbers below this; advances of others are not kept.
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

  /// Only while nothing else uses the cache.
  void Clear() { delete slots_.exchange(nullptr); }

 private:
  static constexpr int kCodeBits = 21, kOutlineBits = 9, kAdvanceBits = 12, kSlotBits = 10;
  static constexpr int kAdvanceBias = 1 << (kAdvanceBits - 1);
  static constexpr uint64_t kAdvanceMask = (1 << kAdvanceBits) - 1;
  using Slots = std::array<std::atomic<uint64_t>, size_t(1) << kSlotBits>;

  static uint64_t Key(uint32_t previous, uint32_t code, unsigned outline) {
    return (uint64_t(previous) << kCodeBits | code) << kOutlineBits | outline;
  }
  /// Neighbours, which share a line of the processor's cache.
  static std::array<size_t, 2> Places(uint64_t key) {
    const size_t i = FibonacciHash(key, kSlotBits);
    return {i, i ^ 1};
  }
  /// Null if there is no memory: then nothing is kept.
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
