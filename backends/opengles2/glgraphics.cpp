#include "opengles2/glgraphics.h"

#include <utility>
#include <vector>

#include "opengles2/glbitmap.h"
#include "opengles2/glscreen.h"
#include "opengles2/glsourceresolver.h"

namespace ZIRK::backends {

std::unique_ptr<GlGraphics> GlGraphics::Start() {
  auto device = GlDevice::Acquire();
  return device ? std::make_unique<GlGraphics>(std::move(device)) : nullptr;
}

GlGraphics::GlGraphics(std::shared_ptr<GlDevice> device)
    : device_(std::move(device)),
      resolver_(std::make_shared<GlSourceResolver>(Budget(), kType, device_)) {}

void GlGraphics::Flush() {
  device_->FlushAndDetach();
}

std::optional<ImageSize> GlGraphics::DeviceSize(int index) const {
  return device_->DisplaySize(index);
}

std::unique_ptr<VuScreenImpl> GlGraphics::MakeScreen(Reservation reservation,
                                                     const VuScreenDescription& description) {
  return GlScreen::Open(std::move(reservation), description, device_, resolver_);
}

std::unique_ptr<VuBitmapImpl> GlGraphics::MakeBitmap(Reservation reservation, int width, int height,
                                                     VuPixelFormat format) {
  auto texture = GlTexture::Create(device_, width, height, format);
  if (!texture) return nullptr;
  auto bitmap =
      std::make_unique<GlBitmap>(std::move(reservation), width, height, format, device_, resolver_);
  texture->AllowPage();
  bitmap->Drawing().DrawOn(std::move(texture));
  if (!bitmap->Drawing().Clear(VuColor{0})) return nullptr;
  return bitmap;
}

std::unique_ptr<VuBitmapImpl> GlGraphics::MakePicture(Reservation reservation, int width,
                                                      int height, Image& image,
                                                      VuScaleMode scaleMode) {
  auto texture = GlTexture::Create(device_, width, height, VuPixelFormat::ARGB8888);
  if (!texture) return nullptr;
  std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
  const int pitch = width * 4;
  if (!image.Decode({pixels.data(), pitch, width, height}, scaleMode)) return nullptr;
  if (!texture->Upload(texture->Bounds(), pixels.data(), static_cast<unsigned>(pitch)))
    return nullptr;
  auto bitmap = std::make_unique<GlBitmap>(std::move(reservation), width, height,
                                           VuPixelFormat::ARGB8888, device_, resolver_);
  texture->AllowPage();
  bitmap->Drawing().DrawOn(std::move(texture));
  return bitmap;
}

}  // namespace ZIRK::backends
