#pragma once

#include <zirk/export.h>
#include <zirk/vubitmapinfo.h>
#include <zirk/vucolor.h>
#include <zirk/vuenums.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>
#include <zirk/vurect2d.h>
#include <zirk/vutransform.h>
#include <zirk/vuvector2d.h>

#include <cstdint>

namespace ZIRK {

class VuFontImpl;

/// A drawing surface of a backend. VuBitmap documents each operation; the comments here add what a
/// backend may rely on.
///
/// Plug-ins are built separately from the library, which calls these operations by their position
/// and reads `overdrawPixels` at its offset. The order is fixed: nothing is inserted, moved or
/// removed.
///
/// - Transforms are complete; if the application gave none, the identity (0, 0, 1, 1, 0). Matrices
///   are the application's own and never converted on the way.
/// - Without a mask, `mask` is null and the coordinates are (0, 0) or null. With a mask, a point
///   has one pair of coordinates, a line two, and everything else four; null coordinates map the
///   whole mask onto the primitive.
/// - Nothing is clipped, clamped or tested: empty, inverted, distant and transparent primitives all
///   arrive. `src` and `mask` may be this surface.
/// - While LogPerf is set, an implementation that keeps statistics adds the time it spent to
///   draw_time.
///
/// **Threads**: one at a time for all surfaces of a context, unless the backend allows more.
class ZIRK_API VuBitmapImpl {
 public:
  VuBitmapImpl() = default;
  virtual ~VuBitmapImpl();  // slots 1 and 2
  VuBitmapImpl(const VuBitmapImpl&) = delete;
  VuBitmapImpl& operator=(const VuBitmapImpl&) = delete;

  /// Slot 3: holds its place in the table and is never called. Does nothing unless overridden.
  virtual void Reserved() {}

  /// @name State
  /// @{

  /// Slot 4: names the surface. `name` is valid during the call only; null removes the name.
  virtual void SetName(const char* name) = 0;
  /// Slot 5: clears to transparent, or black without alpha. Does nothing unless overridden.
  virtual void Clear();
  /// Slot 6: fills the whole surface with `color`.
  virtual void Clear(VuColor color) = 0;

  /// Slot 7: size, format and pitch. `pixels` is null unless the surface is locked.
  [[nodiscard]] virtual VuBitmapInfo GetInfo() const = 0;
  /// Slot 8: bytes of the pixel storage.
  [[nodiscard]] virtual uint32_t GetSize() const = 0;
  /// Slot 9: the surface's rectangle, whose origin is (0, 0).
  [[nodiscard]] virtual VuRect GetBounds() const = 0;

  // The state of slots 10 to 20 is kept by the surface and read back as it was set, whatever the
  // values.

