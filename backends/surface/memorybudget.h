#pragma once

#include <zirk/vuenums.h>

#include <cstdint>
#include <iosfwd>
#include <list>
#include <memory>
#include <mutex>
#include <string>

namespace ZIRK::backends {

/// The limit on the memory of a graphics context's surfaces, and the list of these surfaces.
///
/// The context and its surfaces share it, so that either may be deleted first. All operations are
/// safe to call from any thread.
class MemoryBudget : public std::enable_shared_from_this<MemoryBudget> {
 public:
  class Reservation;

  /// `limit` is in bytes and clamped to 32 bits.
  static std::shared_ptr<MemoryBudget> Create(uint64_t limit = QuarterOfMachineMemory());
  /// Returns the bytes, or 0 if the system does not report its memory.
  static uint64_t QuarterOfMachineMemory();

  /// Reserves the memory of a surface. Logs an error with the reason and returns null if the size
  /// or format is invalid, or if too little memory is left. The error names `picture`, if it is not
  /// null, as the purpose of the memory.
  std::unique_ptr<Reservation> Reserve(int width, int height, VuPixelFormat format,
                                       const char* picture = nullptr);

  /// Returns the bytes that are not reserved.
  unsigned Available() const;
  /// Returns the limit in bytes.
  unsigned Total() const;

  /// Prints one line per surface, oldest first. Addresses are XORed with `key`.
  void Print(unsigned key, std::ostream& os) const;

 private:
  /// A surface in the list.
  struct Record {
    int width;
    int height;
    VuPixelFormat format;
    uint32_t bytes;
    std::string name;
  };

  explicit MemoryBudget(uint64_t limit);

  /// Returns whether the size and format are valid and the memory suffices once `freed` bytes are
  /// freed. Logs an error otherwise. The caller holds the lock.
  bool Fits(int width, int height, VuPixelFormat format, uint32_t freed,
            const char* picture = nullptr) const;

  mutable std::mutex mutex_;
  const uint32_t limit_;
  uint32_t reserved_ = 0;
  std::list<Record> records_;
};

/// The reserved memory of one surface, which owns this object. The destructor returns the memory.
class MemoryBudget::Reservation {
 public:
  ~Reservation();
  Reservation(const Reservation&) = delete;
  Reservation& operator=(const Reservation&) = delete;

  /// Changes the size and format. If Reserve() would fail, changes nothing, logs an error with the
  /// reason and returns false.
  bool Resize(int width, int height, VuPixelFormat format);

  /// Names the surface in the list; null means an empty name. If there is no memory for the name,
  /// the surface keeps its old one.
  void Rename(const char* name);

 private:
  friend class MemoryBudget;
  Reservation(std::shared_ptr<MemoryBudget> budget, std::list<Record>::iterator record);

  std::shared_ptr<MemoryBudget> budget_;
  std::list<Record>::iterator record_;
};

}  // namespace ZIRK::backends
