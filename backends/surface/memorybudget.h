#pragma once

#include <zirk/vuenums.h>

#include <cstdint>
#include <iosfwd>
#include <list>
#include <memory>
#include <mutex>
#include <string>

namespace ZIRK::backends {

/// The memory that the surfaces of a graphics context may take, and the list of those that exist.
///
/// The context and its surfaces share it, so that either may be deleted first. All operations may
/// be called from any thread.
class MemoryBudget : public std::enable_shared_from_this<MemoryBudget> {
 public:
  class Reservation;

  /// `limit` is in bytes; it is cut to what 32 bits hold.
  static std::shared_ptr<MemoryBudget> Create(uint64_t limit = QuarterOfMachineMemory());
  /// In bytes; 0 if the system does not say.
  static uint64_t QuarterOfMachineMemory();

  /// Reserves the memory of a surface. Null, after an error line with the reason, if no surface can
  /// have this size or format, or if too little memory is left. The line names `picture`, if there
  /// is one, as what the memory is for.
  std::unique_ptr<Reservation> Reserve(int width, int height, VuPixelFormat format,
                                       const char* picture = nullptr);

  /// The bytes that are not reserved.
  unsigned Available() const;
  /// The limit in bytes.
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

  /// Whether there can be such a surface, and memory for it once `freed` bytes are freed. If
  /// not, logs an error line. The caller holds the lock.
  bool Fits(int width, int height, VuPixelFormat format, uint32_t freed,
            const char* picture = nullptr) const;

  mutable std::mutex mutex_;
  const uint32_t limit_;
  uint32_t reserved_ = 0;
  std::list<Record> records_;
};

/// The memory of one surface. It is returned when this object is deleted, with the surface.
class MemoryBudget::Reservation {
 public:
  ~Reservation();
  Reservation(const Reservation&) = delete;
  Reservation& operator=(const Reservation&) = delete;

  /// Changes the size and format. False, after an error line with the reason, if Reserve() would
  /// fail; then nothing changes.
  bool Resize(int width, int height, VuPixelFormat format);

  /// Names the surface in the list; null is an empty name. Without memory for the name, the surface
  /// keeps the old one.
  void Rename(const char* name);

 private:
  friend class MemoryBudget;
  Reservation(std::shared_ptr<MemoryBudget> budget, std::list<Record>::iterator record);

  std::shared_ptr<MemoryBudget> budget_;
  std::list<Record>::iterator record_;
};

}  // namespace ZIRK::backends
