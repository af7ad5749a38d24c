#include "text/atlasgraphics.h"

#include <zirk/impl/log.h>
#include <zirk/impl/vuscreenimpl.h>

#include <type_traits>
#include <utility>

namespace ZIRK::backends {

namespace {

std::mutex listMutex;
static_assert(std::is_trivially_destructible_v<std::mutex>);

AtlasGraphics* first = nullptr;  // of the list

}  // namespace

AtlasGraphics::AtlasGraphics(std::shared_ptr<SurfaceLedger> ledger, int graphicsType)
    : GraphicsBase(std::move(ledger)), graphicsType_(graphicsType) {
  const std::lock_guard lock(listMutex);
  next_ = std::exchange(first, this);
}

AtlasGraphics::~AtlasGraphics() {
  const std::lock_guard lock(listMutex);
  AtlasGraphics** link = &first;
  while (*link != this) link = &(*link)->next_;
  *link = next_;
}

std::shared_ptr<AtlasGraphics> AtlasGraphics::FindOwner(const VuGraphicsImpl* owner) {
  if (owner == this) return shared_from_this();
  std::shared_ptr<AtlasGraphics> found;
  {
    const std::lock_guard lock(listMutex);
    for (AtlasGraphics* known = first; known; known = known->next_)
      if (known == owner) found = known->weak_from_this().lock();
  }
  if (!found)
    ZIRK_LOG_ERROR("the font's glyph atlas is of another backend, or of a context that is gone");
  return found;
}

std::unique_ptr<VuScreenImpl> AtlasGraphics::MakeScreen(Entry, const VuScreenDescription&) {
  ZIRK_LOG_ERROR("the maker of glyph atlases makes no screens");
  return nullptr;
}

std::unique_ptr<VuBitmapImpl> AtlasGraphics::MakePicture(Entry, int, int, Image&, VuScaleMode) {
  ZIRK_LOG_ERROR("the maker of glyph atlases reads no pictures");
  return nullptr;
}

}  // namespace ZIRK::backends
