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
///     std::unique_ptr<VuBitmap> bitmap(graphics->CreateBitmap(64, 64, VuPixelFormat::ARGB8888));
///     bitmap->DrawRect(VuRect{8, 8, 48, 48}, 0xFF336699);
///     screen->DrawObject(VuRect{100, 100, 128, 128}, *bitmap);  // Twice as large.
///
/// **Coordinates** are pixels from the top-left corner. A transform or matrix maps the coordinates
/// of a primitive to the surface; a transform draws exactly as the matrix made from it. A primitive
/// with integer coordinates whose edges are horizontal and vertical on the surface has hard edges
/// on the nearest whole pixels, so that neighbours meet without a seam. Slanted edges and the edges
/// of sub-pixel rectangles are anti-aliased by exact area coverage: a pixel is filled in proportion
/// to the part of its square that the primitive covers. Lines are one pixel wide and include both
/// ends.
///
/// **Masks**: a mask multiplies what is drawn with the alpha of another bitmap. Its coordinates are
/// in mask pixels: one for a point, two for a line (from, to), four for everything else (top-left,
/// top-right, bottom-right, bottom-left). A null array maps the whole mask onto the primitive. The
/// arrays are read during the call only.
///
/// **Sources and masks** may be the bitmap itself, and belong to the same context; one of another
/// backend draws nothing, with an error line. Nothing is drawn outside the clipping rectangle.
/// Singular and non-finite matrices, and rectangles without extent, draw nothing and log nothing. A
/// drawing operation reports a failure only by an error line, when memory runs out for example.
///
/// **Threads**: use all bitmaps of a context from one thread at a time, unless the backend's README
/// allows more. This holds for every member.
class ZIRK_API VuBitmap {
 public:
  /// Wraps a backend surface and owns it. Applications get bitmaps from VuGraphics instead. A null
  /// `impl` ends the process by an assertion.
  explicit VuBitmap(VuBitmapImpl* impl);
  ~VuBitmap();
  VuBitmap(const VuBitmap&) = delete;
  VuBitmap& operator=(const VuBitmap&) = delete;

  /// @name State
  /// @{

  /// Makes the whole surface transparent, or black where its format has no alpha. The clipping
  /// rectangle has no effect. A third-party backend may do nothing here.
  void Clear();
  /// Fills the whole surface with `color`, whatever the clipping rectangle and the blending
  /// function.
  void Clear(VuColor color);

  /// Size in pixels, format and, while the surface is locked, the address of its pixels.
  [[nodiscard]] VuBitmapInfo GetInfo() const;
  /// Bytes of the pixel storage as the memory limit counts them: each row is padded to a multiple
  /// of 16 bytes, even if GetInfo() gives another pitch while the surface is locked.
  [[nodiscard]] uint32_t GetSize() const;
  /// The surface's rectangle in pixels; its origin is (0, 0).
  [[nodiscard]] VuRect GetBounds() const;

  /// The clipping rectangle, as it was set. A new surface has its bounds.
  [[nodiscard]] VuRect GetClippingRect() const;
  /// Limits drawing to `rect`, in pixels of the surface. It may reach beyond the bounds; without
  /// extent, nothing is drawn. Clear(), SetPixels() and CopyPixels() ignore it.
  void SetClippingRect(VuRect rect);

  /// Names the surface in PrintBitmapList() and in debuggers. The string is copied; null removes
  /// the name.
  void SetName(const char* name);

  /// Stores the two colour factors of the blending function in `src` and `dst`. A new surface has
  /// (One, OneMinusSrcAlpha): the operator "over" of Porter and Duff.
  void GetBlendingFunc(VuBlendingFactor& src, VuBlendingFactor& dst) const;
  /// Sets how drawn pixels combine with those present: source * `src` + destination * `dst`,
  /// clamped, on premultiplied colours. The factors serve for colour and alpha alike.
  void SetBlendingFunc(VuBlendingFactor src, VuBlendingFactor dst);
  /// The same with separate factors for the colour channels and for alpha.
  void SetBlendingFunc(VuBlendingFactor srcColor, VuBlendingFactor dstColor,
                       VuBlendingFactor srcAlpha, VuBlendingFactor dstAlpha);
  /// Whether blending is on. It is on for a new surface.
  [[nodiscard]] bool GetBlendEnabled() const;
  /// Turns blending on or off. While it is off, what is drawn replaces what was there.
  void SetBlendEnabled(bool enabled);
  /// The colour of the blend-colour factors, 0xAARRGGBB, not premultiplied. A new surface has 0.
  [[nodiscard]] VuColor GetBlendColor() const;
  /// Sets the colour that BlendColor, BlendAlpha and their complements use.
  void SetBlendColor(VuColor color);

