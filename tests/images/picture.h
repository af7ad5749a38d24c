#pragma once

namespace ZIRK::tests {

constexpr int kPictureWidth = 29;  // No multiple of a JPEG block, nor of a PNG pass.
constexpr int kPictureHeight = 19;

/// Channels of 0 to 255, not premultiplied.
struct Rgba {
  int r, g, b, a;
};

/// What the sample pictures show, as far as their kind can: smooth, so that lossy formats keep it.
inline Rgba Gradient(int x, int y) {
  const int r = 255 * x / (kPictureWidth - 1);
  const int g = 255 * y / (kPictureHeight - 1);
  return {r, g, 255 - (r + g) / 2, 255 * (x + y) / (kPictureWidth + kPictureHeight - 2)};
}

}  // namespace ZIRK::tests
