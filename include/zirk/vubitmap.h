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

class VuBitmapImpl;
class VuFont;

/// A surface to draw on: a screen or an off-screen bitmap, created by VuGraphics.
///
/// Coordinates are pixels from the top-left corner. A transform or matrix maps the coordinates of
/// a primitive to the surface; a transform draws exactly as the matrix made from it. A primitive
/// with integer coordinates that comes out axis-aligned has hard edges on the nearest whole
/// pixels, so that neighbours meet without a seam; slanted edges and the edges of sub-pixel
/// rectangles are anti-aliased. Lines are one pixel wide and include both ends.
///
/// A mask multiplies what is drawn with the alpha of another bitmap. Its coordinates are in mask
/// pixels: one for a point, two for a line (from, to), four for everything else (top-left,
/// top-right, bottom-right, bottom-left); null lays the whole mask over the primitive. The arrays
/// are read during the call only.
///
/// Sources and masks may be the bitmap itself, and belong to the same context. Nothing drawn
/// reaches outside the clipping rectangle; singular and non-finite matrices, and rectangles
/// without extent, draw nothing. Use all bitmaps of a context from one thread at a time, unless the
/// backend's README allows more.
class ZIRK_API VuBitmap {
 public:
  /// Wraps a backend surface, expected not to be null, and owns it.
  explicit VuBitmap(VuBitmapImpl* impl);
  ~VuBitmap();
  VuBitmap(const VuBitmap&) = delete;
  VuBitmap& operator=(const VuBitmap&) = delete;

  // --- State ------------------------------------------------------------------------------------

  /// Fills the whole surface, whatever the clipping rectangle, with nothing (transparent, black
  /// where there is no alpha) or with `color`. A backend may do
  /// nothing for the form without a colour; ours clear.
  void Clear();
  void Clear(VuColor color);

  /// Size, format and, while the surface is locked, where its pixels lie.
  VuBitmapInfo GetInfo() const;
  /// Bytes of the pixel storage, as memory is counted: rows are filled up to 16 bytes, whatever
  /// GetInfo() tells while the surface is locked.
  uint32_t GetSize() const;
  /// The surface's rectangle; its origin is (0, 0).
  VuRect GetBounds() const;

  /// Drawing is limited to this rectangle; a new surface's is its bounds. Kept as given.
  VuRect GetClippingRect() const;
  void SetClippingRect(VuRect rect);

  /// A name for diagnostics, copied.
  void SetName(const char* name);

