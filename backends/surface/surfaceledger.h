#pragma once

#include <zirk/vuenums.h>

#include <cstdint>
#include <iosfwd>
#include <list>
#include <memory>
#include <mutex>
#include <string>

namespace ZIRK::backends {

/// The live surfaces of one graphics context: what they are called and what memory they hold.
///
/// Shared by the context and its surfaces, so that either may go first. All operations may be
/// called from any thread.
class SurfaceLedger : public std::enable_shared_from_this<SurfaceLedger> {
 public:
  class Entry;

  /// A ledger that grants `limit` bytes, but no more than 32 bits hold.
  static std::shared_ptr<SurfaceLedger> Create(uint64_t limit = QuarterOfMachineMemory());
  static uint64_t QuarterOfMachineMemory();

  /// Reserves the memory of a surface. Null, after an error line with the reason, if no surface can
  /// have this size or format, or if too little memory is left. The line names `picture`, if there
  /// is one, as what the memory is for.
  std::unique_ptr<Entry> Enter(int width, int height, VuPixelFormat format,
                               const char* picture = nullptr);

  /// Bytes.
  unsigned Available() const;
  unsigned Total() const;

  /// One line per surface, oldest first. Addresses are printed XORed with `key`.
  void Print(unsigned key, std::ostream& os) const;

 private:
  struct Record {
    int width;
    int height;
    VuPixelFormat format;
    uint32_t bytes;
    std::string name;
  };

  explicit SurfaceLedger(uint64_t limit);

  bool Grants(int width, int height, VuPixelFormat format, uint32_t given,
              const char* picture = nullptr) const;

  mutable std::mutex mutex_;
  const uint32_t limit_;
  uint32_t held_ = 0;
  std::list<Record> records_;
};

/// One surface's place in the ledger, given up when the surface goes.
class SurfaceLedger::Entry {
 public:
  ~Entry();
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;

  /// Enters another size and format in place of those there are; false, after an error line that
  /// says why, and with nothing changed, where Enter() would not grant that.
  bool Change(int width, int height, VuPixelFormat format);

  /// Null counts as an empty name. Without memory for another name it keeps its own.
  void Rename(const char* name);

 private:
  friend class SurfaceLedger;
  Entry(std::shared_ptr<SurfaceLedger> ledger, std::list<Record>::iterator record);

  std::shared_ptr<SurfaceLedger> ledger_;
  std::list<Record>::iterator record_;
};

}  // namespace ZIRK::backends
