#pragma once

#include <zirk/vucolor.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vupoint.h>

#include <optional>
#include <utility>

#include "geometry/hairline.h"
#include "geometry/mapping.h"
#include "software/blender.h"
#include "software/coverage.h"
#include "software/masksampler.h"
#include "software/pixelbuffer.h"
#include "surface/operands.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

/// The drawing operations on pixels in memory. Sources and masks are never the target: the caller
/// copies them if they would be.
class Painter {
 public:
  using Source = backends::Source<const PixelBuffer>;
  using Mask = backends::Mask<const PixelBuffer>;

  /// Both must outlive the painter. Operations use the values of `state` at the time of the call.
  Painter(PixelBuffer& target, const SurfaceState& state);

  void DrawPoint(VuPoint p, float size, VuColor color, const MatrixF& m, const Mask* mask);
  void DrawLine(VuPoint from, VuPoint to, VuColor color, const MatrixF& m, const Mask* mask);
  /// Draws a rectangle of one colour. If it is axis-aligned on the surface, its edges are moved to
  /// whole pixels.
  void DrawRect(const RectD& rect, VuColor color, const MatrixF& m, const Mask* mask);
  /// Draws the part `srcRect` of `src` at `dst`.
  void DrawObject(const RectD& dst, const Source& src, const RectD& srcRect, Edges edges,
                  const MatrixF& m, VuColor color, const Mask* mask);

  /// Draws the usual cases quickly. Otherwise returns false and draws nothing.
  bool FillBox(const VuRect& rect, VuColor color);
  bool BlitBox(const VuRect& dst, const Source& src, const VuRect& srcRect, const MatrixF& m,
               VuColor color);

  /// Returns the pixels that may have changed since the last TakeTouched().
  const Box& Touched() const { return touched_; }
  Box TakeTouched() { return std::exchange(touched_, Box()); }
  /// Records pixels that others have changed.
  void Touch(const Box& box) {
    if (!touched_.Contains(box)) touched_ = Union(touched_, box);
  }

 protected:
  // For a renderer that draws glyphs itself.

  /// Applies changes of the state. Call it before drawing.
  void Refresh() {
    if (revision_.CatchUp()) TakeState();
  }
  Box Visible(const Box& box) const { return Intersection(box, clip_); }
  Blender& Blending() { return blender_; }
  /// Draws one premultiplied colour on `box`, which is visible, through the A8 pixels of `src` at
  /// `box` moved by (moveX, moveY). Use it if Blending() is not direct.
  void DrawCoverageIndirect(const Box& box, const PixelBuffer& src, int moveX, int moveY,
                            uint32_t color);

 private:
  bool DrawUnscaled(const RectD& dst, const Source& src, const RectD& srcRect, const MatrixF& m,
                    VuColor color);
  void PaintBox(const Box& whole, const SourceSampler* texture, uint32_t color);
  void Paint(const MappedQuad& quad, const MappedQuad& whole, const SourceSampler* texture,
             uint32_t color, const Mask* mask);
  bool PaintAligned(const Box& box, const SourceSampler* texture, uint32_t color,
                    const MaskSampler* mask, bool opaque);
  void PaintRows(const Box& box, const SourceSampler* texture, uint32_t color,
                 const MaskSampler* mask, bool opaque);
  void PaintSlanted(const MappedQuad& quad, const Box& box, const SourceSampler* texture,
                    uint32_t color, const MaskSampler* mask);
  void PaintRow(const QuadCoverage::Row& row, int y, int bottom, const SourceSampler* texture,
                uint32_t color, const MaskSampler* mask, const QuadCoverage* coverage);
  void PaintRun(int x0, int x1, int y, PixelSpan& shading, const MaskSampler* mask);
  // Not inlined, since few lines need it.
  [[gnu::noinline]] void PaintPixel(int x, int y, uint32_t color);
  void DrawSlantedLine(const Hairline& line, uint32_t color);
  void DrawMaskedLine(const Hairline& line, uint32_t color, const Source& mask,
                      const LineEnds& ends);
  void TakeState();

  PixelBuffer& target_;
  const SurfaceState& state_;
  Blender blender_;
  Box clip_;
  SeenRevision revision_;  ///< The state that blender and clip are based on.
  Box touched_;
  QuadCoverage::Scratch scratch_;
};

}  // namespace ZIRK::backends
