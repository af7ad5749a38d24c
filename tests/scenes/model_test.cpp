// Backends against the model, pixel by pixel.

#include <zirk/kit/pictures.h>

#include <functional>
#include <limits>
#include <utility>

#include "helpers/pixels.h"
#include "scenes/backends.h"
#include "scenes/modelcheck.h"

namespace ZIRK::scenes {
namespace {

using Factor = VuBlendingFactor;
using Format = VuPixelFormat;

class Model : public OnEachBackend {
 protected:
  std::unique_ptr<VuBitmap> Noise(int width, int height, Format format, unsigned seed,
                                  VuScaleMode mode = VuScaleMode::Nearest) {
    // Some are screens, where those are drawn in another way.
    std::unique_ptr<VuBitmap> bitmap =
        seed % 8 ? New(width, height, format) : NewTarget(width, height, format);
    FillWithNoise(*bitmap, bitmap->GetBounds(), seed);
    bitmap->SetScaleMode(mode);
    return bitmap;
  }

  /// What a frame of random operations leaves on its target. If `looking`, every operation is
  /// checked against the model; otherwise nothing is read before the end.
  model::Picture Frame(unsigned number, bool looking);
};

INSTANTIATE_TEST_SUITE_P(Backends, Model, testing::ValuesIn(kBackends),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(Model, EveryPairOfBlendingFactors) {
  const auto src = Noise(18, 18, Format::ARGB8888, 7);
  const auto mask = Noise(9, 9, Format::A8, 8);
  for (const Format format : {Format::ARGB8888, Format::XRGB8888, Format::RGB565, Format::A8}) {
    ModelCheck check(NewTarget(20, 20, format), GetParam());
    check.Target().SetBlendColor(VuColor{0xA0C04020});
    for (int s = 0; s <= 14 && !HasFailure(); ++s)
      for (int d = 0; d <= 14 && !HasFailure(); ++d) {
        SCOPED_TRACE("factors " + std::to_string(s) + ", " + std::to_string(d) + " format " +
                     std::to_string(int(format)));
        FillWithNoise(check.Target(), {0, 0, 20, 20}, static_cast<unsigned>(s * 15 + d));
        check.SetFactors({Factor(s), Factor(d), Factor(s), Factor(d)});
        check.DrawRect({1, 1, 18, 9}, VuColor{0x80FF4010});
        check.DrawObject({1, 10, 9, 9}, *src, {0, 0, 9, 9});
        check.DrawObject({1, 1, 18, 18}, *src, {0, 0, 18, 18}, {}, VuColor{0xC040FFFF});
        check.DrawObject({8, 2, 9, 9}, *mask, {0, 0, 9, 9}, {}, VuColor{0xFFFF8040});
        check.DrawObject({11, 10, 9, 9}, *src, {0, 0, 9, 9}, {}, VuColor{0xC0FFFF00}, {mask.get()});
        // Others for alpha.
        check.SetFactors({Factor(s), Factor(d), Factor(d), Factor(14 - s)});
        check.DrawObject({6, 5, 9, 9}, *src, {0, 0, 9, 9});
        if (format != Format::XRGB8888) continue;
        for (const uint32_t pixel : helpers::PixelsOf(check.Target())) ASSERT_EQ(pixel >> 24, 255u);
      }
  }
}

constexpr VuTransform kTransforms[] = {
    {3.4f, -2.7f, 1, 1, 0},      // moved by part of a pixel
    {-5, -5, 1.7f, 2.3f, 0},     // enlarged
    {9, 9, 0.41f, 0.73f, 0},     // shrunk
    {40, 0, -1, 1, 0},           // mirrored across
    {50, 50, -1.25f, -1.5f, 0},  // mirrored both ways, enlarged
    {0.5f, 40.5f, 1, 1, 90},     // a quarter turn, to between pixels
    {40.5f, 40.5f, 1, 1, 180},   // half a turn, to between pixels
    {7.5f, 3, 0.5f, 0.5f, 360},  // a whole turn, shrunk by half
    {40.3f, 0.6f, 1, 1, 270},    // three quarters, moved by part of a pixel
    {2, 22, 1, 1, 33},           // slanted
    {0, 4, 1, 1, 1},             // hardly slanted
    {-12, 20, 2, 1.3f, 20},      // slanted, enlarged unevenly
    {44, 8, -1, 1, 12},          // slanted, mirrored
    {8, 8, 1, 0.02f, 3},         // nearly flat
};

TEST_P(Model, PowersOfTwoOverTheEdges) {
  // Devices may stretch by such factors, and cut the picture in ways of their own.
  for (int i = 0; i < 72 && !HasFailure(); ++i) {
    const auto src = Noise(13, 11, Format(i / 12), 3, VuScaleMode(i % 2));
    ModelCheck check(NewTarget(32, 28, Format(i / 2 % 6)), GetParam());
    check.DrawObject({1, 1, 30, 17}, *src, {0, 0, 13, 11});
    check.DrawObject({3, 2, 26, 22}, *src, {0, 0, 13, 11});
    check.DrawObject({-5, 9, 26, 44}, *src, {0, 0, 13, 11});
    // Nearly as large.
    check.DrawObject({4, 3, 12, 11}, *src, {0, 0, 13, 11});
    check.DrawObject({5, 4, 13, 10}, *src, {0, 0, 13, 11});
  }
}

TEST_P(Model, WhatHasNoExtentOrNoPlaceDrawsNothing) {
  const float infinity = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const auto src = Noise(8, 8, Format::ARGB8888, 2);
  ModelCheck check(NewTarget(16, 16), GetParam());
  VuBitmap& target = check.Target();
  const model::Picture before(target);
  for (const VuTransform& t :
       {VuTransform(0, 0, 0, 1, 0), VuTransform(0, 0, 1, 0, 30), VuTransform(0, 0, 0, 0, 0),
        VuTransform(nan, 0, 1, 1, 0), VuTransform(0, infinity, 1, 1, 0),
        VuTransform(0, 0, infinity, 1, 0), VuTransform(0, 0, 1, 1, nan)}) {
    target.DrawRect({2, 2, 8, 8}, white, t);
    target.DrawObject({2, 2, 8, 8}, *src, {0, 0, 8, 8}, t);
    target.DrawPoint({5, 5}, 4, white, t);
    target.DrawLine({1, 1}, {9, 5}, white, t);
  }
  for (const VuRect& r : {VuRect{2, 2, 0, 5}, VuRect{2, 2, 5, 0}, VuRect{9, 9, -4, -4},
                          VuRect{100, 100, 5, 5}, VuRect{INT32_MIN, 0, 5, 5}}) {
    target.DrawRect(r, white);
    target.DrawObject(r, *src);
    target.DrawObject({2, 2, 5, 5}, *src, r);
  }
  for (const float size : {0.0f, -3.0f, nan, infinity}) target.DrawPoint({5, 5}, size, white);
  VuTVector2D<float> nowhere[4] = {{nan, 0}, {5, infinity}, {0, 0}, {5, 5}};
  target.DrawPoint({5, 5}, 4, white, VuTransform(), *src, nowhere[0]);
  target.DrawLine({1, 1}, {9, 5}, white, VuTransform(), *src, nowhere);
  target.DrawRect({2, 2, 8, 8}, white, VuTransform(), *src, nowhere);
  target.DrawObject(VuTRect2D<float>(nan, 0, 5, 5), *src, VuTRect2D<float>(0, 0, 5, 5),
                    VuTMatrix2D<float>(), white);
  target.DrawObject(VuTRect2D<float>(0, 0, 5, 5), *src, VuTRect2D<float>(0, nan, 5, 5),
                    VuTMatrix2D<float>(), white);
  EXPECT_TRUE(target.CopyPixels({INT32_MAX, 0}, *src, {INT32_MIN, 0, 100, 100}));
  EXPECT_EQ(before.pixels, model::Picture(target).pixels);
}

TEST_P(Model, SanitizedAbsurdGeometry) {
  const auto src = Noise(300, 40, Format::ARGB8888, 2, VuScaleMode::Bilinear);
  const auto mask = Noise(31, 300, Format::XRGB8888, 3, VuScaleMode::Bilinear);
  std::unique_ptr<VuBitmap> target(graphics_->CreateBitmap(300, 30, Format::ARGB8888));
  target->DrawLine(VuPoint{5, 5}, VuPoint{5, 5}, white, VuTransform(), *mask, nullptr);
  target->DrawLine(VuPoint{9, 5}, VuPoint{12, 5}, white, VuTransform(0, 0, 0.1f, 0.1f, 0), *mask,
                   nullptr);
  const float infinity = std::numeric_limits<float>::infinity();
  target->DrawObject(VuTRect2D<float>(0, 0, 9, 9), *src, VuTRect2D<float>(0, 0, infinity, infinity),
                     VuTMatrix2D<float>(), white);
  const float sizes[] = {1e-6f, 0.003f, 1, 70.5f, 32767, 1e9f};
  for (const float size : sizes)
    for (const float other : sizes)
      for (const float turn : {0.0f, 0.3f, 45.0f, 180.0f}) {
        const VuTransform t(150, 15, size / 100, other / 100, turn);
        VuTVector2D<float> coords[4] = {{-size, other}, {size, other}, {other, size}, {-other, 0}};
        target->DrawObject(VuRect{-150, -20, 300, 40}, *src, t);
        target->DrawObject(VuTRect2D<float>(-size, -other, 2 * size, other), *src,
                           VuTRect2D<float>(-1, 1, size, other), t, white, *mask, coords);
        target->DrawRect(VuRect{0, 0, 300, 30}, white, VuTransform(), *mask, coords);
        target->DrawLine(VuPoint{INT32_MIN, 5}, VuPoint{INT32_MAX, 9}, white, t, *mask, coords);
        target->DrawPoint(VuPoint{INT32_MAX, INT32_MIN}, size, white, t, *mask, coords[0]);
      }
}

constexpr VuRect kClips[] = {{5, 6, 9, 8},
                             {0, 0, 300, 60},
                             {-10, -10, 20, 20},
                             {25, 25, 100, 100},
                             {0, 0, 0, 10},
                             {10, 10, -5, -5},
                             {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX},
                             {1, 1, INT32_MAX, INT32_MAX},
                             {INT32_MAX, INT32_MAX, 5, 5}};

/// Corners of masks: a part, turned, twisted, and far away.
VuTVector2D<float> maskCorners[][4] = {{{3, 2}, {11, 2}, {11, 9}, {3, 9}},
                                       {{14, 1}, {14, 10}, {2, 10}, {2, 1}},
                                       {{0, 0}, {16, 3}, {9, 12}, {-4, 7}},
                                       {{3, 2}, {1e5f, 2}, {1e5f, 9}, {3, 9}}};

model::Picture Model::Frame(unsigned number, bool looking) {
  Random random(number);
  // Now and then wider than what is converted at a time.
  const bool wide = random.OneIn(8);
  const auto side = [&](int most) { return random.From(1, most); };
  const auto size = [&] { return wide ? 290 + side(20) : side(30); };
  const Format format = Format(number % 6);
  const int width = size() + 20, height = wide ? 3 : 9 + side(40);
  // Some targets are screens of two buffers.
  const bool screen = format == Format::ARGB8888 && number / 6 % 4 == 0;
  ModelCheck check(screen ? std::unique_ptr<VuBitmap>(
                                graphics_->CreateScreen(width, height, true, 0, false, format))
                          : NewTarget(width, height, format),
                   GetParam(), looking);
  VuBitmap& target = check.Target();
  // First every triple of formats, then what can be copied as it is.
  const Format from = number < 216 ? Format(number / 6 % 6) : format;
  const auto source = Noise(size(), side(30), from, random());
  const auto mask = Noise(size(), side(30), Format(number / 36 % 6), random());
  VuBitmap* const bitmaps[] = {source.get(), source.get(), mask.get(), mask.get(), &target};

  for (int i = 0; i < 16 && !HasFailure(); ++i) {
    SCOPED_TRACE("operation " + std::to_string(i));
    // Modes that are unknown count as Nearest.
    constexpr VuScaleMode kModes[] = {VuScaleMode::Nearest, VuScaleMode::Bilinear, VuScaleMode{7}};
    if (random.OneIn(4)) random.Of(bitmaps)->SetScaleMode(random.Of(kModes));
    if (random.OneIn(6)) target.SetClippingRect(random.Of(kClips));
    if (random.OneIn(6))
      target.SetClippingRect({random.From(0, 15), random.From(0, 15), size(), side(20)});
    if (random.OneIn(6)) target.SetBlendEnabled(!target.GetBlendEnabled());
    if (random.OneIn(6)) target.SetBlendColor(VuColor{random()});
    const auto factor = [&] { return Factor(random() % 15); };
    const model::Factors usual = model::Operation().factors;
    const model::Factors factors[] = {usual, usual, {factor(), factor(), factor(), factor()}};
    if (random.OneIn(4)) check.SetFactors(random.Of(factors));

    VuTransform t;
    if (random.OneIn(3)) t = random.Of(kTransforms);
    if (random.OneIn(4))
      t = {random.Real(-5, 30), random.Real(-5, 30), random.Real(-2, 2), random.Real(-2, 2),
           random.OneIn(2) ? 0 : random.Real(-180, 180)};
    const VuColor color{random.OneIn(3) ? white.argb : random()};
    VuBitmap& read = *random.Of(bitmaps);
    MaskArgument through;
    if (random.OneIn(2)) through.bitmap = random.OneIn(8) ? &target : mask.get();
    if (random.OneIn(2)) through.coords = random.Of(maskCorners);
    const VuPoint at{random.From(-9, 40), random.From(-9, 40)}, end{size(), random.From(-9, 40)};
    const VuRect all = read.GetBounds();
    const VuRect parts[] = {
        all,
        {all.width / 3, all.height / 4, (all.width + 1) / 2, all.height / 2 + 1},
        {random.From(-5, 20), random.From(-5, 20), size(), side(30)}};
    const VuRect part = random.Of(parts);
    const VuRect whole{at.x, at.y, part.width, part.height};
    const VuRect scales[] = {{at.x, at.y, size(), side(40)},
                             {at.x, at.y, 2 * part.width, 2 * part.height},
                             {at.x, at.y, 2 * part.width, 4 * part.height}};
    const VuRect scaled = random.Of(scales);
    switch (random() % 18) {
      case 0:
        check.DrawRect(scaled, color, t, through);
        break;
      case 1:
        check.DrawRect(scaled, color);
        break;
      case 2:
        check.DrawObject(scaled, read, part, t, color, through);
        break;
      case 3:
      case 12:
      case 13:
      case 14:
        check.DrawObject(random.OneIn(2) ? whole : scaled, read, part, {}, color);
        break;
      case 4:
        check.DrawObject(whole, read, part, VuTransform(3, -4, 1, 1, 0), white, through);
        break;
      case 5:
        check.DrawSubPixel({random.Real(-9, 30), random.Real(-9, 30), random.Real(1, 40), 9.8f},
                           read, {random.Real(-2, 9), 3.5f, 17.5f, 11.25f}, t, color, through);
        break;
      case 6:
        check.DrawLine(at, end, color, t, through);
        break;
      case 7:
        if (!through.coords) through.bitmap = nullptr;
        check.DrawPoint(at, random.OneIn(2) ? float(side(6)) : random.Real(0.1f, 20), color, t,
                        through);
        break;
      case 8:
      case 15:
        check.CopyPixels(at, read, part);
        break;
      case 9:
        target.Clear(color);
        break;
      case 10:
        if (screen) target.SwapBuffers();
        source->DrawRect({2, 3, 40, 5}, color);
        break;
      default: {
        VuBitmap& written = *random.Of(bitmaps);
        const VuRect bounds = written.GetBounds();
        const int left = bounds.width / 2, top = bounds.height / 3;
        FillWithNoise(written, {left, top, side(bounds.width - left), bounds.height - top},
                      random(), random.OneIn(3));
      }
    }
  }
  return model::Picture(target);
}

TEST_P(Model, RandomFrames) {
  // Renderers of OpenGL may blend in floating point, which rounds unread pixels less often.
  const int type = graphics_->GetGraphicsType();
  const bool rounds =
      type != TypeCode(BackendType::OpenGLES2) && type != TypeCode(BackendType::Hybrid);
  for (unsigned number = 0; number < 432 && !HasFailure(); ++number) {
    SCOPED_TRACE("frame " + std::to_string(number));
    const model::Picture looked = Frame(number, true), unread = Frame(number, false);
    if (!rounds && model::LayoutOf(looked.format).bits[0] < 8) continue;
    for (size_t i = 0; i < looked.pixels.size() && !HasFailure(); ++i)
      for (size_t c = 0; c < 4; ++c)
        ASSERT_NEAR(looked.pixels[i][c] * 255, unread.pixels[i][c] * 255, rounds ? 0 : 5) << i;
  }
}

/// `draw` leaves the same picture, whether each operation ends before the next one or not. Backends
/// may collect them, draw them in another order and move pixels meanwhile.
void ExpectSameHoweverSent(const std::function<std::unique_ptr<VuBitmap>(bool oneByOne)>& draw) {
  const auto calm = draw(true), collected = draw(false);
  const auto difference = kit::Compare(*calm, *collected);
  ASSERT_TRUE(difference);
  const VuPoint at = difference->worstAt;
  EXPECT_LE(difference->worst, 3) << "roundings that add up, at " << at.x << ", " << at.y;
}

TEST_P(Model, AFrameLooksTheSameHoweverItIsSent) {
  VuTVector2D<float> beyond[4] = {{-9, -9}, {40, -9}, {40, 30}, {-9, 30}};
  ExpectSameHoweverSent([&](bool oneByOne) {
    Random random(5);
    auto target = NewTarget(400, 300);
    const auto make = [&](size_t i) {
      return Noise(i < 6 ? 17 : 30, 20, Format(i / 6), random(), VuScaleMode(i % 2));
    };
    std::unique_ptr<VuBitmap> sources[12], spare[2];
    for (size_t i = 0; i < 12; ++i) sources[i] = make(i);
    uint32_t what = 0;
    size_t at = 0;
    VuPoint corner{0, 0};
    for (int i = 0; i < 3000; ++i) {
      // Operations of one kind come in runs, and so do places near each other.
      if (random.OneIn(4)) {
        what = random() % 256, at = random() % 12;
        if (random.OneIn(2)) corner = {random.From(0, 320), random.From(0, 230)};
      }
      const int x = corner.x + random.From(0, 60), y = corner.y + random.From(0, 60);
      const int width = 20 + i % 2 * 4;
      std::unique_ptr<VuBitmap>&src = sources[at], &other = sources[(at + 1) % 12];
      const VuColor color{random() | 0x40000000u};
      const VuTransform turn(float(x), float(y), 1, 1, float(i % 6 * 15));
      const VuRect part = i % 3 ? VuRect{0, 0, width, 20} : src->GetBounds();
      if (what < 80) target->DrawRect({x, y, 9, 7}, color);
      if (what / 80 == 1 || what / 16 == 14) target->DrawObject({x, y, width, 20}, *src, part);
      if (what / 32 == 5) target->DrawObject({0, 0, 20, 20}, *src, {0, 0, 20, 20}, turn);
      if (what / 16 == 12)
        target->DrawObject(VuRect{x, y, 24, 20}, *src, {0, 0, 20, 20}, VuTransform(), color, *other,
                           i % 2 ? beyond : nullptr);
      if (what / 4 == 48) FillWithNoise(*other, {0, 0, 9, 9}, unsigned(i));
      if (what / 16 == 13) target->DrawLine({x, y}, {x + 9, y - 5}, color);
      if (what / 2 == 120) src->SetPixels({0, 0, 1, 1}, &color, 4);
      if (what / 2 == 121) src->CopyPixels({1, 2}, *other, {0, 0, 9, 9});
      // Opaque, since OpenGL may round overlapping colours of a narrow format only once.
      if (what / 4 == 61) src->DrawRect({x % 9, 2, 3, 4}, VuColor{color.argb | 0xFF000000u});
      // A bitmap takes the place of another. Making it here would send what is collected.
      if (what / 4 == 62 && !spare[at / 6]) spare[at / 6] = make(at);
      if (what / 4 == 63 && spare[at / 6]) {
        target->DrawObject({x, y, width, 20}, *src, part);
        src = std::move(spare[at / 6]);
        target->DrawObject({y, x, width, 20}, *src, part);
      }
      if (what == 239) target->SetBlendEnabled(i % 2);
      if (oneByOne) target->Finish();
    }
    return target;
  });
}

// More places than a backend remembers one by one.
TEST_P(Model, AFrameOfSmallThingsLooksTheSameHoweverItIsSent) {
  ExpectSameHoweverSent([&](bool oneByOne) {
    Random random(6);
    auto target = NewTarget(400, 300);
    const std::unique_ptr<VuBitmap> sources[] = {Noise(9, 9, Format::ARGB8888, 1),
                                                 Noise(9, 9, Format::XRGB8888, 2)};
    uint32_t what = 0;
    for (int i = 0; i < 3000; ++i) {
      if (random.OneIn(4)) what = random() % 8;
      const int x = random.From(0, 390), y = random.From(0, 290);
      const VuRect all{0, 0, 9, 9};
      if (what < 6) target->DrawObject({x, y, 9, 9}, *sources[what % 2], all);
      if (what > 5)
        target->DrawObject(all, *sources[what % 2], all,
                           VuTransform(float(x), float(y), 1, 1, float(random.From(1, 359))));
      if (oneByOne) target->Finish();
    }
    return target;
  });
}

}  // namespace
}  // namespace ZIRK::scenes
