#include "fb/fbgraphics.h"

#include <zirk/impl/log.h>

#include <string>
#include <utility>

#include "common/ownsurface.h"
#include "fb/fbscreen.h"
#include "fb/framebufferdevice.h"
#include "software/softwarebitmap.h"

namespace ZIRK::backends {

namespace {

/// Screens are sources as well.
class FbSources final : public SoftwareAtlases {
 public:
  using SoftwareAtlases::SoftwareAtlases;

  const PixelBuffer* PixelsOf(VuBitmapImpl& surface) override {
    const auto* const screen = AsOwn<FbScreen>(&surface);
    return screen ? &screen->Pixels() : nullptr;
  }
};

}  // namespace

FbGraphics::FbGraphics() : sources_(std::make_shared<FbSources>(Ledger(), kType)) {}

ImageSize FbGraphics::ScreenSize(int index) const {
  const auto size = FramebufferDevice::SizeOf(FramebufferDevice::PathOf(index));
  // A device that is not there is reported when the screen is made.
  return size ? ImageSize{size->width, size->height} : GraphicsBase::ScreenSize(index);
}

std::unique_ptr<VuScreenImpl> FbGraphics::MakeScreen(Entry entry,
                                                     const VuScreenDescription& description) {
  std::string error;
  auto device = FramebufferDevice::Open(
      FramebufferDevice::PathOf(description.index),
      {description.width, description.height, description.buffers > 1}, error);
  if (!device) ZIRK_LOG_WARNING("%s: the screen stays in memory", error.c_str());
  return std::make_unique<FbScreen>(std::move(entry), description, std::move(device), sources_);
}

std::unique_ptr<VuBitmapImpl> FbGraphics::MakeBitmap(Entry entry, int width, int height,
                                                     VuPixelFormat format) {
  return std::make_unique<SoftwareBitmap>(std::move(entry), width, height, format, sources_);
}

std::unique_ptr<VuBitmapImpl> FbGraphics::MakePicture(Entry entry, int width, int height,
                                                      Image& image, VuScaleMode scaleMode) {
  auto bitmap = std::make_unique<SoftwareBitmap>(std::move(entry), width, height,
                                                 VuPixelFormat::ARGB8888, sources_);
  PixelBuffer& pixels = bitmap->Pixels();
  const PixelRows rows = {pixels.Row32(0), pixels.Pitch(), width, height};
  if (!image.Decode(rows, scaleMode)) return nullptr;
  return bitmap;
}

}  // namespace ZIRK::backends
