#pragma once

#include <zirk/vubitmapinfo.h>
#include <zirk/vucolor.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>

#include <memory>
#include <optional>
#include <utility>

#include "geometry/hairline.h"
#include "geometry/mapping.h"
#include "opengles2/glbatch.h"
#include "opengles2/gldevice.h"
#include "opengles2/gltexture.h"
#include "surface/operands.h"
#include "surface/surfacestate.h"

namespace ZIRK::backends {

class GlWindow;

/// The target of a surface's drawing, and the drawing operations. Sources and masks are never the
/// target itself: the caller makes a snapshot of it for them.
class GlCanvas {
 public:
  using Source = backends::Source<GlTexture>;
  using Mask = backends::Mask<GlTexture>;

  /// `state` must outlive the canvas. Each operation uses its current values.
  GlCanvas(std::shared_ptr<GlDevice> device, const SurfaceState& state)
      : device_(std::move(device)), state_(state), revision_(state) {}

  GlDevice& Device() const { return *device_; }
  const std::shared_ptr<GlDevice>& SharedDevice() const { return device_; }
  const SurfaceState& State() const { return state_; }
  Box Bounds() const { return {0, 0, state_.width, state_.height}; }

  /// Sets the target of drawing: a texture that the canvas owns, or a window, which must outlive
  /// it. Call it again after the window has presented its picture.
  void DrawOn(std::unique_ptr<GlTexture> texture);
  void DrawOn(GlWindow* window);
  /// Null if the target is a window.
  GlTexture* Texture() const { return texture_.get(); }
  /// Null if the target is a texture.
  GlWindow* Window() const { return window_; }

  void DrawPoint(VuPoint p, float size, VuColor color, const MatrixF& m, const Mask* mask);
  void DrawLine(VuPoint from, VuPoint to, VuColor color, const MatrixF& m, const Mask* mask);
  void DrawRect(const RectD& rect, VuColor color, const MatrixF& m, const Mask* mask);
  void DrawObject(const RectD& dst, const Source& src, const RectD& srcRect, Edges edges,
                  const MatrixF& m, VuColor color, const Mask* mask);

  /// Fast paths for the usual cases; they draw nothing and return false in all others. Rectangles
  /// are passed by value so that they stay in registers.
  bool FillBox(VuRect rect, VuColor color);
  bool BlitBox(VuRect dst, Source src, VuRect srcRect, const MatrixF& m, VuColor color);

  bool Clear(VuColor color);
  /// Read and write boxes inside the surface. Rows of `dst` have no padding. Return false after an
  /// error line.
  bool Read(const Box& box, void* dst);
  bool Write(const Box& box, const void* src, unsigned pitch);
  /// Copies pixels of `src`, from (srcX, srcY) on, into `box`.
  bool CopyFrom(GlTexture& src, int srcX, int srcY, const Box& box);

  /// A texture with the pixels of `box`; null after an error line.
  std::unique_ptr<GlTexture> Snapshot(const Box& box);

 private:
  /// The texture that fills a shape, and the mapping from the surface to it.
  struct Filling {
    GlTexture* texture = nullptr;
    TexelFilter filter = TexelFilter::Exact;
    Affine toTexture{};
    Box limits{};  ///< The texels that may be read.
  };
  struct PlacedMask {
    GlTexture* texture;
    TexelFilter filter;
    MappedMask place;
  };
  struct Shape;

  static std::optional<PlacedMask> PlaceOver(const MappedQuad& primitive, const Mask& mask);
  static PlacedMask PlaceAt(Point at, const Source& mask);
  static bool NeedsLimits(const Filling& filling);
  DrawKey KeyFor(const Shape& shape, const Filling& filling, const PlacedMask* mask) const;
  static MaskedVertex VertexOf(const Shape& shape, const Filling& filling, uint32_t color,
                               const PlacedMask* mask);

  const GlTarget* Target();
  bool Refresh();
  /// Premultiplied, in the target's channel order. Call it after Refresh().
  uint32_t Shade(VuColor color) const;
  Box Visible(const Box& box) const { return Intersection(box, clip_); }

  void PaintBox(const Box& box, uint32_t color);
  void Paint(const MappedQuad& quad, const Filling& filling, uint32_t color,
             const PlacedMask* mask);
  void PaintShape(const Shape& shape, const Filling& filling, uint32_t color,
                  const PlacedMask* mask);
  void PaintMaskedPixel(int x, int y, uint32_t color, const Source& mask, Point at);

  const std::shared_ptr<GlDevice> device_;
  const SurfaceState& state_;
  std::unique_ptr<GlTexture> texture_;
  GlWindow* window_ = nullptr;
  const GlTarget* target_ = nullptr;  ///< As of the last Refresh().
  GlBlend blend_;
  Box clip_;
  SeenRevision revision_;  ///< The revision of the state that `blend_` and `clip_` have.
};

}  // namespace ZIRK::backends
