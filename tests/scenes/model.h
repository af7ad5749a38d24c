#pragma once

#include <zirk/zirk.h>

#include <array>
#include <vector>

/// What drawing means, written a second time: pixel by pixel, in double precision, without regard
/// to speed. It shares no code with any backend.

namespace ZIRK::model {

/// Red, green, blue, alpha; premultiplied, 0 to 1.
using Pixel = std::array<double, 4>;

/// Where a format has red, green, blue and alpha; what has no bits is 1.
struct Layout {
  size_t bytes;
  std::array<int, 4> bits, shift;
};
const Layout& LayoutOf(VuPixelFormat format);

struct Picture {
  int width, height;
  VuPixelFormat format;
  std::vector<Pixel> pixels;

  explicit Picture(VuBitmap& bitmap);

  const Pixel& At(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }
};

struct Factors {
  VuBlendingFactor srcColor, dstColor, srcAlpha, dstAlpha;
};

/// A source or a mask.
struct Operand {
  const Picture* picture = nullptr;
  bool bilinear = false;
};

/// One drawing operation: a rectangle of one colour, or of a source's pixels times that colour; or
/// a line from one of its corners to the opposite one.
struct Operation {
  double x = 0, y = 0, width = 0, height = 0;
  bool line = false;
  bool subPixel = false;  ///< Axis-aligned edges are anti-aliased instead of moved.
  VuTMatrix2D<float> matrix{};
  VuColor color{0xFFFFFFFF};

  Operand source{};
  double srcX = 0, srcY = 0, srcWidth = 0, srcHeight = 0;

  Operand mask{};
  const VuTVector2D<float>* maskCoords = nullptr;  ///< Four, or two of a line; or null.

  bool blend = true;
  Factors factors{VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha, VuBlendingFactor::One,
                  VuBlendingFactor::OneMinusSrcAlpha};
  VuColor blendColor{0};
  VuRect clip{0, 0, 0, 0};
};

struct Outcome {
  Pixel value;
  double share;    ///< How much of it the operation covers.
  bool partly;     ///< At the edge, where coverage is a matter of precision.
  bool ambiguous;  ///< A sample or a cut edge is so near a border that either side is right.
};

/// Row by row, for all pixels of `target`.
std::vector<Outcome> Draw(const Operation& op, const Picture& target);

}  // namespace ZIRK::model
