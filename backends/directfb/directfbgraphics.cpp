#include "directfb/directfbgraphics.h"

#include <zirk/impl/log.h>

#include <string>
#include <utility>

#include "directfb/directfbbitmap.h"
#include "directfb/directfbruntime.h"
#include "directfb/directfbscreen.h"

namespace ZIRK::backends {

namespace {

/// A bitmap with undefined pixels.
std::unique_ptr<DirectFbBitmap> NewBitmap(std::unique_ptr<MemoryBudget::Reservation> reservation,
                                          IDirectFB& directFb, int width, int height,
                                          VuPixelFormat format,
                                          std::shared_ptr<GlyphAtlasAllocator> atlases) {
  DirectFbSurfacePtr surface = CreateDirectFbSurface(directFb, width, height, format);
  if (!surface) return nullptr;
  return std::make_unique<DirectFbBitmap>(std::move(reservation), width, height, format,
                                          std::move(surface), std::move(atlases));
}

class DirectFbAtlasAllocator final : public GlyphAtlasAllocator {
 public:
  DirectFbAtlasAllocator(std::shared_ptr<MemoryBudget> budget, int graphicsType,
                         IDirectFB& directFb)
      : GlyphAtlasAllocator(std::move(budget), graphicsType), directFb_(directFb) {}

 private:
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                           VuPixelFormat format) override {
    return NewBitmap(std::move(reservation), directFb_, width, height, format, shared_from_this());
  }

  IDirectFB& directFb_;
};

}  // namespace

std::unique_ptr<DirectFbGraphics> DirectFbGraphics::Start() {
  IDirectFB* const directFb = StartDirectFb();
  return directFb ? std::make_unique<DirectFbGraphics>(*directFb) : nullptr;
}

DirectFbGraphics::DirectFbGraphics(IDirectFB& directFb)
    : directFb_(directFb),
      atlases_(std::make_shared<DirectFbAtlasAllocator>(Budget(), kType, directFb)) {}

std::optional<ImageSize> DirectFbGraphics::DeviceSize(int index) const {
  // A missing layer is reported when the screen is made.
  return DirectFbLayer::SizeOf(directFb_, index);
}

std::unique_ptr<VuScreenImpl> DirectFbGraphics::MakeScreen(Reservation reservation,
                                                           const VuScreenDescription& d) {
  std::string error;
  std::unique_ptr<DirectFbLayer> layer;  // destroyed after its surface
  DirectFbLayer::Screen screen{nullptr, d.width, d.height, d.format, false};
  layer = DirectFbLayer::Open(directFb_, d, screen, error);
  if (!layer) {
    ZIRK_LOG_WARNING("%s: the screen stays in memory", error.c_str());
    screen.surface = CreateDirectFbSurface(directFb_, d.width, d.height, d.format);
    if (!screen.surface) return nullptr;
  }
  if (!reservation->Resize(screen.width, screen.height, screen.format)) return nullptr;
  auto made = std::make_unique<DirectFbScreen>(std::move(reservation), std::move(layer),
                                               std::move(screen), atlases_);
  if (!made->Begin()) return nullptr;
  return made;
}

std::unique_ptr<VuBitmapImpl> DirectFbGraphics::MakeBitmap(Reservation reservation, int width,
                                                           int height, VuPixelFormat format) {
  auto bitmap = NewBitmap(std::move(reservation), directFb_, width, height, format, atlases_);
  if (!bitmap || !bitmap->Drawing().Begin()) return nullptr;
  return bitmap;
}

std::unique_ptr<VuBitmapImpl> DirectFbGraphics::MakePicture(Reservation reservation, int width,
                                                            int height, Image& image,
                                                            VuScaleMode scaleMode) {
  auto bitmap = NewBitmap(std::move(reservation), directFb_, width, height, VuPixelFormat::ARGB8888,
                          atlases_);
  if (!bitmap || !bitmap->Lock(true)) return nullptr;
  const VuBitmapInfo info = bitmap->GetInfo();
  const bool decoded =
      image.Decode({static_cast<uint32_t*>(info.pixels), info.pitch, width, height}, scaleMode);
  bitmap->Unlock();
  if (!decoded) return nullptr;
  return bitmap;
}

}  // namespace ZIRK::backends
