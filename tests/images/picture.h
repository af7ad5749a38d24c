#pragma once

/// What the sample pictures show: the same for whoever makes them and whoever checks them.

namespace ZIRK::tests {

constexpr int kPictureWidth = 29;  // No multiple of a JPEG block, nor of a PNG pass.
constexpr int kPictureHeight = 19;

/// Channels of 0 to 255, not premultiplied.
struct Rgba {
  int r, g, b, a;
};

using Picture = Rgba (*)(int x, int y);

/// Smooth, so that lossy formats keep it.
inline Rgba Colours(int x, int y) {
  const int r = 255 * x / (kPictureWidth - 1);
  const int g = 255 * y / (kPictureHeight - 1);
  return {r, g, 255 - (r + g) / 2, 255};
}

inline Rgba Translucent(int x, int y) {
  Rgba c = Colours(x, y);
  c.a = 255 * (x + y) / (kPictureWidth + kPictureHeight - 2);
  return c;
}

inline Rgba Grey(int x, int y) {
  const int v = Colours(x, y).r;
  return {v, v, v, 255};
}

inline Rgba TranslucentGrey(int x, int y) {
  Rgba c = Grey(x, y);
  c.a = Translucent(x, y).a;
  return c;
}

inline Rgba BlackAndWhite(int x, int y) {
  const int v = (x + y) % 3 ? 255 : 0;
  return {v, v, v, 255};
}

/// Few enough colours for a palette.
inline Rgba Blocks(int x, int y) {
  return Translucent(x / 4 * 4, y / 4 * 4);
}

/// One colour of the picture is missing.
inline Rgba Keyed(int x, int y) {
  Rgba c = Colours(x, y);
  if (x == 5 && y == 3) c.a = 0;
  return c;
}

/// Printed with a fifth of black ink everywhere.
inline Rgba Printed(int x, int y) {
  const Rgba c = Colours(x, y);
  return {c.r * 204 / 255, c.g * 204 / 255, c.b * 204 / 255, 255};
}

}  // namespace ZIRK::tests
