// Every build of the inner loops against one pixel at a time.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "geometry/pixelmath.h"
#include "geometry/pixeltraits.h"
#include "helpers/logged.h"
#include "software/kernelchoice.h"

namespace ZIRK::backends {
namespace {

constexpr int kPitch = 40, kRows = 7;

/// Random pixels, many of them extreme. If they are `valid`, no channel exceeds alpha.
std::vector<uint32_t> RandomPixels(unsigned seed, bool valid) {
  std::mt19937 random(seed);
  std::vector<uint32_t> pixels(kPitch * kRows);
  for (size_t i = 0; i < pixels.size(); ++i) {
    const uint32_t extremes[] = {0, 0xFFFFFFFFu, static_cast<uint32_t>(random()),
                                 static_cast<uint32_t>(random())};
    uint32_t& p = pixels[i] = extremes[random() % 4];
    if (valid) {
      p = Premultiply(VuColor{p});
      continue;
    }
    // One row is opaque, and one has colours without alpha.
    if (i / kPitch == 1) p |= 0xFF000000u;
    if (i / kPitch == 2) p &= 0x00FFFFFFu;
  }
  return pixels;
}

uint32_t MultiplyPixels(uint32_t a, uint32_t b) {
  uint32_t result = 0;
  for (int shift = 0; shift < 32; shift += 8)
    result |= MultiplyChannel(a >> shift & 255, b >> shift & 255) << shift;
  return result;
}

/// A colour blended through coverage, with the result alone rounded.
uint32_t BlendCovered(uint32_t color, uint32_t coverage, uint32_t dst) {
  const uint32_t inverse = 255 - MultiplyChannel(color >> 24, coverage);
  uint32_t result = 0;
  for (int shift = 0; shift < 32; shift += 8)
    result |= ((color >> shift & 255) * coverage + (dst >> shift & 255) * inverse + 127) / 255
              << shift;
  return result;
}

struct Case {
  Kernels::Operator op;
  bool blit, tinted, covered, opaque;
};

/// Compares what `kernel` makes of random pixels of the format with one pixel at a time.
template <VuPixelFormat kFormat>
void CheckSpan(Kernels::SpanKernel kernel, const Case& c, int width) {
  using Traits = PixelTraits<kFormat>;
  constexpr bool kNarrow = kFormat == VuPixelFormat::RGB565;
  const std::vector<uint32_t> random = RandomPixels(1, !kNarrow), src = RandomPixels(2, kNarrow);
  const std::vector<typename Traits::Stored> before(random.begin(), random.end());
  std::vector<typename Traits::Stored> dst = before;
  std::vector<uint8_t> coverage(kPitch * kRows);
  for (size_t i = 0; i < coverage.size(); ++i)
    coverage[i] = static_cast<uint8_t>(i % 3 == 0 ? 255 : i % 7 == 0 ? 0 : i * 37);

  PixelSpan span = {};
  if constexpr (kNarrow)
    span.dst565 = dst.data() + 1;
  else
    span.dst = dst.data() + 1;
  span.dstPitch = span.srcPitch = span.coveragePitch = kPitch;
  span.width = width;
  span.height = kRows;
  span.color = c.blit && !c.tinted ? 0xFFFFFFFFu : width % 2 ? 0xFF70F010u : 0x90708010u;
  if (c.blit) span.src = src.data() + 1;
  if (c.covered) span.coverage = coverage.data() + 1;
  if (c.opaque) span.opaque = 0xFF000000u;
  kernel(span);

  for (size_t i = 0; i < dst.size(); ++i) {
    const int x = static_cast<int>(i) % kPitch - 1;
    const uint32_t below = Traits::Unpack(before[i]);
    uint32_t shade = c.blit ? src[i] : span.color;
    if (c.blit && c.tinted) shade = MultiplyPixels(shade, span.color);
    if (c.covered) shade = ScalePixel(shade, coverage[i]);
    uint32_t drawn = c.op == Kernels::Over ? BlendOver(shade, below) : shade | span.opaque;
    if (c.op == Kernels::Over && c.covered && !c.blit)
      drawn = BlendCovered(span.color, coverage[i], below);
    ASSERT_EQ(dst[i], x >= 0 && x < width ? Traits::Pack(drawn) : before[i])
        << "format " << static_cast<int>(kFormat) << " x " << x << " width " << width
        << " operator " << c.op << " blit " << c.blit << " tinted " << c.tinted << " covered "
        << c.covered;
  }
}

class EachLevel : public testing::TestWithParam<KernelLevel> {};

INSTANTIATE_TEST_SUITE_P(Kernels, EachLevel, testing::ValuesIn(RunnableKernels()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(Kernels, AreChosenByLevel) {
  const std::span<const KernelLevel> runnable = RunnableKernels();
  for (const KernelLevel& level : runnable) EXPECT_EQ(&ChooseKernels(level.name), &level);
  EXPECT_EQ(&ChooseKernels(nullptr), &runnable.front());
  // Where all processors of the kind have NEON, there is no such level.
  EXPECT_EQ(&ChooseKernels("none"), &runnable.back());
  // A level of another kind of processor.
  for (const char* const foreign : {"neon", "avx2"}) {
    const std::set<std::string> below = {"none", "base", "neon", foreign};
    EXPECT_TRUE(below.count(ChooseKernels(foreign).name)) << ChooseKernels(foreign).name;
  }
  EXPECT_TRUE(helpers::LogsOneError(
      "no level \"avx\"", [&] { EXPECT_EQ(&ChooseKernels("avx"), &runnable.front()); }, 4));
  // A process chooses once, so a process of its own makes this choice.
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto ask = [&] {
    setenv("ZIRK_CPU", "none", 1);
    std::exit(&ChosenKernels() == &runnable.back() ? 0 : 1);
  };
  EXPECT_EXIT(ask(), testing::ExitedWithCode(0), "");
}

TEST_P(EachLevel, FillAndBlitEveryWidth) {
  const Kernels& kernels = *GetParam().kernels;
  for (int flags = 0; flags < 32; ++flags) {
    const bool over = flags & 1, blit = flags & 2, tinted = flags & 4, covered = flags & 8;
    // An operator that blends keeps what an opaque destination has in its X byte.
    const bool opaque = (flags & 16) && !over;
    if (tinted && !blit) continue;
    const Case c = {over ? Kernels::Over : Kernels::Source, blit, tinted, covered, opaque};
    const auto kernel = blit ? kernels.blit[over][tinted][covered] : kernels.fill[over][covered];
    const auto narrow = blit ? kernels.blit565[over] : kernels.fill565[over][covered];
    const bool hasNarrow = narrow && !tinted && !opaque && !(blit && covered);
    for (int width = 1; width < kPitch - 1; ++width) {
      CheckSpan<VuPixelFormat::ARGB8888>(kernel, c, width);
      if (hasNarrow) CheckSpan<VuPixelFormat::RGB565>(narrow, c, width);
    }
  }
}

/// A factor of the channel at `shift`, 0 to 255.
uint32_t FactorAt(VuBlendingFactor factor, uint32_t src, uint32_t dst, uint32_t constant,
                  int shift) {
  constexpr auto kSaturate = VuBlendingFactor::SrcAlphaSaturate;
  if (factor == kSaturate) return shift == 24 ? 255 : std::min(src >> 24, 255 - (dst >> 24));
  // The others come in pairs: a value, and what it lacks of 255.
  const uint32_t values[] = {0,
                             src >> shift & 255,
                             src >> 24,
                             dst >> 24,
                             dst >> shift & 255,
                             constant >> shift & 255,
                             constant >> 24};
  const int number = static_cast<int>(factor) - (factor > kSaturate ? 1 : 0);
  return number % 2 ? 255 - values[number / 2] : values[number / 2];
}

TEST_P(EachLevel, BlendsByAnyFactors) {
  constexpr int kFactors = 15, kCount = 150;
  const std::vector<uint32_t> before = RandomPixels(5, true), src = RandomPixels(6, true);
  for (int number = 0; number < kFactors * kFactors; ++number) {
    const auto nth = [&](int n) { return VuBlendingFactor(n % kFactors); };
    const BlendFactors f = {nth(number), nth(number / kFactors), nth(number / 2), nth(number / 4)};
    const uint32_t constant = 0xC0A05020u;
    const int count = number < kCount ? number : kCount;
    std::vector<uint32_t> dst = before;
    GetParam().kernels->blendByFactors(dst.data(), src.data(), count, f, constant);
    for (size_t i = 0; i < dst.size(); ++i) {
      const uint32_t s = src[i], d = before[i];
      uint32_t expected = 0;
      for (int shift = 0; shift < 32; shift += 8) {
        const uint32_t sf = FactorAt(shift < 24 ? f.srcColor : f.srcAlpha, s, d, constant, shift);
        const uint32_t df = FactorAt(shift < 24 ? f.dstColor : f.dstAlpha, s, d, constant, shift);
        const uint32_t sum = (s >> shift & 255) * sf + (d >> shift & 255) * df;
        expected |= std::min((sum + 127) / 255, 255u) << shift;
      }
      ASSERT_EQ(dst[i], i < static_cast<size_t>(count) ? expected : d) << number << " pixel " << i;
    }
  }
}

/// What the samplers read: a gradient, inside a margin that they must not touch. It is as wide as
/// positions reach.
struct Image {
  static constexpr int kSize = 12, kMargin = 3, kStride = kSize + 2 * kMargin, kFar = 1 << 16;
  std::vector<uint32_t> pixels = std::vector<uint32_t>(2 * kFar + kStride * kStride, 0xFFFFFFFFu);

  Image() {
    for (int y = 0; y < kSize; ++y)
      for (int x = 0; x < kSize; ++x) At(x, y) = static_cast<uint32_t>(x * 20) << 16 | (y * 20u);
  }
  uint32_t& At(int x, int y) {
    return pixels[static_cast<size_t>(kFar + (y + kMargin) * kStride + x + kMargin)];
  }
  SampleRow Row() { return {&At(0, 0), kStride, 0, 0, kSize - 1, kSize - 1, 0, 0, 0, 0}; }
};

TEST_P(EachLevel, SamplersFollowTheGradientAndStayInside) {
  constexpr int kCount = 37;
  struct {
    double x, y, stepX, stepY;
  } const rows[] = {{-2, 3.5, 0.37, 0},  {14, 3.25, -0.4, 0}, {-3, -2, 0.4, 0.4},
                    {0, 0, 1, 0},        {2, 13, 0.2, 0},     {5, 14, 0.1, -0.45},
                    {-20, 5, 2.5, 0.01}, {30, 30, 0, 0},      {11.5, 0.5, -0.3, 0.3},
                    {4.5, -2, 0, 0.4},   {1, 2.5, 0.5, 0},    {0.5, 2.5, 0.5, 0},
                    {-2, 3, 0.400001, 0}};
  Image image;
  for (const auto& r : rows)
    for (const bool bilinear : {false, true}) {
      // A row at twice the size stays inside the image.
      const int count = r.stepX == 0.5 ? 21 : kCount;
      SampleRow row = image.Row();
      const auto fixed = [](double v) { return static_cast<int32_t>(std::lround(v * 65536)); };
      row.x = fixed(r.x);
      row.y = fixed(r.y);
      row.stepX = fixed(r.stepX);
      row.stepY = fixed(r.stepY);
      if (!bilinear && r.stepY == 0) row.stepFractionX = fixed(r.stepX * 65536 - row.stepX);
      const double stepX = row.stepX + row.stepFractionX / 65536.0;
      std::vector<uint32_t> out(kCount + 1, 0x12345678u);
      (GetParam().kernels->*(bilinear ? &Kernels::sampleBilinear : &Kernels::sampleNearest))(
          row, out.data(), count);
      for (int i = 0; i < count; ++i) {
        const auto expected = [&](double v) {
          const double inside = std::fmin(std::fmax(v, 0), Image::kSize - 1);
          return 20 * (bilinear ? inside : std::fmin(std::fmax(std::floor(v), 0), 11));
        };
        const uint32_t p = out[static_cast<size_t>(i)];
        const double tolerance = bilinear ? 1.1 : 0;
        ASSERT_NEAR(p >> 16 & 255, expected((row.x + i * stepX) / 65536), tolerance)
            << "from " << r.x << ", " << r.y << " pixel " << i;
        ASSERT_NEAR(p & 255, expected(row.y / 65536.0 + i * (row.stepY / 65536.0)), tolerance);
        ASSERT_EQ(p & 0xFF00FF00u, 0u) << "read outside the image";
      }
      EXPECT_EQ(out[static_cast<size_t>(count)], 0x12345678u);
    }
}

TEST_P(EachLevel, SamplersStayInsideHoweverFarTheyStep) {
  std::mt19937 random(6);
  const auto number = [&] { return static_cast<int32_t>(random()); };
  Image image;
  for (int i = 0; i < 3000; ++i) {
    SampleRow row = image.Row();
    row.x = number() % (kFarthestSample << 16);
    row.y = number() % (kFarthestSample << 16);
    row.stepX = number() >> (i % 32);
    row.stepY = i % 3 == 0 ? 0 : number() >> (i % 29);
    // All the way around, from inside the image to inside it.
    if (i == 0) row = {row.pixels, row.pitch, 0, 0, 11, 11, 5 << 16, 5 << 16, 0x01010101, 0};
    std::vector<uint32_t> out(kSampleLimit);
    GetParam().kernels->sampleNearest(row, out.data(), kSampleLimit);
    GetParam().kernels->sampleBilinear(row, out.data(), kSampleLimit);
    for (const uint32_t p : out) ASSERT_EQ(p & 0xFF00FF00u, 0u);
  }
}

}  // namespace
}  // namespace ZIRK::backends
