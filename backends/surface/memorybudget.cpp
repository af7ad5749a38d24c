#include "surface/memorybudget.h"

#include <unistd.h>
#include <zirk/impl/log.h>

#include <algorithm>
#include <limits>
#include <new>
#include <ostream>
#include <utility>

#include "geometry/surfaceformat.h"

namespace ZIRK::backends {

uint64_t MemoryBudget::QuarterOfMachineMemory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return 0;
  return static_cast<uint64_t>(pages) * static_cast<uint64_t>(pageSize) / 4;
}

MemoryBudget::MemoryBudget(uint64_t limit)
    : limit_(
          static_cast<uint32_t>(std::min<uint64_t>(limit, std::numeric_limits<uint32_t>::max()))) {}

std::shared_ptr<MemoryBudget> MemoryBudget::Create(uint64_t limit) {
  return std::shared_ptr<MemoryBudget>(new MemoryBudget(limit));
}

bool MemoryBudget::Fits(int width, int height, VuPixelFormat format, uint32_t freed,
                        const char* picture) const {
  if (!IsValidSurface(width, height, format)) {
    ZIRK_LOG_ERROR("cannot create a surface of %d x %d in format %d", width, height,
                   static_cast<int>(format));
    return false;
  }
  const uint32_t bytes = SurfaceBytes(width, height, format);
  const uint32_t left = limit_ - reserved_ + freed;
  if (bytes <= left) return true;
  if (picture)
    ZIRK_LOG_ERROR("no memory for %s: %d x %d pixels, %u bytes left", picture, width, height, left);
  else
    ZIRK_LOG_ERROR("no memory for a surface of %d x %d: %u bytes requested, %u left", width, height,
                   bytes, left);
  return false;
}

std::unique_ptr<MemoryBudget::Reservation> MemoryBudget::Reserve(int width, int height,
                                                                 VuPixelFormat format,
                                                                 const char* picture) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!Fits(width, height, format, 0, picture)) return nullptr;
  const uint32_t bytes = SurfaceBytes(width, height, format);
  std::list<Record> record;
  record.push_back({width, height, format, bytes, {}});
  std::unique_ptr<Reservation> reservation(new Reservation(shared_from_this(), record.begin()));
  // From here on nothing throws, so every record has a reservation.
  records_.splice(records_.end(), record);
  reserved_ += bytes;
  return reservation;
}

unsigned MemoryBudget::Available() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return limit_ - reserved_;
}

unsigned MemoryBudget::Total() const {
  return limit_;
}

void MemoryBudget::Print(unsigned key, std::ostream& os) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (const Record& record : records_) {
    os << "bitmap " << reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(&record) ^ key)
       << " \"" << record.name << "\" " << record.width << "x" << record.height << " format "
       << static_cast<int>(record.format) << " " << record.bytes << " bytes\n";
  }
  os.flush();
}

MemoryBudget::Reservation::Reservation(std::shared_ptr<MemoryBudget> budget,
                                       std::list<Record>::iterator record)
    : budget_(std::move(budget)), record_(record) {}

MemoryBudget::Reservation::~Reservation() {
  const std::lock_guard<std::mutex> lock(budget_->mutex_);
  budget_->reserved_ -= record_->bytes;
  budget_->records_.erase(record_);
}

bool MemoryBudget::Reservation::Resize(int width, int height, VuPixelFormat format) {
  const std::lock_guard<std::mutex> lock(budget_->mutex_);
  if (!budget_->Fits(width, height, format, record_->bytes)) return false;
  const uint32_t bytes = SurfaceBytes(width, height, format);
  budget_->reserved_ = budget_->reserved_ - record_->bytes + bytes;
  *record_ = {width, height, format, bytes, std::move(record_->name)};
  return true;
}

void MemoryBudget::Reservation::Rename(const char* name) {
  const std::lock_guard<std::mutex> lock(budget_->mutex_);
  try {
    record_->name = name ? name : "";
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("no memory for the name of a surface");
  }
}

}  // namespace ZIRK::backends
