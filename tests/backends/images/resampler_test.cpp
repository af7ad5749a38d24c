#include "images/resampler.h"

#include <algorithm>

#include "backends/images/pictures.h"

namespace ZIRK::tests {
namespace {

TEST(Resampler, AveragesACheckerboardToGreyEverywhere) {
  const auto field = [](int x, int y) { return (x + y) % 2 ? 0xFFFFFFFF : 0xFF000000; };
  const Pixels grey(8, 8, [](int, int) { return 0xFF808080; });
  for (const int size : {64, 61, 127})  // An eighth, and less even parts.
    EXPECT_LE(Difference(Scaled({size, size, field}, 8, 8, VuScaleMode::Bilinear), grey),
              size == 64 ? 0 : 4);
}

TEST(Resampler, KeepsAFlatColourExactly) {
  const auto flat = [](int, int) { return 0xFF01FE7F; };
  for (const int to : {1, 3, 7, 8, 13, 14, 100})
    for (const auto mode : {VuScaleMode::Nearest, VuScaleMode::Bilinear})
      EXPECT_EQ(Difference(Scaled({13, 13, flat}, to, to, mode), {to, to, flat}), 0);
}

TEST(Resampler, NeitherBleedsNorRingsAtAnEdgeOfAlpha) {
  const auto halves = [](int x, int) { return x < 6 ? 0xFFFF0000 : 0x0000FF00; };
  for (const int to : {5, 31}) {
    Pixels pixels = Scaled({13, 13, halves}, to, to, VuScaleMode::Bilinear);
    EXPECT_EQ(pixels.At(0, 0), 0xFFFF0000);
    EXPECT_EQ(pixels.At(to - 1, 0), 0u);
    for (int x = 0; x < to; ++x) {
      EXPECT_EQ(pixels.At(x, 0), (pixels.At(x, 0) >> 24) * 0x01010000) << "premultiplied red";
      EXPECT_LE(pixels.At(x, 0), pixels.At(std::max(x - 1, 0), 0));
    }
  }
}

TEST(Resampler, InterpolatesBetweenCentresOrTakesTheNearest) {
  const auto step = [](int x, int) { return x ? 0xFF0000C8 : 0xFF000000; };
  const uint32_t between[] = {0xFF000000, 0xFF000032, 0xFF000096, 0xFF0000C8};
  const Pixels expected(4, 2, [&](int x, int) { return between[x]; });
  EXPECT_EQ(Difference(Scaled({2, 1, step}, 4, 2, VuScaleMode::Bilinear), expected), 0);

  constexpr auto numbered = [](int x, int y) { return Argb({0, x, y, 255}); };
  for (const auto& [from, sources] :
       {std::pair(3, std::vector{0, 0, 1, 1, 2, 2}), {4, {1, 3}}, {7, {1, 3, 5}}}) {
    const int to = static_cast<int>(sources.size());
    const Pixels scaled = Scaled({from, from, numbered}, to, to, VuScaleMode::Nearest);
    const auto nearest = [=, at = sources.data()](int x, int y) { return numbered(at[x], at[y]); };
    EXPECT_EQ(Difference(scaled, {to, to, nearest}), 0) << from << " to " << to;
  }
}

}  // namespace
}  // namespace ZIRK::tests
