#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "fibonaccihash.h"

namespace ZIRK {

/// A hash table to which entries are only added, so that it can be searched at the same time.
///
/// Entries never move. `Traits` has a type Key with operator== and Hash(), and KeyOf(entry), which
/// does not change while the entry is in the table. A hash only has to differ for most
/// different keys: the table spreads it.
template <class Entry, class Traits>
class LockFreeHashTable {
 public:
  using Key = typename Traits::Key;

  /// The entry with this key, or null. May run at the same time as Insert().
  Entry* Find(const Key& key) const {
    const Slots* const slots = current_.load(std::memory_order_acquire);
    if (!slots) return nullptr;
    for (size_t i = slots->First(key.Hash());; ++i) {
      Entry* const entry = slots->At(i).load(std::memory_order_acquire);
      if (!entry || Traits::KeyOf(*entry) == key) return entry;
    }
  }

  /// Adds an entry, whose key must be new. Only one thread may call at a time. If it throws
  /// std::bad_alloc, nothing is changed.
  Entry& Insert(const Entry& entry) {
    if (all_.empty() || entries_.size() >= all_.back()->Capacity() * 3 / 4) Grow();
    entries_.push_back(entry);
    Put(*all_.back(), entries_.back());
    return entries_.back();
  }

  /// Call it only while nothing else uses the table or an entry.
  void Clear() {
    current_.store(nullptr, std::memory_order_relaxed);
    all_.clear();
    entries_.clear();
  }

  size_t Size() const { return entries_.size(); }

  // In the order of insertion.
  auto begin() { return entries_.begin(); }
  auto end() { return entries_.end(); }

 private:
  using Slot = std::atomic<Entry*>;

  class Slots {
   public:
    explicit Slots(int bits) : bits_(bits), slots_(new Slot[Capacity()]()) {}
    int Bits() const { return bits_; }
    size_t Capacity() const { return size_t(1) << bits_; }
    /// Where a search begins. Searches for adjacent hashes begin far apart.
    size_t First(uint64_t hash) const { return FibonacciHash(hash, bits_); }
    Slot& At(size_t i) const { return slots_[i & (Capacity() - 1)]; }

   private:
    const int bits_;
    std::unique_ptr<Slot[]> slots_;
  };

  static void Put(const Slots& slots, Entry& entry) {
    size_t i = slots.First(Traits::KeyOf(entry).Hash());
    while (slots.At(i).load(std::memory_order_relaxed)) ++i;
    slots.At(i).store(&entry, std::memory_order_release);
  }

  /// The smaller tables stay, since a thread may be searching them. Together they are as large as
  /// the last one.
  void Grow() {
    constexpr int kFirstBits = 5;
    auto slots = std::make_unique<Slots>(all_.empty() ? kFirstBits : all_.back()->Bits() + 1);
    for (Entry& entry : entries_) Put(*slots, entry);
    all_.push_back(std::move(slots));
    current_.store(all_.back().get(), std::memory_order_release);
  }

  std::atomic<const Slots*> current_{nullptr};
  std::vector<std::unique_ptr<const Slots>> all_;
  std::deque<Entry> entries_;
};

}  // namespace ZIRK
