#pragma once

#include <zirk/backendtable.h>

#include "context/graphicsbase.h"

namespace ZIRK::backends {

/// A context whose surfaces store their state, but no pixels.
class StubGraphics final : public GraphicsBase {
 public:
  using GraphicsBase::GraphicsBase;

  void Flush() override {}
  int GetGraphicsType() const override { return TypeCode(BackendType::Stub); }

 protected:
  std::unique_ptr<VuScreenImpl> MakeScreen(Reservation reservation,
                                           const VuScreenDescription& description) override;
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                           VuPixelFormat format) override;
  std::unique_ptr<VuBitmapImpl> MakePicture(Reservation reservation, int width, int height,
                                            Image& image, VuScaleMode scaleMode) override;
};

}  // namespace ZIRK::backends
