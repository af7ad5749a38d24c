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

/// A drawing surface of a backend. VuBitmap has the meaning of each operation; here stands what
/// a backend may rely on.
///
/// Plug-ins are built apart from the library, which calls these operations by their position, and
/// reads `overdrawPixels` where it stands. The order is fixed: nothing is inserted, moved or
/// removed.
///
/// - Transforms are complete; where the application gave none, the identity (0, 0, 1, 1, 0).
///   Matrices are the application's own, never converted on the way.
/// - Without a mask, `mask` is null and the coordinates are (0, 0) or null. Null coordinates with
///   a mask lay it over the primitive.
/// - Nothing is clipped, clamped or tested: empty, inverted, distant and transparent primitives
///   all arrive.
/// - `src` and `mask` may be this surface.
class ZIRK_API VuBitmapImpl {
 public:
  VuBitmapImpl() = default;
  virtual ~VuBitmapImpl();  // slots 1 and 2
  VuBitmapImpl(const VuBitmapImpl&) = delete;
  VuBitmapImpl& operator=(const VuBitmapImpl&) = delete;

  /// Slot 3: never called by the library, which keeps its place. Does nothing unless overridden.
  virtual void Reserved() {}

  /// Slot 4: `name` may be null, which stands for none, and is valid during the call only.
  virtual void SetName(const char* name) = 0;
  /// Slots 5 and 6. The form without a colour does nothing unless overridden.
  virtual void Clear();
  virtual void Clear(VuColor color) = 0;

  /// Slots 7 to 9. `pixels` of the information is null unless the surface is locked.
  virtual VuBitmapInfo GetInfo() const = 0;
  virtual uint32_t GetSize() const = 0;
  virtual VuRect GetBounds() const = 0;

  /// Slots 10 to 20: state, kept by the surface and read back from it as it was set, whatever the
  /// values.
  virtual VuRect GetClippingRect() const = 0;
  virtual void SetClippingRect(VuRect rect) = 0;
  virtual void GetBlendingFunc(VuBlendingFactor& src, VuBlendingFactor& dst) const = 0;
  virtual void SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst) = 0;
  virtual void SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                               VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha) = 0;
  virtual bool GetBlendEnabled() const = 0;
  virtual void SetBlendEnabled(bool enabled) = 0;
  virtual VuColor GetBlendColor() const = 0;
  virtual void SetBlendColor(VuColor color) = 0;
  virtual VuScaleMode GetScaleMode() const = 0;
  virtual void SetScaleMode(VuScaleMode mode) = 0;

  /// Slots 21 to 29: drawing. `mask` is null where there is none. Of the coordinates in the mask a
  /// point has one, a line two and everything else four; null ones lay the mask over the primitive.
  /// Who counts statistics adds the time spent to draw_time while LogPerf is set.
  virtual void DrawPoint(VuPoint p, float size, VuColor color, VuTransform t, VuBitmapImpl* mask,
                         VuTVector2D<float> maskCoord) = 0;
  virtual void DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m,
                         VuBitmapImpl* mask, VuTVector2D<float> maskCoord) = 0;
  virtual void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t, VuBitmapImpl* mask,
                        VuTVector2D<float>* maskCoords) = 0;
  virtual void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m,
                        VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) = 0;
  virtual void DrawRect(VuRect rect, VuColor color, VuTransform t, VuBitmapImpl* mask,
                        VuTVector2D<float>* maskCoords) = 0;
  virtual void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m, VuBitmapImpl* mask,
                        VuTVector2D<float>* maskCoords) = 0;
  virtual void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTransform t,
                          VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) = 0;
  virtual void DrawObject(VuRect dst, VuBitmapImpl* src, VuRect srcRect, VuTMatrix2D<float> m,
                          VuColor color, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords) = 0;
  virtual void DrawObject(VuTRect2D<float> dst, VuBitmapImpl* src, VuTRect2D<float> srcRect,
                          VuTMatrix2D<float> m, VuColor color, VuBitmapImpl* mask,
                          VuTVector2D<float>* maskCoords) = 0;

  /// Slots 30 and 31: one line of UTF-8. `font` is not null, `text` may be; `rect` is all zeros
  /// where the application gave none, else it clips. A VuFontAtlas gives the glyphs; with a font
  /// that is none of these nothing is drawn.
  virtual void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color,
                        VuTransform t, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords,
                        VuRect rect) = 0;
  virtual void DrawText(VuFontImpl* font, const char* text, VuPoint pos, VuColor color,
                        VuTMatrix2D<float> m, VuBitmapImpl* mask, VuTVector2D<float>* maskCoords,
                        VuRect rect) = 0;

  /// Slots 32 and 33: false if the surface is locked already, not locked, or cannot be.
  virtual bool Lock(bool write) = 0;
  virtual bool Unlock() = 0;

  /// Slots 34 and 35: complete all drawing, or submit it without waiting.
  virtual void Finish() = 0;
  virtual void Flush() = 0;

  /// Slots 36 to 38: pixels. `n` is bytes per row of `src`; GetPixels() writes tight rows. False,
  /// with nothing done, for null pixels and for a rectangle that does not lie inside the surface;
  /// those of CopyPixels() are cut instead.
  virtual bool GetPixels(VuRect rect, void* dst) = 0;
  virtual bool SetPixels(VuRect rect, const void* src, unsigned int n) = 0;
  virtual bool CopyPixels(VuPoint dst, VuBitmapImpl* src, VuRect srcRect) = 0;

  /// Slot 39: true unless overridden.
  virtual bool IsTextureBacked() const;

  /// Pixels drawn since the end of the last frame. Only the front end changes it.
  uint32_t overdrawPixels = 0;
};

}  // namespace ZIRK
