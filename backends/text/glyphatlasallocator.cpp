#include "text/glyphatlasallocator.h"

#include <zirk/impl/log.h>

#include <new>
#include <type_traits>
#include <utility>

namespace ZIRK::backends {

namespace {

std::mutex listMutex;
static_assert(std::is_trivially_destructible_v<std::mutex>);

GlyphAtlasAllocator* first = nullptr;  // The head of the list.

}  // namespace

GlyphAtlasAllocator::GlyphAtlasAllocator(std::shared_ptr<MemoryBudget> budget, int graphicsType)
    : budget_(std::move(budget)), graphicsType_(graphicsType) {
  const std::lock_guard lock(listMutex);
  next_ = std::exchange(first, this);
}

GlyphAtlasAllocator::~GlyphAtlasAllocator() {
  const std::lock_guard lock(listMutex);
  GlyphAtlasAllocator** link = &first;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
}

std::shared_ptr<GlyphAtlasAllocator> GlyphAtlasAllocator::FindOwner(const VuGraphicsImpl* owner) {
  if (owner == this) return shared_from_this();
  std::shared_ptr<GlyphAtlasAllocator> found;
  {
    const std::lock_guard lock(listMutex);
    for (GlyphAtlasAllocator* known = first; known; known = known->next_)
      if (known == owner) found = known->weak_from_this().lock();
  }
  if (!found)
    ZIRK_LOG_ERROR("the font's glyph atlas belongs to another backend, or to a deleted context");
  return found;
}

VuBitmapImpl* GlyphAtlasAllocator::CreateBitmap(int width, int height, VuPixelFormat format) {
  try {
    Reservation reservation = budget_->Reserve(width, height, format);
    return reservation ? MakeBitmap(std::move(reservation), width, height, format).release()
                       : nullptr;
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("no memory for a surface of %d x %d", width, height);
    return nullptr;
  }
}

}  // namespace ZIRK::backends