  /// The scale mode. A new surface has Nearest.
  [[nodiscard]] VuScaleMode GetScaleMode() const;
  /// Sets how this surface is filtered when it is drawn scaled or rotated, or used as a mask. It
  /// does not affect what is drawn onto this surface.
  void SetScaleMode(VuScaleMode mode);

  /// @}

  /// @name Points, lines, filled rectangles
  /// @{

  /// Draws a square of `size` pixels around the centre of the pixel `p`.
  void DrawPoint(VuPoint p, float size, VuColor color);
  /// The same, mapped to the surface by `t`.
  void DrawPoint(VuPoint p, float size, VuColor color, VuTransform t);
  /// The same by `t`, multiplied with the alpha of the pixel `maskCoord` of `mask`.
  void DrawPoint(VuPoint p, float size, VuColor color, VuTransform t, const VuBitmap& mask,
                 VuTVector2D<float> maskCoord);
  /// The same, mapped to the surface by the matrix `m`.
  void DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m);
  /// The same by `m`, multiplied with the alpha of the pixel `maskCoord` of `mask`.
  void DrawPoint(VuPoint p, float size, VuColor color, VuTMatrix2D<float> m, const VuBitmap& mask,
                 VuTVector2D<float> maskCoord);

  /// Draws a line from `from` to `to`, both included, one pixel wide and hard-edged.
  void DrawLine(VuPoint from, VuPoint to, VuColor color);
  /// The same with both ends mapped by `t`. The width stays one pixel.
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t);
  /// The same by `t`, with a mask. `maskCoords` has two elements, for `from` and `to`, or is null.
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTransform t, const VuBitmap& mask,
                VuTVector2D<float>* maskCoords);
  /// The same with both ends mapped by the matrix `m`. The width stays one pixel.
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m);
  /// The same by `m`, with a mask. `maskCoords` has two elements, for `from` and `to`, or is null.
  void DrawLine(VuPoint from, VuPoint to, VuColor color, VuTMatrix2D<float> m, const VuBitmap& mask,
                VuTVector2D<float>* maskCoords);

  /// Fills `rect` with `color`. A zero or negative extent draws nothing.
  void DrawRect(VuRect rect, VuColor color);
  /// The same, mapped to the surface by `t`.
  void DrawRect(VuRect rect, VuColor color, VuTransform t);
  /// The same by `t`, with a mask. `maskCoords` has four elements, one per corner, or is null.
  void DrawRect(VuRect rect, VuColor color, VuTransform t, const VuBitmap& mask,
                VuTVector2D<float>* maskCoords);
  /// The same, mapped to the surface by the matrix `m`.
  void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m);
  /// The same by `m`, with a mask. `maskCoords` has four elements, one per corner, or is null.
  void DrawRect(VuRect rect, VuColor color, VuTMatrix2D<float> m, const VuBitmap& mask,
                VuTVector2D<float>* maskCoords);

  /// @}

  /// @name Bitmaps
  /// @{

  /// Draws all of `src` into `dst`, scaled to its size by the scale mode of `src`.
  void DrawObject(VuRect dst, const VuBitmap& src);
  /// The same for the part `srcRect` of `src`, in its pixels. Where `srcRect` reaches beyond the
  /// source, the matching part of `dst` is left out. Filtering never reads outside `srcRect`.
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect);
  /// Draws all of `src` into `dst`, mapped to the surface by `t`.
  void DrawObject(VuRect dst, const VuBitmap& src, VuTransform t);
  /// Draws a part of `src`, mapped to the surface by `t`.
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTransform t);
  /// Draws a part of `src` by `t`, each pixel multiplied with `color`. White leaves it unchanged.
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTransform t, VuColor color);
  /// The same by `t` and `color`, with a mask. `maskCoords` has four elements, one per corner of
  /// `dst`, or is null.
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTransform t, VuColor color,
                  const VuBitmap& mask, VuTVector2D<float>* maskCoords);
  /// Draws all of `src` into `dst`, mapped to the surface by the matrix `m`.
  void DrawObject(VuRect dst, const VuBitmap& src, VuTMatrix2D<float> m);
  /// Draws a part of `src`, mapped to the surface by the matrix `m`.
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m);
  /// Draws a part of `src` by `m`, each pixel multiplied with `color`. White leaves it unchanged.
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m,
                  VuColor color);
  /// The same by `m` and `color`, with a mask. `maskCoords` has four elements, one per corner of
  /// `dst`, or is null.
  void DrawObject(VuRect dst, const VuBitmap& src, VuRect srcRect, VuTMatrix2D<float> m,
                  VuColor color, const VuBitmap& mask, VuTVector2D<float>* maskCoords);
  /// Draws a part of `src` with both rectangles in fractions of a pixel. The edges of `dst` are
  /// anti-aliased, not moved to whole pixels.
  void DrawObject(VuTRect2D<float> dst, const VuBitmap& src, VuTRect2D<float> srcRect,
                  VuTMatrix2D<float> m, VuColor color);
  /// The sub-pixel form with a mask. `maskCoords` has four elements, one per corner of `dst`, or is
  /// null.
  void DrawObject(VuTRect2D<float> dst, const VuBitmap& src, VuTRect2D<float> srcRect,
                  VuTMatrix2D<float> m, VuColor color, const VuBitmap& mask,
                  VuTVector2D<float>* maskCoords);

  /// @}

  /// @name Text
  /// @{

  /// Draws one line of UTF-8. `pos` is the top-left corner of the line's box, whose baseline lies
  /// VuFont::GetAscent() pixels lower. Null draws nothing. A line feed is drawn as any other
  /// character is: there is no line break. Bytes that are not UTF-8 are skipped, with an info line.
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color);
  /// The same, mapped to the surface by `t`.
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color, VuTransform t);
  /// The same by `t`, with a mask and clipped. `maskCoords` has four elements, one per corner of
  /// the line's box, or is null. Glyphs are cut to `rect`, in the coordinates of `pos`, unless it
  /// is all zeros.
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color, VuTransform t,
                const VuBitmap& mask, VuTVector2D<float>* maskCoords, VuRect rect);
  /// The same, mapped to the surface by the matrix `m`.
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color,
                VuTMatrix2D<float> m);
  /// The same by `m`, with a mask and clipped. `maskCoords` and `rect` are as with a transform.
  void DrawText(const VuFont& font, const char* text, VuPoint pos, VuColor color,
                VuTMatrix2D<float> m, const VuBitmap& mask, VuTVector2D<float>* maskCoords,
                VuRect rect);

  /// @}

  /// @name Pixels
  /// @{

  /// Locks the surface for reading and writing, as Lock(bool) does with true.
  bool Lock();
  /// Makes GetInfo().pixels valid until Unlock(), for writing too if `write`: rows in the surface's
  /// format, GetInfo().pitch bytes apart, premultiplied as for SetPixels(). Returns false if the
  /// surface is locked already, which logs nothing, or if its pixels cannot be mapped, which logs
  /// an error. Do not draw on the surface while it is locked.
  bool Lock(bool write);
  /// Ends the lock; GetInfo().pixels is null again. Returns false if the surface was not locked,
  /// which logs nothing, or if what was written cannot be stored, which logs an error.
  bool Unlock();

  /// Copies the pixels in `rect` to `dst`, in the surface's own format: rows top down, without
  /// padding, so `dst` holds width * height * bytes per pixel. Pixels with alpha are premultiplied:
  /// divide red, green and blue by alpha (times 255) for the colour. Waits for drawing to complete.
  /// Returns false and copies nothing if `dst` is null or `rect` does not lie inside the
  /// bounds, which logs nothing, or if the pixels cannot be read, which logs an error.
  bool GetPixels(VuRect rect, void* dst);
  /// Copies pixels from `src` to `rect`, in the surface's own format: rows top down, `pitch` bytes
  /// apart. Pixels with alpha are premultiplied: red, green and blue are multiplied by alpha (over
  /// 255), and none is larger than alpha. Half-transparent white is 0x80808080. Neither clipping
  /// nor blending applies. Returns false as GetPixels() does.
  bool SetPixels(VuRect rect, const void* src, unsigned int pitch);
  /// Copies the part `srcRect` of `src` so that its top-left corner lies at `dst`, and converts the
  /// format. Neither clipping nor blending applies, and pixels outside either surface are left out.
  /// `src` may be this bitmap. Returns false, with an error line, if `src` cannot be read.
  bool CopyPixels(VuPoint dst, const VuBitmap& src, VuRect srcRect);

  /// Whether the backend keeps the surface as a texture of its device.
  [[nodiscard]] bool IsTextureBacked() const;

  /// @}

  /// @name End of a frame
  /// @{

  /// Submits pending drawing to the device without waiting for it.
  void Flush();
  /// Returns when all drawing is complete. While LogOverdraw is set, then logs the frame's overdraw
  /// at level warning and resets the count.
  void Finish();
  /// Presents a screen's frame; for a bitmap, the same as Finish(). Reports the overdraw as
  /// Finish() does. May wait for the display.
  void SwapBuffers();

  /// @}

 private:
  VuBitmapImpl* impl;
};

}  // namespace ZIRK
