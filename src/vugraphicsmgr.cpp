#include "vugraphicsmgr.h"

#include <zirk/impl/vugraphicsimpl.h>
#include <zirk/vugraphics.h>

#include <cstdint>
#include <cstdio>
#include <ostream>
#include <utility>

#include "exitorder.h"

namespace ZIRK {

namespace {

ZIRK_DESTROYED_BEFORE_LOADER std::shared_ptr<VuGraphicsMgr> registry;

std::shared_ptr<VuGraphicsMgr>& BuildRegistry() {
  registry = std::make_shared<VuGraphicsMgr>();
  return registry;
}

constexpr size_t kListedLineSize = 256;

void PrintHeader(const void* context, unsigned key, std::ostream& os) {
  char line[kListedLineSize];
  const auto masked = reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(context) ^ key);
  if (snprintf(line, sizeof line, "VuGraphics instance %p", masked) >= 0) os << line << std::endl;
}

void PrintMemory(const VuGraphicsImpl& impl, std::ostream& os) {
  // Each figure is a separate call, in this order, since a backend may count in between.
  const unsigned available = impl.AvailableMemory();
  const unsigned total = impl.TotalMemory();
  const unsigned used = total - impl.AvailableMemory();
  const unsigned max = impl.TotalMemory();
  char line[kListedLineSize];
  if (snprintf(line, sizeof line, "Available texture memory %u used %u max %u", available, used,
               max) >= 0)
    os << line << std::endl;
}

}  // namespace

std::shared_ptr<VuGraphicsMgr> VuGraphicsMgr::GetInstance() {
  static const std::shared_ptr<VuGraphicsMgr>& built = BuildRegistry();
  return built;
}

void VuGraphicsMgr::Add(VuGraphics* context) {
  const std::lock_guard<std::mutex> lock(mutex_);
  instances_.push_back(context);
}

void VuGraphicsMgr::Remove(VuGraphics* context) {
  const std::lock_guard<std::mutex> lock(mutex_);
  instances_.remove(context);
}

VuGraphicsImpl* VuGraphicsMgr::TakeImpl(VuGraphics& context) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(context.impl, nullptr);
}

void VuGraphicsMgr::PrintBitmapList(unsigned key, std::ostream& os) {
  const std::lock_guard<std::mutex> lock(mutex_);
  for (const VuGraphics* const context : instances_) {
    PrintHeader(context, key, os);
    if (!context->impl) continue;
    context->impl->PrintBitmapList(key, os);
    PrintMemory(*context->impl, os);
  }
}

}  // namespace ZIRK