  /// How what is drawn meets what is there: source * `src` + destination * `dst`, clamped, on
  /// premultiplied colours. The four-factor form takes source colour, destination colour, source
  /// alpha, destination alpha; GetBlendingFunc() gives the first two. A new surface has (One,
  /// OneMinusSrcAlpha), enabled. With blending off, what is drawn replaces what was there.
  void GetBlendingFunc(VuBlendingFactor& src, VuBlendingFactor& dst) const;
  void SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst);
  void SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                       VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha);
  bool GetBlendEnabled() const;
  void SetBlendEnabled(bool enabled);
  /// The colour of the blend-colour factors; 0 for a new surface.
  VuColor GetBlendColor() const;
  void SetBlendColor(VuColor color);

  /// How this surface is filtered when it is drawn scaled or rotated, or is a mask. A new surface
  /// has Nearest.
  VuScaleMode GetScaleMode() const;
  void SetScaleMode(VuScaleMode mode);

  // --- Points, lines, filled rectangles ---------------------------------------------------------

  /// A square of `size` pixels around the centre of the pixel `p`.
  void DrawPoint(VuPoint p, float size, VuColor color);
  void DrawPoint(VuPoint p, float size, VuColor color, VuTransform t);
  void DrawPoint(VuPoint p, float size, VuColor color, VuTransform t, const VuBitmap& mask,
                 VuTVector2D<float> maskCoord);
  void DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m);
  void DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m, const VuBitmap& mask,
                 VuTVector2D<float> maskCoord);

  /// A line of one pixel's width, hard-edged, whatever the transform; both ends belong to it.
  void DrawLine(VuPoint from, VuPoint to, VuColor color);
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t);
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t, const VuBitmap& mask,
                VuTVector2D<float>* maskCoords);
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m);
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m, const VuBitmap& mask,
                VuTVector2D<float>* maskCoords);

  /// A filled rectangle.
  void DrawRect(VuRect rect, VuColor color);
  void DrawRect(VuRect rect, VuColor color, VuTransform t);
  void DrawRect(VuRect rect, VuColor color, VuTransform t, const VuBitmap& mask,
                VuTVector2D<float>* maskCoords);
  void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m);
  void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m, const VuBitmap& mask,
                VuTVector2D<float>* maskCoords);

  // --- Bitmaps ----------------------------------------------------------------------------------

  /// Draws the part `srcRect` of `src` (all of it where none is given) into `dst`, each pixel
  /// multiplied with `color` (white where none is given). What `srcRect` asks for beyond the
  /// source's bounds is left out. Filtering never reads outside `srcRect`.
  void DrawObject(VuRect dst, const VuBitmap& src);
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect);
  void DrawObject(VuRect dst, const VuBitmap& src, VuTransform t);
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTransform t);
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTransform t, VuColor color);
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTransform t, VuColor color,
                  const VuBitmap& mask, VuTVector2D<float>* maskCoords);
  void DrawObject(VuRect dst, const VuBitmap& src, VuTMatrix2D<float> m);
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m);
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m,
                  VuColor color);
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m,
                  VuColor color, const VuBitmap& mask, VuTVector2D<float>* maskCoords);
  /// The sub-pixel forms.
  void DrawObject(VuTRect2D<float> dst, const VuBitmap& src, VuTRect2D<float> srcRect,
                  VuTMatrix2D<float> m, VuColor color);
  void DrawObject(VuTRect2D<float> dst, const VuBitmap& src, VuTRect2D<float> srcRect,
                  VuTMatrix2D<float> m, VuColor color, const VuBitmap& mask,
                  VuTVector2D<float>* maskCoords);

  // --- Text -------------------------------------------------------------------------------------

  /// Draws one line of UTF-8; null draws nothing, and the end of a line is a character like others.
  /// `pos` is the top-left corner of the line's box; a `rect` that is not all zeros clips.
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color);
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color, VuTransform t);
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color, VuTransform t,
                const VuBitmap& mask, VuTVector2D<float>* maskCoords, VuRect rect);
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color,
                VuTMatrix2D<float> m);
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color,
                VuTMatrix2D<float> m, const VuBitmap& mask, VuTVector2D<float>* maskCoords,
                VuRect rect);

  // --- Pixels -----------------------------------------------------------------------------------

  /// Makes GetInfo().pixels valid until Unlock(), for writing as well if `write` (the default).
  /// False if the surface is locked already, or cannot be. Do not draw while it is locked.
  bool Lock();
  bool Lock(bool write);
  /// False if the surface was not locked.
  bool Unlock();

  /// Copies pixels, in the surface's own format, rows top down. Rows of `dst` are tight, rows of
  /// `src` are `pitch` bytes apart. `rect` lies inside the bounds; if not, false and nothing done.
  /// Neither clipping nor blending applies.
  bool GetPixels(VuRect rect, void* dst);
  bool SetPixels(VuRect rect, const void* src, unsigned int pitch);
  /// Copies the part `srcRect` of `src` to `dst`, converting the format, without blending or
  /// clipping rectangle; what lies outside either surface is left out. `src` may be this bitmap.
  bool CopyPixels(VuPoint dst, const VuBitmap& src, VuRect srcRect);

  /// Whether the backend keeps the surface as a texture of its device.
  bool IsTextureBacked() const;

  // --- End of a frame ---------------------------------------------------------------------------

  /// Submits drawing without waiting.
  void Flush();
  /// Completes all drawing, then reports the frame's overdraw while LogOverdraw is set.
  void Finish();
  /// Presents a screen's frame, or finishes a bitmap; reports as Finish() does.
  void SwapBuffers();

 private:
  VuBitmapImpl* impl;
};

}  // namespace ZIRK
