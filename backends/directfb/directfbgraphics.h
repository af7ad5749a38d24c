#pragma once

#include <directfb.h>
#include <zirk/backendtable.h>

#include <memory>
#include <optional>

#include "context/graphicsbase.h"
#include "text/glyphatlasallocator.h"

namespace ZIRK::backends {

/// A context whose surfaces are drawn by DirectFB.
class DirectFbGraphics final : public GraphicsBase {
 public:
  /// Null, after an error line, if DirectFB cannot be started.
  static std::unique_ptr<DirectFbGraphics> Start();
  explicit DirectFbGraphics(IDirectFB& directFb);

  void Flush() override {}
  int GetGraphicsType() const override { return kType; }

 protected:
  std::optional<ImageSize> DeviceSize(int index) const override;
  std::unique_ptr<VuScreenImpl> MakeScreen(Reservation reservation,
                                           const VuScreenDescription& description) override;
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                           VuPixelFormat format) override;
  std::unique_ptr<VuBitmapImpl> MakePicture(Reservation reservation, int width, int height,
                                            Image& image, VuScaleMode scaleMode) override;

 private:
  static constexpr int kType = TypeCode(BackendType::DirectFB);

  IDirectFB& directFb_;
  const std::shared_ptr<GlyphAtlasAllocator> atlases_;
};

}  // namespace ZIRK::backends
