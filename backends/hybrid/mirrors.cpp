#include "hybrid/mirrors.h"

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

/// Guards who knows whom of bitmaps and their textures.
std::mutex mutex;
static_assert(std::is_trivially_destructible_v<std::mutex>);

/// Sends `part` of `pixels` to where `box` is in `texture`.
bool Upload(GlTexture& texture, const Box& box, const PixelBuffer& pixels, const Box& part) {
  const uint8_t* const first =
      pixels.Row(part.y0) + ptrdiff_t{part.x0} * BytesPerPixel(pixels.Format());
  return texture.Upload(box, first, static_cast<unsigned>(pixels.Pitch()));
}

/// What `surface` has in memory; null if it is neither a bitmap nor a screen there.
const PixelBuffer* PixelsOf(VuBitmapImpl& surface) {
  if (const auto* const bitmap = AsOwn<SoftwareBitmap>(&surface))
    return &bitmap->Drawing().Buffer();
  const auto* const screen = AsOwn<FbScreen>(&surface);
  return screen ? &screen->Drawing().Buffer() : nullptr;
}

}  // namespace

/// What a bitmap keeps of it.
class Mirrors::Mirror final : public BitmapMirror {
 public:
  ~Mirror() override {
    const std::lock_guard lock(mutex);
    Abandon();
  }
  bool HasTexture() const override {
    const std::lock_guard lock(mutex);
    return home_ != nullptr;
  }

  /// The texture if it is one of `device`. Only used where OpenGL is, as is all that changes it.
  GlTexture* TextureOn(const GlDevice& device) const {
    return home_ && home_->device_.get() == &device ? slot_->texture.get() : nullptr;
  }

  // These expect the mutex to be locked.

  void MoveTo(Mirrors& home, std::list<Slot>::iterator slot) {
    Abandon();
    home_ = &home;
    slot_ = slot;
    slot_->mirror = this;
  }
  void Forget() { home_ = nullptr; }

 private:
  void Abandon() {
    if (!home_) return;
    slot_->mirror = nullptr;
    home_->anyAbandoned_ = true;
    home_ = nullptr;
  }

  Mirrors* home_ = nullptr;  ///< Whose slot it has; null as long as it has none.
  std::list<Slot>::iterator slot_;
};

Mirrors::Mirrors(std::shared_ptr<GlDevice> device, std::shared_ptr<GlyphAtlasAllocator> atlases)
    : device_(std::move(device)), atlases_(std::move(atlases)) {}

Mirrors::~Mirrors() {
  const std::lock_guard lock(mutex);
  for (const Slot& slot : slots_)
    if (slot.mirror) slot.mirror->Forget();
}

void Mirrors::DeleteAbandoned() {
  std::list<Slot> abandoned;
  const std::lock_guard lock(mutex);
  anyAbandoned_ = false;
  for (auto slot = slots_.begin(); slot != slots_.end();) {
    const auto next = std::next(slot);
    if (!slot->mirror) abandoned.splice(abandoned.end(), slots_, slot);
    slot = next;
  }
}

GlTexture* Mirrors::TextureOf(VuBitmapImpl& surface, GlDevice& device) {
  if (auto* const bitmap = AsOwn<SoftwareBitmap>(&surface)) return TextureOf(*bitmap, device);
  return backends::TextureOf(FindCanvas(surface), device);
}

GlTexture* Mirrors::TextureOf(SoftwareBitmap& bitmap, GlDevice& device) {
  if (anyAbandoned_) DeleteAbandoned();
  const auto* const mirror = static_cast<const Mirror*>(bitmap.Mirror().get());
  GlTexture* const texture = mirror ? mirror->TextureOn(device) : nullptr;
  if (!texture) return Make(bitmap);
  const Box& changed = bitmap.Drawing().Touched();
  if (changed.IsEmpty()) return texture;
  if (!Upload(*texture, changed, bitmap.Drawing().Buffer(), changed)) return nullptr;
  bitmap.Drawing().TakeTouched();
  return texture;
}

/// Null if the bitmap is too large or the device lost; and after an error line if that fails.
GlTexture* Mirrors::Make(SoftwareBitmap& bitmap) {
  const PixelBuffer& pixels = bitmap.Drawing().Buffer();
  const int most = device_->MaxTextureSize();
  if (pixels.Width() > most || pixels.Height() > most || device_->IsLost()) return nullptr;
  std::list<Slot> made;
  try {
    made.emplace_back();
    if (!bitmap.Mirror()) bitmap.Mirror() = std::make_unique<Mirror>();
  } catch (const std::bad_alloc&) {
    ReportNoMemory();
    return nullptr;
  }
  auto texture = GlTexture::Create(device_, pixels.Width(), pixels.Height(), pixels.Format());
  if (!texture || !Upload(*texture, pixels.Bounds(), pixels, pixels.Bounds())) return nullptr;
  made.back().texture = std::move(texture);
  const std::lock_guard lock(mutex);
  slots_.splice(slots_.end(), made);
  static_cast<Mirror&>(*bitmap.Mirror()).MoveTo(*this, std::prev(slots_.end()));
  bitmap.Drawing().TakeTouched();
  return slots_.back().texture.get();
}

bool Mirrors::CopyToTexture(VuBitmapImpl& surface, const Box& part, GlDevice& device,
                            std::unique_ptr<GlTexture>& copy) {
  const PixelBuffer* const pixels = PixelsOf(surface);
  if (!pixels) return backends::CopyToTexture(FindCanvas(surface), part, device, copy);
  // Of a loss it has been told already.
  if (device.IsLost()) return false;
  if (part.IsEmpty()) return true;
  copy =
      GlTexture::Create(device.shared_from_this(), part.Width(), part.Height(), pixels->Format());
  if (copy && !Upload(*copy, copy->Bounds(), *pixels, part)) copy = nullptr;
  return copy != nullptr;
}

}  // namespace ZIRK::backends
