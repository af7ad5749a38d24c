#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <memory>
#include <optional>
#include <utility>

#include "software/painter.h"
#include "software/pixelbuffer.h"
#include "software/pixelsourceresolver.h"
#include "software/pixeltransfer.h"
#include "text/textdrawing.h"

namespace ZIRK::backends {

/// Copies `part` of `pixels`. Returns nullopt if it is empty. Logs an error and returns nullopt if
/// memory runs out.
std::optional<PixelBuffer> CopyOf(const PixelBuffer& pixels, const Box& part);

/// The pixels of a software surface.
struct OwnPixels {
  PixelBuffer pixels_;
};

/// The renderer that draws on pixels in memory with the processor. Its PixelSourceResolver finds
/// the sources and masks. surface/renderer.h documents the operations.
class SoftwareRenderer : private OwnPixels,
                         private Painter,
                         public TextDrawing<SoftwareRenderer, const PixelBuffer> {
 public:
  SoftwareRenderer(const SurfaceState& state, std::shared_ptr<PixelSourceResolver> resolver,
                   PixelBuffer::Contents contents = PixelBuffer::Contents::Clear)
      : OwnPixels{PixelBuffer(state.width, state.height, state.format, contents)},
        Painter(pixels_, state),
        resolver_(std::move(resolver)) {}

  PixelBuffer& Buffer() { return pixels_; }
  const PixelBuffer& Buffer() const { return pixels_; }
  using Painter::TakeTouched;
  using Painter::Touched;

  // --- Reading ---

  using Pixels = const PixelBuffer;
  using SourceCopy = std::optional<PixelBuffer>;
  bool Resolve(VuBitmapImpl& surface, RectD* part, Source& source, SourceCopy& copy) const;

  // --- Drawing ---

  using Painter::FillBox;
  bool BlitBox(const VuRect& dst, VuBitmapImpl& src, const VuRect& srcRect, const MatrixF& m,
               VuColor color);
  using Painter::DrawLine;
  using Painter::DrawObject;
  using Painter::DrawPoint;
  using Painter::DrawRect;
  using TextDrawing::DrawText;

  // --- Pixels ---

  bool Clear(VuColor color);
  bool Read(const Box& box, void* dst) const;
  bool Write(const Box& box, const void* src, unsigned pitch);
  bool Copy(VuPoint at, VuBitmapImpl& src, const VuRect& srcRect);

  // --- Locking ---

  bool Lock(bool /*write*/) { return true; }
  bool Unlock(bool written);
  void* LockedPixels() const { return const_cast<uint8_t*>(pixels_.Row(0)); }
  int Pitch() const { return pixels_.Pitch(); }

  // --- The whole surface ---

  void Finish() {}
  void Flush() {}
  void SetName(const char* /*name*/) {}
  bool IsTextureBacked() const { return false; }

 private:
  friend class TextDrawing<SoftwareRenderer, const PixelBuffer>;
  GlyphAtlasAllocator& Atlases() const { return resolver_->Atlases(); }
  bool DrawGlyph(const TextLayout::Glyph& glyph, const LineStyle<Pixels>& style);

  const std::shared_ptr<PixelSourceResolver> resolver_;
};

extern template class TextDrawing<SoftwareRenderer, const PixelBuffer>;

}  // namespace ZIRK::backends
