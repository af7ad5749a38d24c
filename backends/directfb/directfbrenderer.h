#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <memory>
#include <optional>

#include "directfb/directfbpixels.h"
#include "directfb/directfbrules.h"
#include "directfb/directfbruntime.h"
#include "software/painter.h"
#include "surface/drawmemory.h"
#include "surface/operands.h"
#include "text/textdrawing.h"

namespace ZIRK::backends {

/// Draws on an IDirectFBSurface: by DirectFB if one of its rules applies, otherwise by the software
/// painter on the locked pixels. Sources and masks are other surfaces of this plug-in, of any
/// context. surface/renderer.h documents the operations.
class DirectFbRenderer : public TextDrawing<DirectFbRenderer, DirectFbPixels> {
 public:
  /// With two buffers, drawing goes to the back buffer, but DirectFB itself reads the visible one.
  enum class Buffers { One, Two };

  /// `surface` has the size and format of `state`. `atlases` makes the atlases of fonts that are
  /// first used here.
  DirectFbRenderer(const SurfaceState& state, DirectFbSurfacePtr surface,
                   std::shared_ptr<GlyphAtlasAllocator> atlases, Buffers buffers = Buffers::One);

  /// Clears a new surface. Returns false, after an error line, if there is no memory for its
  /// pixels, which DirectFB allocates only now.
  bool Begin();

  // --- Reading ---

  using Pixels = DirectFbPixels;
  using Source = backends::Source<DirectFbPixels>;
  using SourceCopy = std::optional<DirectFbPixels>;
  bool Resolve(VuBitmapImpl& surface, RectD* part, Source& source, SourceCopy& copy);

  // --- Drawing ---

  using Mask = backends::Mask<DirectFbPixels>;
  bool FillBox(const VuRect& rect, VuColor color);
  bool BlitBox(const VuRect& dst, VuBitmapImpl& src, const VuRect& srcRect, const MatrixF& m,
               VuColor color);
  void DrawPoint(VuPoint p, float size, VuColor color, const MatrixF& m, const Mask* mask);
  void DrawLine(VuPoint from, VuPoint to, VuColor color, const MatrixF& m, const Mask* mask);
  void DrawRect(const RectD& rect, VuColor color, const MatrixF& m, const Mask* mask);
  void DrawObject(const RectD& dst, const Source& src, const RectD& srcRect, Edges edges,
                  const MatrixF& m, VuColor color, const Mask* mask);
  using TextDrawing::DrawText;

  // --- Pixels ---

  bool Clear(VuColor color);
  bool Read(const Box& box, void* dst);
  bool Write(const Box& box, const void* src, unsigned pitch);
  bool Copy(VuPoint at, VuBitmapImpl& src, const VuRect& srcRect);

  // --- Locking ---

  // Always locks for writing: for reading alone, DirectFB would return the visible buffer.
  bool Lock(bool write);
  bool Unlock(bool written);
  void* LockedPixels() const { return const_cast<uint8_t*>(pixels_.Buffer().Row(0)); }
  int Pitch() const { return pixels_.Buffer().Pitch(); }

  // --- The whole surface ---

  void Finish();
  void Flush() {}
  void SetName(const char* /*name*/) {}
  bool IsTextureBacked() const { return true; }

  /// Shows the frame. With two buffers, waits for that, and then updates the other buffer.
  void Flip();

 private:
  friend class TextDrawing<DirectFbRenderer, DirectFbPixels>;
  GlyphAtlasAllocator& Atlases() const { return *atlases_; }
  bool DrawGlyph(const TextLayout::Glyph& glyph, const LineStyle<DirectFbPixels>& style);

  bool Refresh();
  void SetColor(uint32_t color);
  bool SetWholeClip();

  bool Fill(const Box& box, uint32_t color);
  bool FillLine(const Hairline& line, uint32_t color);
  bool FillBoxes(const DFBRectangle* boxes, unsigned count, uint32_t color);
  bool Blit(DirectFbRenderer& source, const VuRect& part, const Box& box, uint32_t color);
  bool CopyBox(DirectFbRenderer& source, const CopyPlan& plan);
  template <typename F>
  void Paint(const Source* source, const Mask* mask, F&& draw);

  const SurfaceState& state_;
  const DirectFbSurfacePtr surface_;
  const std::shared_ptr<GlyphAtlasAllocator> atlases_;
  const Buffers buffers_;

  DirectFbPixels pixels_;
  Painter painter_;

  SeenRevision revision_;  ///< The revision of the state that the fields below have.
  std::optional<DirectFbBlend> blend_;
  Box clip_;

  WorkMemory<DFBRectangle> runs_;  ///< The runs of a line.
};

extern template class TextDrawing<DirectFbRenderer, DirectFbPixels>;

}  // namespace ZIRK::backends
