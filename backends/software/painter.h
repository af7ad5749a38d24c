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
/// makes a copy where they would be.
class Painter {
 public:
  using Source = backends::Source<const PixelBuffer>;
  using Mask = backends::Mask<const PixelBuffer>;

  /// Both live as long as the painter; operations use the values of `state` at the time.
  Painter(PixelBuffer& target, const SurfaceState& state);

  void DrawPoint(VuPoint p, float size, VuColor color, const MatrixF& m, const Mask* mask);
  void DrawLine(VuPoint from, VuPoint to, VuColor color, const MatrixF& m, const Mask* mask);
  /// A rectangle of one colour. If it is axis-aligned on the surface, its edges are on whole
  /// pixels.
  void DrawRect(const RectD& rect, VuColor color, const MatrixF& m, const Mask* mask);
  /// The part `srcRect` of `src` in the place of `dst`.
  void DrawObject(const RectD& dst, const Source& src, const RectD& srcRect, Edges edges,
                  const MatrixF& m, VuColor color, const Mask* mask);

  /// The usual cases, worked out quickly; false, with nothing drawn, in any other.
  bool FillBox(const VuRect& rect, VuColor color);
  bool BlitBox(const VuRect& dst, const Source& src, const VuRect& srcRect, const MatrixF& m,
               VuColor color);

  /// The pixels that may have changed since the last TakeTouched().
  const Box& Touched() const { return touched_; }
  Box TakeTouched() { return std::exchange(touched_, Box()); }
  /// Records pixels that were changed from outside.
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
  /// One premultiplied colour through the A8 pixels of `src` that `box`, which is visible, moved by
  /// (moveX, moveY) covers; where Blending() is not direct.
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
  // Separate, as few lines need it.
  [[gnu::noinline]] void PaintPixel(int x, int y, uint32_t color);
  void DrawSlantedLine(const Hairline& line, uint32_t color);
  void DrawMaskedLine(const Hairline& line, uint32_t color, const Source& mask,
                      const LineEnds& ends);
  void TakeState();

  PixelBuffer& target_;
  const SurfaceState& state_;
  Blender blender_;
  Box clip_;
  SeenRevision revision_;  ///< What blender and clip are up to.
  Box touched_;
  QuadCoverage::Scratch scratch_;
};

}  // namespace ZIRK::backends
