#pragma once

#include "common/textlayout.h"
#include "images/atlasgraphics.h"
#include "opengles2/canvas.h"

namespace ZIRK::backends {

/// Makes the atlases' bitmaps.
class GlAtlases final : public AtlasGraphics {
 public:
  GlAtlases(std::shared_ptr<SurfaceLedger> ledger, int graphicsType,
            std::shared_ptr<GlDevice> device)
      : AtlasGraphics(std::move(ledger), graphicsType), device_(std::move(device)) {}

 protected:
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Entry entry, int width, int height,
                                           VuPixelFormat format) override;

 private:
  const std::shared_ptr<GlDevice> device_;
};

/// Draws a line, which was laid out with `atlases`. Nothing, with an error line, if the font's
/// atlas is of another backend's making. May throw std::bad_alloc.
void DrawText(GlCanvas& canvas, AtlasGraphics& atlases, TextLayout& line, VuColor color,
              const GlCanvas::MatrixF& m, const GlMask* mask);

}  // namespace ZIRK::backends
