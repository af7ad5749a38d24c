#pragma once

#include <zirk/backendtable.h>

#include <memory>
#include <optional>

#include "context/graphicsbase.h"
#include "software/softwarebitmap.h"

namespace ZIRK::backends {

/// Finds the pixels of the bitmaps and screens in memory that surfaces in memory are drawn from.
/// Also makes the bitmaps of their glyph atlases.
class FbSourceResolver : public GlyphAtlasAllocator, public PixelSourceResolver {
 public:
  using GlyphAtlasAllocator::GlyphAtlasAllocator;

  GlyphAtlasAllocator& Atlases() final { return *this; }
  const PixelBuffer* PixelsOf(VuBitmapImpl& surface) final;
  bool CopyToBuffer(VuBitmapImpl& surface, const Box& part,
                    std::optional<PixelBuffer>& copy) override;

 private:
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                           VuPixelFormat format) final;
};

/// A context whose surfaces are drawn in memory by the processor, and whose screen is shown through
/// the kernel's framebuffer device.
class FbGraphics : public GraphicsBase {
 public:
  /// `type` is what GetGraphicsType() returns.
  explicit FbGraphics(BackendType type = BackendType::FB);

  void Flush() override {}
  int GetGraphicsType() const final { return type_; }

 protected:
  /// The atlases that `resolver` makes count against `budget`.
  FbGraphics(std::shared_ptr<MemoryBudget> budget, std::shared_ptr<FbSourceResolver> resolver);

  std::optional<ImageSize> DeviceSize(int index) const override;
  std::unique_ptr<VuScreenImpl> MakeScreen(Reservation reservation,
                                           const VuScreenDescription& description) override;
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                           VuPixelFormat format) final;
  std::unique_ptr<VuBitmapImpl> MakePicture(Reservation reservation, int width, int height,
                                            Image& image, VuScaleMode scaleMode) final;

  const std::shared_ptr<FbSourceResolver>& SourceResolver() const { return resolver_; }

 private:
  const int type_;
  const std::shared_ptr<FbSourceResolver> resolver_;
};

}  // namespace ZIRK::backends
