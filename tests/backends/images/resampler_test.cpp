#include <gtest/gtest.h>

#include <functional>

#include "backends/images/samples.h"

namespace ZIRK::tests {
namespace {

/// `from` x `from` pixels, computed by `colour`, brought to `to` x `to`.
Pixels Scaled(int from, int to, VuScaleMode mode,
              const std::function<uint32_t(int x, int y)>& colour) {
  Pixels original(from, from);
  for (int y = 0; y < from; ++y)
    for (int x = 0; x < from; ++x) original.data[static_cast<size_t>(y * from + x)] = colour(x, y);
  const std::vector<uint8_t> png = EncodePng(original);
  return DecodeTo(backends::ImageSource(png.data(), png.size()), to, to, mode);
}

uint32_t Checkerboard(int x, int y) {
  return (x + y) % 2 ? 0xFFFFFFFF : 0xFF000000;
}

TEST(Resampler, AveragesACheckerboardToGreyEverywhere) {
  for (const int size : {64, 61, 127}) {  // An eighth, and less even parts.
    for (const uint32_t pixel : Scaled(size, 8, VuScaleMode::Bilinear, Checkerboard).data) {
      EXPECT_NEAR(Channel(pixel, 0), 127.5, size == 64 ? 1 : 4) << "from " << size;
      EXPECT_EQ(Channel(pixel, 24), 255);
    }
  }
}

TEST(Resampler, KeepsAFlatColourExactly) {
  for (const int to : {1, 3, 7, 8, 13, 14, 100}) {
    for (const auto mode : {VuScaleMode::Nearest, VuScaleMode::Bilinear}) {
      const auto flat = [](int, int) { return 0xFF01FE7Fu; };
      for (const uint32_t pixel : Scaled(13, to, mode, flat).data)
        ASSERT_EQ(pixel, 0xFF01FE7Fu) << "to " << to;
    }
  }
}

TEST(Resampler, BleedsNothingFromTransparentPixels) {
  const auto halves = [](int x, int) { return x < 6 ? 0xFFFF0000u : 0x0000FF00u; };
  for (const int to : {5, 31}) {
    for (const uint32_t pixel : Scaled(13, to, VuScaleMode::Bilinear, halves).data) {
      EXPECT_EQ(Channel(pixel, 16), Channel(pixel, 24));
      EXPECT_EQ(Channel(pixel, 8), 0);
    }
  }
}

TEST(Resampler, NeitherRingsNorFadesAtEdges) {
  const auto step = [](int x, int) { return x < 6 ? 0xFF000000u : 0xFFFFFFFFu; };
  for (const int to : {7, 50}) {
    const Pixels pixels = Scaled(13, to, VuScaleMode::Bilinear, step);
    EXPECT_EQ(pixels.At(0, 0), 0xFF000000u);
    EXPECT_EQ(pixels.At(to - 1, to - 1), 0xFFFFFFFFu);
    for (int x = 1; x < to; ++x)
      EXPECT_GE(pixels.At(x, 0), pixels.At(x - 1, 0)) << x << " of " << to;
  }
}

TEST(Resampler, InterpolatesBetweenCentres) {
  const auto ramp = [](int x, int) { return 0xFF000000u | (x ? 200u : 0u); };
  const Pixels pixels = Scaled(2, 4, VuScaleMode::Bilinear, ramp);
  const int expected[] = {0, 50, 150, 200};
  for (int x = 0; x < 4; ++x) EXPECT_EQ(Channel(pixels.At(x, 2), 0), expected[x]) << x;
}

TEST(Resampler, TakesTheNearestPixel) {
  const auto numbered = [](int x, int y) {
    return 0xFF000000u | static_cast<uint32_t>(10 * y + x);
  };
  struct {
    int from, to, sources[6];
  } const cases[] = {{3, 6, {0, 0, 1, 1, 2, 2}}, {4, 2, {1, 3}}, {7, 3, {1, 3, 5}}};
  for (const auto& c : cases) {
    const Pixels pixels = Scaled(c.from, c.to, VuScaleMode::Nearest, numbered);
    for (int y = 0; y < c.to; ++y)
      for (int x = 0; x < c.to; ++x)
        EXPECT_EQ(pixels.At(x, y), numbered(c.sources[x], c.sources[y])) << x << ", " << y;
  }
}

}  // namespace
}  // namespace ZIRK::tests
