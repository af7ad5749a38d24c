#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <memory>
#include <optional>
#include <utility>

#include "software/painter.h"
#include "software/pixelbuffer.h"
#include "software/pixelsources.h"
#include "software/pixeltransfer.h"
#include "surface/ownsurface.h"
#include "text/textdrawing.h"

namespace ZIRK::backends {

/// `part` of `pixels`. Nothing if it is empty or, after an error line, if memory runs out.
std::optional<PixelBuffer> CopyOf(const PixelBuffer& pixels, const Box& part);

/// The pixels of a software surface.
struct OwnPixels {
  PixelBuffer pixels_;
};

/// Draws on pixels in memory, for DrawnSurface.
class SoftwareRenderer : private OwnPixels,
                         public Painter,
                         public TextDrawing<SoftwareRenderer, const PixelBuffer> {
 public:
  using Pixels = const PixelBuffer;
  using SourceCopy = std::optional<PixelBuffer>;

  SoftwareRenderer(const SurfaceState& state, std::shared_ptr<PixelSources> sources,
                   PixelBuffer::Contents contents = PixelBuffer::Contents::Clear)
      : OwnPixels{PixelBuffer(state.width, state.height, state.format, contents)},
        Painter(pixels_, state),
        sources_(std::move(sources)) {}

  PixelBuffer& Buffer() { return pixels_; }
  const PixelBuffer& Buffer() const { return pixels_; }

  bool Resolve(VuBitmapImpl& surface, Extent* part, Source& source, SourceCopy& copy) const;
  bool BlitBox(const VuRect& dst, VuBitmapImpl& src, const VuRect& srcRect, const MatrixF& m,
               VuColor color);

  // For TextDrawing.
  GlyphAtlasAllocator& Atlases() const { return sources_->Atlases(); }
  bool DrawGlyph(const TextLayout::Glyph& glyph, const LineStyle<Pixels>& style);

  bool Clear(VuColor color) {
    ClearPixels(pixels_, color);
    Touch(pixels_.Bounds());
    return true;
  }
  bool Read(const Box& box, void* dst) const { return GetPixels(pixels_, ToRect(box), dst); }
  bool Write(const Box& box, const void* src, unsigned pitch) {
    Touch(box);
    return SetPixels(pixels_, ToRect(box), src, pitch);
  }
  bool Copy(VuPoint at, VuBitmapImpl& src, const VuRect& srcRect);

  bool Lock(bool) { return true; }
  bool Unlock(bool written) {
    if (!written) return true;
    pixels_.RestoreOpaqueBits(pixels_.Bounds());
    Touch(pixels_.Bounds());
    return true;
  }
  void* LockedPixels() const { return const_cast<uint8_t*>(pixels_.Row(0)); }
  int Pitch() const { return pixels_.Pitch(); }

 private:
  const std::shared_ptr<PixelSources> sources_;
};

extern template class TextDrawing<SoftwareRenderer, const PixelBuffer>;

}  // namespace ZIRK::backends
