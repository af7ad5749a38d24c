#pragma once

#include <memory>

#include "images/graphicsbase.h"
#include "software/pixelsources.h"

namespace ZIRK::backends {

/// A context whose surfaces are drawn in memory by the processor, and whose screen is shown through
/// the kernel's framebuffer device.
class FbGraphics final : public GraphicsBase {
 public:
  FbGraphics();

  void Flush() override {}
  int GetGraphicsType() const override { return kType; }

 protected:
  ImageSize ScreenSize(int index) const override;
  std::unique_ptr<VuScreenImpl> MakeScreen(Entry entry,
                                           const VuScreenDescription& description) override;
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Entry entry, int width, int height,
                                           VuPixelFormat format) override;
  std::unique_ptr<VuBitmapImpl> MakePicture(Entry entry, int width, int height, Image& image,
                                            VuScaleMode scaleMode) override;

 private:
  static constexpr int kType = 5;

  const std::shared_ptr<PixelSources> sources_;
};

}  // namespace ZIRK::backends
