#include "fb/fbgraphics.h"

#include <utility>

#include "fb/displaydevice.h"
#include "fb/fbscreen.h"
#include "surface/ownsurface.h"

namespace ZIRK::backends {

const PixelBuffer* FbSourceResolver::PixelsOf(VuBitmapImpl& surface) {
  const auto* const screen = AsOwn<FbScreen>(&surface);
  return screen ? &screen->Drawing().Buffer() : nullptr;
}

bool FbSourceResolver::CopyToBuffer(VuBitmapImpl&, const Box&, std::optional<PixelBuffer>&) {
  return RefuseSource();
}

std::unique_ptr<VuBitmapImpl> FbSourceResolver::MakeBitmap(Reservation reservation, int width,
                                                           int height, VuPixelFormat format) {
  // Clearing it would take longer than packing the glyphs.
  return std::make_unique<SoftwareBitmap>(
      std::move(reservation), width, height, format,
      std::shared_ptr<PixelSourceResolver>(shared_from_this(), this),
      PixelBuffer::Contents::Undefined);
}

FbGraphics::FbGraphics(BackendType type)
    : type_(TypeCode(type)), resolver_(std::make_shared<FbSourceResolver>(Budget(), type_)) {}

FbGraphics::FbGraphics(std::shared_ptr<MemoryBudget> budget,
                       std::shared_ptr<FbSourceResolver> resolver)
    : GraphicsBase(std::move(budget)),
      type_(resolver->GetGraphicsType()),
      resolver_(std::move(resolver)) {}

std::optional<ImageSize> FbGraphics::DeviceSize(int index) const {
  // A missing device is reported when the screen is made.
  return DisplayDevice::SizeOf(index);
}

std::unique_ptr<VuScreenImpl> FbGraphics::MakeScreen(Reservation reservation,
                                                     const VuScreenDescription& description) {
  return FbScreen::Open(std::move(reservation), description, resolver_);
}

std::unique_ptr<VuBitmapImpl> FbGraphics::MakeBitmap(Reservation reservation, int width, int height,
                                                     VuPixelFormat format) {
  return std::make_unique<SoftwareBitmap>(std::move(reservation), width, height, format, resolver_);
}

std::unique_ptr<VuBitmapImpl> FbGraphics::MakePicture(Reservation reservation, int width,
                                                      int height, Image& image,
                                                      VuScaleMode scaleMode) {
  auto bitmap = std::make_unique<SoftwareBitmap>(std::move(reservation), width, height,
                                                 VuPixelFormat::ARGB8888, resolver_);
  PixelBuffer& pixels = bitmap->Drawing().Buffer();
  const PixelRows rows = {pixels.Row32(0), pixels.Pitch(), width, height};
  if (!image.Decode(rows, scaleMode)) return nullptr;
  return bitmap;
}

}  // namespace ZIRK::backends