  /// Slot 10: the clipping rectangle as it was set, at first the bounds.
  [[nodiscard]] virtual VuRect GetClippingRect() const = 0;
  /// Slot 11: stores the clipping rectangle.
  virtual void SetClippingRect(VuRect rect) = 0;
  /// Slot 12: stores the two colour factors in `src` and `dst`.
  virtual void GetBlendingFunc(VuBlendingFactor& src, VuBlendingFactor& dst) const = 0;
  /// Slot 13: sets the factors for colour and alpha alike.
  virtual void SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst) = 0;
  /// Slot 14: sets separate factors for colour and for alpha.
  virtual void SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                               VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha) = 0;
  /// Slot 15: whether blending is on, as it is at first.
  [[nodiscard]] virtual bool GetBlendEnabled() const = 0;
  /// Slot 16: turns blending on or off.
  virtual void SetBlendEnabled(bool enabled) = 0;
  /// Slot 17: the blend colour, 0 at first.
  [[nodiscard]] virtual VuColor GetBlendColor() const = 0;
  /// Slot 18: stores the blend colour.
  virtual void SetBlendColor(VuColor color) = 0;
  /// Slot 19: the scale mode, Nearest at first.
  [[nodiscard]] virtual VuScaleMode GetScaleMode() const = 0;
  /// Slot 20: stores the scale mode.
  virtual void SetScaleMode(VuScaleMode mode) = 0;

  /// @}

  /// @name Drawing
  /// @{

  /// Slot 21: a point by a transform. `mask` may be null.
  virtual void DrawPoint(VuPoint p, float size, VuColor color, VuTransform t, VuBitmapImpl* mask,
                         VuTVector2D<float> maskCoord) = 0;
  /// Slot 22: a point by a matrix. `mask` may be null.
  virtual void DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m,
                         VuBitmapImpl* mask, VuTVector2D<float> maskCoord) = 0;
  /// Slot 23: a line by a transform. `mask` and `maskCoords` may be null.
  virtual void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t, VuBitmapImpl* mask,
                        VuTVector2D<float>* maskCoords) = 0;
  /// Slot 24: a line by a matrix. `mask` and `maskCoords` may be null.
  virtual void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m,
                        VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) = 0;
  /// Slot 25: a filled rectangle by a transform. `mask` and `maskCoords` may be null.
  virtual void DrawRect(VuRect rect, VuColor color, VuTransform t, VuBitmapImpl* mask,
                        VuTVector2D<float>* maskCoords) = 0;
  /// Slot 26: a filled rectangle by a matrix. `mask` and `maskCoords` may be null.
  virtual void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m, VuBitmapImpl* mask,
                        VuTVector2D<float>* maskCoords) = 0;
  /// Slot 27: a part of `src` by a transform. `mask` and `maskCoords` may be null.
  virtual void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTransform t,
                          VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) = 0;
  /// Slot 28: a part of `src` by a matrix. `mask` and `maskCoords` may be null.
  virtual void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTMatrix2D<float> m,
                          VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) = 0;
  /// Slot 29: a part of `src` by a matrix, with sub-pixel rectangles. `mask` and `maskCoords` may
  /// be null.
  virtual void DrawObject(VuTRect2D<float> dst, VuBitmapImpl* src, VuTRect2D<float> srcRect,
                          VuTMatrix2D<float> m, VuColor color, VuBitmapImpl* mask,
                          VuTVector2D<float>* maskCoords) = 0;

  /// Slot 30: one line of UTF-8 by a transform. `font` is not null; `text` may be. `rect` is all
  /// zeros if the application gave none, otherwise it clips. A VuFontAtlas supplies the glyphs; any
  /// other font draws nothing.
  virtual void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color,
                        VuTransform t, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords,
                        VuRect rect) = 0;
  /// Slot 31: the same by a matrix.
  virtual void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color,
                        VuTMatrix2D<float> m, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords,
                        VuRect rect) = 0;

  /// @}

  /// @name Pixels and frames
  /// @{

  /// Slot 32: makes the pixels accessible, for writing too if `write`. Returns false if the surface
  /// is locked already or its pixels cannot be mapped.
  virtual bool Lock(bool write) = 0;
  /// Slot 33: ends the lock. Returns false if the surface was not locked.
  virtual bool Unlock() = 0;

  /// Slot 34: returns when all drawing is complete.
  virtual void Finish() = 0;
  /// Slot 35: submits drawing without waiting for it.
  virtual void Flush() = 0;

  /// Slot 36: copies the pixels in `rect` to `dst`, in rows without padding. Returns false and does
  /// nothing for null pixels and for a rectangle that does not lie inside the surface.
  virtual bool GetPixels(VuRect rect, void* dst) = 0;
  /// Slot 37: copies rows of pixels, `n` bytes apart, from `src` to `rect`. Returns false and does
  /// nothing for null pixels and for a rectangle that does not lie inside the surface.
  virtual bool SetPixels(VuRect rect, const void* src, unsigned int n) = 0;
  /// Slot 38: copies a part of `src` to `dst`, converts the format and leaves out pixels outside
  /// either surface. Returns false if `src` cannot be read.
  virtual bool CopyPixels(VuPoint dst, VuBitmapImpl* src, VuRect srcRect) = 0;

  /// Slot 39: whether the pixels are in a texture; true unless overridden.
  [[nodiscard]] virtual bool IsTextureBacked() const;

  /// @}

  /// Pixels drawn since the end of the last frame. Only the front end changes it.
  uint32_t overdrawPixels = 0;
};

}  // namespace ZIRK
