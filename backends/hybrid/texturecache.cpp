#include "hybrid/texturecache.h"

#include <iterator>
#include <mutex>
#include <new>
#include <type_traits>
#include <utility>

#include "fb/fbscreen.h"
#include "geometry/surfaceformat.h"
#include "surface/drawmemory.h"
#include "surface/ownsurface.h"

namespace ZIRK::backends {

namespace {

/// Guards the links between bitmaps and their textures.
std::mutex mutex;
static_assert(std::is_trivially_destructible_v<std::mutex>);

/// Uploads `part` of `pixels` to `box` of `texture`.
bool Upload(GlTexture& texture, const Box& box, const PixelBuffer& pixels, const Box& part) {
  const uint8_t* const first =
      pixels.Row(part.y0) + ptrdiff_t{part.x0} * BytesPerPixel(pixels.Format());
  return texture.Upload(box, first, static_cast<unsigned>(pixels.Pitch()));
}

/// The pixels of `surface`; null if it is neither a bitmap nor a screen in memory.
const PixelBuffer* PixelsOf(VuBitmapImpl& surface) {
  if (const auto* const bitmap = AsOwn<SoftwareBitmap>(&surface))
    return &bitmap->Drawing().Buffer();
  const auto* const screen = AsOwn<FbScreen>(&surface);
  return screen ? &screen->Drawing().Buffer() : nullptr;
}

}  // namespace

/// The link from a bitmap to its texture, owned by the bitmap.
class TextureCache::Handle final : public CachedTexture {
 public:
  ~Handle() override {
    const std::lock_guard lock(mutex);
    Abandon();
  }
  bool HasTexture() const override {
    const std::lock_guard lock(mutex);
    return cache_ != nullptr;
  }

  /// The texture, if it is one of `device`. Read and changed only on the thread that has OpenGL.
  GlTexture* TextureOn(const GlDevice& device) const {
    return cache_ && cache_->device_.get() == &device ? slot_->texture.get() : nullptr;
  }

  // The mutex must be locked.

  void MoveTo(TextureCache& cache, std::list<Slot>::iterator slot) {
    Abandon();
    cache_ = &cache;
    slot_ = slot;
    slot_->handle = this;
  }
  void Forget() { cache_ = nullptr; }

 private:
  void Abandon() {
    if (!cache_) return;
    slot_->handle = nullptr;
    cache_->anyAbandoned_ = true;
    cache_ = nullptr;
  }

  TextureCache* cache_ = nullptr;  ///< The owner of `slot_`; null without a slot.
  std::list<Slot>::iterator slot_;
};

TextureCache::TextureCache(std::shared_ptr<GlDevice> device,
                           std::shared_ptr<GlyphAtlasAllocator> atlases)
    : device_(std::move(device)), atlases_(std::move(atlases)) {}

TextureCache::~TextureCache() {
  const std::lock_guard lock(mutex);
  for (const Slot& slot : slots_)
    if (slot.handle) slot.handle->Forget();
}

void TextureCache::DeleteAbandoned() {
  std::list<Slot> abandoned;
  const std::lock_guard lock(mutex);
  anyAbandoned_ = false;
  for (auto slot = slots_.begin(); slot != slots_.end();) {
    const auto next = std::next(slot);
    if (!slot->handle) abandoned.splice(abandoned.end(), slots_, slot);
    slot = next;
  }
}

GlTexture* TextureCache::TextureOf(VuBitmapImpl& surface, GlDevice& device) {
  if (auto* const bitmap = AsOwn<SoftwareBitmap>(&surface)) return TextureOf(*bitmap, device);
  return backends::TextureOf(FindCanvas(surface), device);
}

GlTexture* TextureCache::TextureOf(SoftwareBitmap& bitmap, GlDevice& device) {
  if (anyAbandoned_) DeleteAbandoned();
  const auto* const handle = static_cast<const Handle*>(bitmap.Cached().get());
  GlTexture* const texture = handle ? handle->TextureOn(device) : nullptr;
  if (!texture) return Make(bitmap);
  const Box& changed = bitmap.Drawing().Touched();
  if (changed.IsEmpty()) return texture;
  if (!Upload(*texture, changed, bitmap.Drawing().Buffer(), changed)) return nullptr;
  bitmap.Drawing().TakeTouched();
  return texture;
}

/// Makes the texture of a bitmap. Returns null if the bitmap is too large, if the device is lost,
/// or, after an error line, on failure.
GlTexture* TextureCache::Make(SoftwareBitmap& bitmap) {
  const PixelBuffer& pixels = bitmap.Drawing().Buffer();
  const int most = device_->MaxTextureSize();
  if (pixels.Width() > most || pixels.Height() > most || device_->IsLost()) return nullptr;
  std::list<Slot> made;
  try {
    made.emplace_back();
    if (!bitmap.Cached()) bitmap.Cached() = std::make_unique<Handle>();
  } catch (const std::bad_alloc&) {
    ReportNoMemory();
    return nullptr;
  }
  auto texture = GlTexture::Create(device_, pixels.Width(), pixels.Height(), pixels.Format());
  if (!texture || !Upload(*texture, pixels.Bounds(), pixels, pixels.Bounds())) return nullptr;
  texture->AllowPage();
  made.back().texture = std::move(texture);
  const std::lock_guard lock(mutex);
  slots_.splice(slots_.end(), made);
  static_cast<Handle&>(*bitmap.Cached()).MoveTo(*this, std::prev(slots_.end()));
  bitmap.Drawing().TakeTouched();
  return slots_.back().texture.get();
}

bool TextureCache::CopyToTexture(VuBitmapImpl& surface, const Box& part, GlDevice& device,
                                 std::unique_ptr<GlTexture>& copy) {
  const PixelBuffer* const pixels = PixelsOf(surface);
  if (!pixels) return backends::CopyToTexture(FindCanvas(surface), part, device, copy);
  // The loss of the device is logged already.
  if (device.IsLost()) return false;
  if (part.IsEmpty()) return true;
  copy =
      GlTexture::Create(device.shared_from_this(), part.Width(), part.Height(), pixels->Format());
  if (copy && !Upload(*copy, copy->Bounds(), *pixels, part)) copy = nullptr;
  return copy != nullptr;
}

}  // namespace ZIRK::backends
