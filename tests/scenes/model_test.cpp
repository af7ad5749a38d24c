// Backends against the model, pixel by pixel.

#include <cmath>
#include <limits>

#include "helpers/pixels.h"
#include "scenes/backends.h"
#include "scenes/modelcheck.h"

namespace ZIRK::scenes {
namespace {

using Factor = VuBlendingFactor;
using Format = VuPixelFormat;

constexpr Format kFormats[] = {Format::ARGB8888, Format::XRGB8888, Format::RGB565,
                               Format::ARGB4444, Format::ARGB1555, Format::A8};

class Model : public OnEachBackend {
 protected:
  std::unique_ptr<VuBitmap> Noise(int width, int height, Format format, unsigned seed,
                                  VuScaleMode mode = VuScaleMode::Nearest) {
    std::unique_ptr<VuBitmap> bitmap = New(width, height, format);
    FillWithNoise(*bitmap, seed);
    bitmap->SetScaleMode(mode);
    return bitmap;
  }
};

INSTANTIATE_TEST_SUITE_P(Backends, Model, testing::ValuesIn(kBackends),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(Model, EveryPairOfBlendingFactors) {
  const auto src = Noise(9, 9, Format::ARGB8888, 7);
  const auto mask = Noise(9, 9, Format::A8, 8);
  for (const Format format : {Format::ARGB8888, Format::XRGB8888, Format::RGB565, Format::A8}) {
    ModelCheck check(*graphics_, 20, 20, format, GetParam());
    check.SetBlendColor(VuColor{0xA0C04020});
    for (int s = 0; s <= 14 && !HasFailure(); ++s)
      for (int d = 0; d <= 14 && !HasFailure(); ++d) {
        SCOPED_TRACE("factors " + std::to_string(s) + ", " + std::to_string(d) + " format " +
                     std::to_string(int(format)));
        FillWithNoise(check.Target(), static_cast<unsigned>(s * 15 + d));
        check.SetFactors({Factor(s), Factor(d), Factor(s), Factor(d)});
        check.DrawRect({1, 1, 18, 9}, VuColor{0x80FF4010});
        check.DrawObject({1, 10, 9, 9}, *src, {0, 0, 9, 9});
        check.DrawObject({11, 10, 9, 9}, *src, {0, 0, 9, 9}, {}, VuColor{0xC0FFFF00}, {mask.get()});
        // Others for alpha.
        check.SetFactors({Factor(s), Factor(d), Factor(d), Factor(14 - s)});
        check.DrawObject({6, 5, 9, 9}, *src, {0, 0, 9, 9});
        if (format != Format::XRGB8888) continue;
        for (const uint32_t pixel : helpers::PixelsOf(check.Target())) ASSERT_EQ(pixel >> 24, 255u);
      }
  }
}

TEST_P(Model, EveryFormatOntoEveryFormat) {
  for (const Format to : kFormats)
    for (const Format from : kFormats) {
      if (HasFailure()) return;
      SCOPED_TRACE("from " + std::to_string(int(from)) + " to " + std::to_string(int(to)));
      const auto nearest = Noise(13, 11, from, 3);
      const auto bilinear = Noise(13, 11, from, 4, VuScaleMode::Bilinear);
      ModelCheck check(*graphics_, 32, 28, to, GetParam());
      check.DrawObject({2, 2, 13, 11}, *nearest, {0, 0, 13, 11});
      check.DrawObject({2, 2, 13, 11}, *nearest, {0, 0, 13, 11}, {}, VuColor{0xB0FF8040});
      check.DrawObject({1, 1, 30, 17}, *nearest, {0, 0, 13, 11});
      check.DrawObject({3, 2, 26, 22}, *nearest, {0, 0, 13, 11});
      check.DrawObject({-5, 9, 26, 44}, *nearest, {0, 0, 13, 11});
      check.DrawObject({1, 1, 30, 26}, *bilinear, {0, 0, 13, 11});
      check.DrawObject({-7, -6, 13, 11}, *bilinear, {0, 0, 13, 11}, VuTransform(16, 14, 1, 1, 33));
      check.DrawRect({3, 3, 20, 20}, VuColor{0x70102030}, VuTransform(4, -2, 1, 1, -10));
      check.Target().SetBlendEnabled(false);
      check.DrawObject({3, 4, 13, 11}, *nearest, {0, 0, 13, 11});
      check.DrawRect({20, 3, 9, 9}, VuColor{0x50FFFFFF});
      // Wider than what is converted at a time.
      const auto row = Noise(290, 1, from, 5);
      ModelCheck wide(*graphics_, 300, 1, to, GetParam());
      wide.DrawObject({4, 0, 290, 1}, *row, {0, 0, 290, 1});
      wide.DrawObject({4, 0, 290, 1}, *row, {0, 0, 290, 1}, {}, VuColor{0xB0FF8040}, {row.get()});
      wide.CopyPixels({5, 0}, *row, {0, 0, 290, 1});
    }
}

struct Transform {
  const char* name;
  VuTransform transform;
};

constexpr Transform kTransforms[] = {
    {"identity", {0, 0, 1, 1, 0}},
    {"moved by part of a pixel", {3.4f, -2.7f, 1, 1, 0}},
    {"enlarged", {-5, -5, 1.7f, 2.3f, 0}},
    {"shrunk", {9, 9, 0.41f, 0.73f, 0}},
    {"mirrored across", {40, 0, -1, 1, 0}},
    {"mirrored both ways, enlarged", {50, 50, -1.25f, -1.5f, 0}},
    {"a quarter turn, to between pixels", {0.5f, 40.5f, 1, 1, 90}},
    {"half a turn, to between pixels", {40.5f, 40.5f, 1, 1, 180}},
    {"a whole turn, shrunk by half", {7.5f, 3, 0.5f, 0.5f, 360}},
    {"three quarters, moved by part of a pixel", {40.3f, 0.6f, 1, 1, 270}},
    {"slanted", {2, 22, 1, 1, 33}},
    {"slanted, enlarged unevenly", {-12, 20, 2, 1.3f, 20}},
    {"slanted, mirrored", {44, 8, -1, 1, 12}},
    {"nearly flat", {8, 8, 1, 0.02f, 3}},
};

TEST_P(Model, Transforms) {
  for (const VuScaleMode mode : {VuScaleMode::Nearest, VuScaleMode::Bilinear})
    for (const Transform& t : kTransforms) {
      if (HasFailure()) return;
      SCOPED_TRACE(std::string(t.name) + ", scale mode " + std::to_string(int(mode)));
      const auto src = Noise(24, 18, Format::ARGB8888, 3, mode);
      ModelCheck check(*graphics_, 48, 48, Format::ARGB8888, GetParam());
      check.DrawRect({10, 10, 17, 12}, VuColor{0x9080FF20}, t.transform);
      check.DrawObject({6, 8, 24, 18}, *src, {0, 0, 24, 18}, t.transform);
      check.DrawObject({6, 8, 24, 18}, *src, {3, 4, 9, 7}, t.transform, VuColor{0xC0FF80FF});
      // Some of its pixels lie between two texels.
      check.DrawObject({6, 8, 14, 7}, *src, {0, 0, 24, 12}, t.transform);
      check.DrawSubPixel(VuTRect2D<float>(6.3f, 8.6f, 21.5f, 15.8f), *src,
                         VuTRect2D<float>(2.25f, 3.5f, 17.5f, 11.25f), t.transform);
    }
}

TEST_P(Model, UnknownScaleModesCountAsNearest) {
  std::unique_ptr<VuBitmap> target(graphics_->CreateBitmap(48, 48, Format::ARGB8888));
  const auto draw = [&](VuScaleMode mode, const VuTransform& t) {
    const auto src = Noise(24, 18, Format::ARGB8888, 3, mode);
    target->Clear();
    // Some of their pixels lie between two texels.
    target->DrawObject({0, 0, 12, 9}, *src, {0, 0, 24, 18}, t);
    target->DrawObject({12, 8, 14, 7}, *src, {0, 0, 24, 12}, t);
    target->DrawRect({0, 20, 12, 9}, white, t, *src, nullptr);
    return model::Picture(*target).pixels;
  };
  for (const Transform& t : kTransforms)
    EXPECT_EQ(draw(VuScaleMode{7}, t.transform), draw(VuScaleMode::Nearest, t.transform)) << t.name;
}

TEST_P(Model, Masks) {
  VuTVector2D<float> part[4] = {{3, 2}, {11, 2}, {11, 9}, {3, 9}};
  VuTVector2D<float> turned[4] = {{14, 1}, {14, 10}, {2, 10}, {2, 1}};
  VuTVector2D<float> twisted[4] = {{0, 0}, {16, 3}, {9, 12}, {-4, 7}};
  VuTVector2D<float> far[4] = {{3, 2}, {1e5f, 2}, {1e5f, 9}, {3, 9}};
  for (const Format format : kFormats)
    for (const VuScaleMode mode : {VuScaleMode::Nearest, VuScaleMode::Bilinear})
      for (VuTVector2D<float>* coords :
           {static_cast<VuTVector2D<float>*>(nullptr), part, turned, twisted, far}) {
        if (HasFailure()) return;
        const auto mask = Noise(16, 12, format, 5, mode);
        const auto src = Noise(16, 12, Format::ARGB8888, 6);
        ModelCheck check(*graphics_, 40, 36, Format::ARGB8888, GetParam());
        const MaskArgument argument{mask.get(), coords};
        check.DrawRect({2, 2, 16, 12}, VuColor{0xE0FF2040}, {}, argument);
        check.DrawRect({2, 2, 35, 30}, VuColor{0xFF40FF40}, {}, argument);
        check.DrawObject({20, 20, 16, 12}, *src, {0, 0, 16, 12}, {}, white, argument);
        check.DrawObject({-8, -6, 16, 12}, *src, {0, 0, 16, 12},
                         VuTransform(18, 16, 1.5f, 1.5f, 40), white, argument);
        check.DrawObject({4, 4, 16, 12}, *src, {-4, -3, 16, 12}, {}, white, argument);
      }
}

TEST_P(Model, OntoItself) {
  ModelCheck check(*graphics_, 40, 36, Format::ARGB8888, GetParam());
  check.Target().SetScaleMode(VuScaleMode::Bilinear);
  VuBitmap& self = check.Target();
  check.DrawObject({6, 4, 20, 20}, self, {2, 3, 20, 20});
  check.DrawObject({0, 0, 20, 20}, self, {-6, 20, 30, 30});
  check.DrawObject({3, 3, 30, 25}, self, {8, 9, 12, 10}, VuTransform(4, 6, 1, 1, -15));
  check.DrawRect({5, 5, 30, 20}, VuColor{0xE0FF2040}, {}, {&self});
  check.DrawObject({2, 1, 36, 30}, self, {5, 6, 30, 20}, {}, white, {&self});
  check.DrawObject({0, 0, 20, 20}, self, {50, 50, 10, 10});
}

TEST_P(Model, WhatHasNoExtentOrNoPlaceDrawsNothing) {
  const float infinity = std::numeric_limits<float>::infinity();
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const auto src = Noise(8, 8, Format::ARGB8888, 2);
  ModelCheck check(*graphics_, 16, 16, Format::ARGB8888, GetParam());
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
  target.DrawObject(VuTRect2D<float>(nan, 0, 5, 5), *src, VuTRect2D<float>(0, 0, 5, 5),
                    VuTMatrix2D<float>(), white);
  target.DrawObject(VuTRect2D<float>(0, 0, 5, 5), *src, VuTRect2D<float>(0, nan, 5, 5),
                    VuTMatrix2D<float>(), white);
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

TEST_P(Model, FilteringNeverReadsTheNeighbours) {
  // Sprites of one colour side by side: whatever the scale and offset, no other colour appears.
  std::unique_ptr<VuBitmap> sheet(graphics_->CreateBitmap(24, 8, Format::ARGB8888));
  sheet->Clear(VuColor{0xFFFF0000});
  sheet->DrawRect({8, 0, 8, 8}, VuColor{0xFF00FF00});
  sheet->SetScaleMode(VuScaleMode::Bilinear);
  for (const float scale : {0.3f, 0.5f, 1.0f, 1.3f, 2.0f, 5.7f})
    for (const float offset : {0.0f, 0.25f, 0.5f, 0.75f}) {
      std::unique_ptr<VuBitmap> target(graphics_->CreateBitmap(64, 64, Format::ARGB8888));
      target->DrawObject({0, 0, 8, 8}, *sheet, {8, 0, 8, 8},
                         VuTransform(offset, offset, scale, scale, 0));
      target->DrawObject(VuTRect2D<float>(0, 0, 8, 8), *sheet, VuTRect2D<float>(8, 0, 8, 8),
                         VuTransform(20 + offset, 12, scale, scale, 20), white);
      for (const model::Pixel& p : model::Picture(*target).pixels)
        ASSERT_TRUE(p[0] == 0 && p[2] == 0) << "scale " << scale << " offset " << offset;
    }
}

TEST_P(Model, TilesMeetWithoutAGapOrAnOverlap) {
  std::unique_ptr<VuBitmap> target(graphics_->CreateBitmap(200, 40, Format::ARGB8888));
  for (const float scale : {0.37f, 0.8f, 1.0f, 1.43f, 1.9f})
    for (const float offset : {0.0f, 0.3f, 0.5f}) {
      target->Clear();
      for (int i = 0; i < 10; ++i)
        target->DrawRect({i * 10, 0, 10, 20}, VuColor{0x80FFFFFF},
                         VuTransform(offset, 0, scale, 1, 0));
      const model::Picture picture(*target);
      const int end = static_cast<int>(std::floor(100 * scale + offset));
      for (int x = static_cast<int>(std::floor(offset + 0.5f)); x < end; ++x)
        ASSERT_NEAR(picture.At(x, 5)[3] * 255, 128, 0.1) << "at " << x << " scale " << scale;
    }
}

// Backends may collect operations, draw them in another order and move pixels about meanwhile.
TEST_P(Model, AFrameLooksTheSameHoweverItIsSent) {
  const auto draw = [this](bool oneByOne) {
    Random random(5);
    const auto target = NewTarget(200, 160);
    std::vector<std::unique_ptr<VuBitmap>> sources;
    for (int i = 0; i < 12; ++i)
      sources.push_back(Noise(5 + 2 * i, 20, kFormats[i / 2], random(), VuScaleMode(i % 2)));
    for (int i = 0; i < 1500; ++i) {
      const auto x = static_cast<int>(random() % 190), y = static_cast<int>(random() % 150);
      std::unique_ptr<VuBitmap>&src = sources[random() % 12], &other = sources[random() % 12];
      const VuColor color{random() | 0x40000000u};
      const int width = 20 + i % 2 * 4, what = static_cast<int>(random() % 64);
      const VuTransform turn(float(x), float(y), 1, 1, float(i % 6 * 15));
      if (what < 20) target->DrawRect({x, y, 9, 7}, color);
      if (what / 20 == 1) target->DrawObject({x, y, width, 20}, *src, {0, 0, width, 20});
      if (what / 10 == 4) target->DrawObject({0, 0, 20, 20}, *src, {0, 0, 20, 20}, turn);
      if (what / 8 == 6)
        target->DrawObject(VuRect{x, y, 24, 20}, *src, {0, 0, 20, 20}, VuTransform(), color, *other,
                           nullptr);
      if (what == 58) src->DrawRect({x % 9, 2, 3, 4}, color);
      if (what == 59 && src != other) src->CopyPixels({1, 2}, *other, {0, 0, 9, 9});
      if (what == 60) src = Noise(x % 30 + 1, y % 30 + 1, kFormats[i % 6], color.argb);
      if (what == 61) target->SetBlendEnabled(i % 2);
      if (what > 61) target->DrawLine({x, y}, {x + 9, y - 5}, color);
      if (oneByOne) target->Finish();
    }
    return helpers::PixelsOf(*target);
  };
  const helpers::Pixels expected = draw(true), drawn = draw(false);
  for (size_t i = 0; i < drawn.size() * 4; ++i) {
    const auto channel = [i](const helpers::Pixels& p) {
      return static_cast<int>(p[i / 4] >> i % 4 * 8 & 255);
    };
    // What is rounded in another way adds up.
    ASSERT_NEAR(channel(drawn), channel(expected), 3) << i / 4 % 200 << ", " << i / 800;
  }
}

TEST_P(Model, RandomOperations) {
  constexpr VuRect kClips[] = {{5, 6, 9, 8},
                               {-10, -10, 20, 20},
                               {25, 25, 100, 100},
                               {0, 0, 0, 10},
                               {10, 10, -5, -5},
                               {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX},
                               {1, 1, INT32_MAX, INT32_MAX},
                               {INT32_MAX, INT32_MAX, 5, 5}};
  Random random(2024);
  const auto number = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  const auto real = [&](float low, float high) {
    return low + static_cast<float>(random() % 1000) / 1000 * (high - low);
  };
  for (int round = 0; round < 300 && !HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    ModelCheck check(*graphics_, number(10, 60), number(10, 60), kFormats[random() % 6],
                     GetParam());
    const auto src = Noise(number(1, 30), number(1, 30), kFormats[random() % 6], random(),
                           VuScaleMode(random() % 2));
    const auto mask = Noise(number(1, 30), number(1, 30), kFormats[random() % 6], random(),
                            VuScaleMode(random() % 2));
    check.Target().SetBlendEnabled(random() % 4 != 0);
    if (random() % 4 == 0) check.Target().SetClippingRect(kClips[random() % std::size(kClips)]);
    if (random() % 3 == 0)
      check.SetFactors({Factor(random() % 15), Factor(random() % 15), Factor(random() % 15),
                        Factor(random() % 15)});
    check.SetBlendColor(VuColor{random()});

    const VuTransform t(real(-5, 30), real(-5, 30), real(-2, 2), real(-2, 2),
                        random() % 2 ? 0 : real(-180, 180));
    const MaskArgument masked{random() % 2 ? mask.get() : nullptr};
    const VuColor color{random()};
    check.DrawRect({number(-9, 40), number(-9, 40), number(1, 40), number(1, 40)}, color, t,
                   masked);
    check.DrawObject({number(-9, 40), number(-9, 40), number(1, 40), number(1, 40)}, *src,
                     {number(-5, 20), number(-5, 20), number(1, 40), number(1, 40)}, t, color,
                     masked);
    // As most is drawn, in its own size.
    const int width = number(1, 40), height = number(1, 40);
    const VuRect dst{number(-9, 40), number(-9, 40), width, height};
    check.DrawRect(dst, color);
    check.DrawObject(dst, *src, {number(-5, 20), number(-5, 20), width, height},
                     VuTransform(0, 0, 1, 1, 0), color);
    check.DrawObject(dst, *src, {number(-5, 20), number(-5, 20), width, height},
                     VuTransform(3, 4, 1, 1, 0));
  }
}

}  // namespace
}  // namespace ZIRK::scenes
