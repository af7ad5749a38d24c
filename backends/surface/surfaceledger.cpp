#include "surface/surfaceledger.h"

#include <unistd.h>
#include <zirk/impl/log.h>

#include <algorithm>
#include <limits>
#include <new>
#include <ostream>
#include <utility>

#include "geometry/surfaceformat.h"

namespace ZIRK::backends {

uint64_t SurfaceLedger::QuarterOfMachineMemory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return 0;
  return static_cast<uint64_t>(pages) * static_cast<uint64_t>(pageSize) / 4;
}

SurfaceLedger::SurfaceLedger(uint64_t limit)
    : limit_(
          static_cast<uint32_t>(std::min<uint64_t>(limit, std::numeric_limits<uint32_t>::max()))) {}

std::shared_ptr<SurfaceLedger> SurfaceLedger::Create(uint64_t limit) {
  return std::shared_ptr<SurfaceLedger>(new SurfaceLedger(limit));
}

bool SurfaceLedger::Grants(int width, int height, VuPixelFormat format, uint32_t given,
                           const char* picture) const {
  if (!IsValidSurface(width, height, format)) {
    ZIRK_LOG_ERROR("cannot create a surface of %d x %d in format %d", width, height,
                   static_cast<int>(format));
    return false;
  }
  const uint32_t bytes = SurfaceBytes(width, height, format);
  const uint32_t left = limit_ - held_ + given;
  if (bytes <= left) return true;
  if (picture)
    ZIRK_LOG_ERROR("no memory for %s: %d x %d pixels, %u bytes left", picture, width, height, left);
  else
    ZIRK_LOG_ERROR("no memory for a surface of %d x %d: %u bytes asked, %u left", width, height,
                   bytes, left);
  return false;
}

std::unique_ptr<SurfaceLedger::Entry> SurfaceLedger::Enter(int width, int height,
                                                           VuPixelFormat format,
                                                           const char* picture) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!Grants(width, height, format, 0, picture)) return nullptr;
  const uint32_t bytes = SurfaceBytes(width, height, format);
  std::list<Record> record;
  record.push_back({width, height, format, bytes, {}});
  std::unique_ptr<Entry> entry(new Entry(shared_from_this(), record.begin()));
  // Nothing throws from here on, so that no record stays without an entry.
  records_.splice(records_.end(), record);
  held_ += bytes;
  return entry;
}

unsigned SurfaceLedger::Available() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return limit_ - held_;
}

unsigned SurfaceLedger::Total() const {
  return limit_;
}

void SurfaceLedger::Print(unsigned key, std::ostream& os) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (const Record& record : records_) {
    os << "bitmap " << reinterpret_cast<const void*>(reinterpret_cast<uintptr_t>(&record) ^ key)
       << " \"" << record.name << "\" " << record.width << "x" << record.height << " format "
       << static_cast<int>(record.format) << " " << record.bytes << " bytes\n";
  }
  os.flush();
}

SurfaceLedger::Entry::Entry(std::shared_ptr<SurfaceLedger> ledger,
                            std::list<Record>::iterator record)
    : ledger_(std::move(ledger)), record_(record) {}

SurfaceLedger::Entry::~Entry() {
  const std::lock_guard<std::mutex> lock(ledger_->mutex_);
  ledger_->held_ -= record_->bytes;
  ledger_->records_.erase(record_);
}

bool SurfaceLedger::Entry::Change(int width, int height, VuPixelFormat format) {
  const std::lock_guard<std::mutex> lock(ledger_->mutex_);
  if (!ledger_->Grants(width, height, format, record_->bytes)) return false;
  const uint32_t bytes = SurfaceBytes(width, height, format);
  ledger_->held_ = ledger_->held_ - record_->bytes + bytes;
  *record_ = {width, height, format, bytes, std::move(record_->name)};
  return true;
}

void SurfaceLedger::Entry::Rename(const char* name) {
  const std::lock_guard<std::mutex> lock(ledger_->mutex_);
  try {
    record_->name = name ? name : "";
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("no memory for the name of a surface");
  }
}

}  // namespace ZIRK::backends
