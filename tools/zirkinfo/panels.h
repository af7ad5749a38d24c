#pragma once

#include <zirk/zirk.h>

#include <memory>
#include <string>

namespace ZIRK::zirkinfo {

using BitmapPtr = std::unique_ptr<VuBitmap>;

constexpr int kPanelWidth = 148, kPanelHeight = 96;

constexpr VuColor kBlack{0xFF000000}, kRed{0xFFE8432E}, kGreen{0xFF35C46A}, kBlue{0xFF3A7BF0},
    kGold{0xFFF2C14E}, kInk{0xFF10161C};

/// Bitmaps that several panels draw with.
struct Props {
  BitmapPtr letter;  ///< An F on a chequered ground, which looks different in every orientation.
  BitmapPtr board;   ///< A finer chequer, to be drawn smaller.
  BitmapPtr disc;    ///< Coverage of a circle, in an A8 bitmap.
  BitmapPtr dot;     ///< One white pixel.

  bool AreComplete() const { return letter && board && disc && dot; }
};

Props MakeProps(VuGraphics& graphics);

/// The means of drawing a panel. Coordinates are relative to the corner of the panel.
struct Easel {
  VuGraphics& graphics;
  VuBitmap& target;
  const Props& props;
  const std::string& fontFile;  ///< Empty if there is no font.
  VuPoint origin;

  VuRect At(int x, int y, int width, int height) const {
    return {origin.x + x, origin.y + y, width, height};
  }
  VuPoint At(int x, int y) const { return {origin.x + x, origin.y + y}; }
  /// A transform that rotates and scales around (0, 0), which it then moves to (x, y).
  VuTransform Around(int x, int y, float scaleX, float scaleY, float degrees) const {
    return {static_cast<float>(origin.x + x), static_cast<float>(origin.y + y), scaleX, scaleY,
            degrees};
  }
  void Rect(int x, int y, int width, int height, VuColor color) const {
    target.DrawRect(At(x, y, width, height), color);
  }
  void Line(int x0, int y0, int x1, int y1, VuColor color) const {
    target.DrawLine(At(x0, y0), At(x1, y1), color);
  }
  /// Draws a light and dark chequer as the background of translucent things.
  void Chequer(int x, int y, int width, int height) const;
};

constexpr VuColor WithAlpha(VuColor color, uint32_t alpha) {
  return VuColor{(color.argb & 0xFFFFFF) | alpha << 24};
}

// Filled rectangles, points and lines.
void DrawColours(const Easel& e);
void DrawAlpha(const Easel& e);
void DrawGrids(const Easel& e);
void DrawLines(const Easel& e);
void DrawEdges(const Easel& e);
void DrawClipping(const Easel& e);
void DrawBlending(const Easel& e);

// Bitmaps.
void DrawScaled(const Easel& e);
void DrawTurned(const Easel& e);
void DrawMirrored(const Easel& e);
void DrawMasks(const Easel& e);
void DrawFormats(const Easel& e);
void DrawTints(const Easel& e);
void DrawPixels(const Easel& e);

// Text; nothing without a font.
void DrawTextSizes(const Easel& e);
void DrawTextEffects(const Easel& e);

}  // namespace ZIRK::zirkinfo
