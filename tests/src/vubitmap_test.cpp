// What a bitmap hands to its implementation. Operations whose results the backends' pictures
// compare are not repeated here.

#include <gmock/gmock.h>
#include <zirk/backend.h>

#include <cstddef>
#include <limits>

#include "doubles/mocks.h"
#include "helpers/logged.h"
#include "helpers/rows.h"

namespace ZIRK {
namespace {

using doubles::Matrix;
using doubles::RectF;
using doubles::Vector;
using testing::Return;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// A handle is its implementation's pointer.
static_assert(sizeof(VuBitmap) + sizeof(VuGraphics) + sizeof(VuFont) == 3 * sizeof(void*));

class Drawing : public testing::Test {
 protected:
  Drawing() {
    ON_CALL(source, GetBounds).WillByDefault(Return(whole));
    ON_CALL(fontImpl, GetOneLineWidth(text)).WillByDefault([this] { return ++measured, 30; });
    ON_CALL(fontImpl, GetOneLineHeight).WillByDefault(Return(12));
  }

  /// The pixels that `draw` counts; none, and no text is measured, while they are not counted.
  template <typename F>
  uint32_t CountedBy(F draw) {
    surface.overdrawPixels = 7;
    LogOverdraw = false;
    draw();
    EXPECT_EQ(surface.overdrawPixels, 7u);
    EXPECT_EQ(measured, 0);
    LogOverdraw = true;
    draw();
    testing::Mock::VerifyAndClearExpectations(&surface);
    measured = 0;
    return surface.overdrawPixels - 7;
  }

  static constexpr std::nullptr_t nil = nullptr;
  const VuRect whole{1, 2, 100, 100};
  const char* const text = "text";
  int measured = 0;

  const helpers::Tunables restored;
  doubles::Bitmap& surface = *new doubles::Bitmap;
  doubles::Bitmap& source = *new doubles::Bitmap;
  doubles::Font& fontImpl = *new doubles::Font;
  VuBitmap b{&surface};
  const VuBitmap src{&source};
  VuFont font{&fontImpl};

  const VuTransform id{0, 0, 1, 1, 0}, t{5, 5, 2, 3, 0};
  const Matrix m{t};
  const VuPoint p{1, 2}, q{3, 4};
  const VuRect r{5, 6, 10, 20}, part{7, 8, 9, 10}, none{};
  const VuColor c{0x80112233};
  Vector v{0.5f, 1.5f};
};

/// The surface receives `received` for the call, which counts so many pixels.
#define EXPECT_DRAWN(call, pixels, received) \
  EXPECT_CALL(surface, received).Times(2);   \
  EXPECT_EQ(CountedBy([&] { b.call; }), pixels)

TEST_F(Drawing, WithoutATransform) {
  EXPECT_DRAWN(DrawPoint(p, 4, c), 16, DrawPoint(p, 4, c, id, nil, Vector()));
  EXPECT_DRAWN(DrawLine(p, q, c), 0, DrawLine(p, q, c, id, nil, nil));
  EXPECT_DRAWN(DrawRect(r, c), 200, DrawRect(r, c, id, nil, nil));
  EXPECT_DRAWN(DrawObject(r, src), 200, DrawObject(r, &source, whole, id, white, nil, nil));
  EXPECT_DRAWN(DrawObject(r, src, part), 200, DrawObject(r, &source, part, id, white, nil, nil));
  EXPECT_DRAWN(DrawText(font, text, p, c), 360,
               DrawText(&fontImpl, text, p, c, id, nil, nil, none));
}

TEST_F(Drawing, ByATransformOrAMatrix) {
  const auto draw = [&](const auto& x) {
    EXPECT_DRAWN(DrawPoint(p, 4, c, x), 16, DrawPoint(p, 4, c, x, nil, Vector()));
    EXPECT_DRAWN(DrawPoint(p, 4, c, x, b, v), 96, DrawPoint(p, 4, c, x, &surface, v));
    EXPECT_DRAWN(DrawLine(p, q, c, x), 0, DrawLine(p, q, c, x, nil, nil));
    EXPECT_DRAWN(DrawLine(p, q, c, x, b, &v), 0, DrawLine(p, q, c, x, &surface, &v));
    EXPECT_DRAWN(DrawRect(r, c, x), 1200, DrawRect(r, c, x, nil, nil));
    EXPECT_DRAWN(DrawRect(r, c, x, b, &v), 1200, DrawRect(r, c, x, &surface, &v));
    EXPECT_DRAWN(DrawObject(r, src, x), 1200, DrawObject(r, &source, whole, x, white, nil, nil));
    EXPECT_DRAWN(DrawObject(r, src, part, x), 1200,
                 DrawObject(r, &source, part, x, white, nil, nil));
    EXPECT_DRAWN(DrawObject(r, src, part, x, c), 1200,
                 DrawObject(r, &source, part, x, c, nil, nil));
    EXPECT_DRAWN(DrawObject(r, src, part, x, c, b, &v), 1200,
                 DrawObject(r, &source, part, x, c, &surface, &v));
    EXPECT_DRAWN(DrawText(font, text, p, c, x), 2160,
                 DrawText(&fontImpl, text, p, c, x, nil, nil, none));
    EXPECT_DRAWN(DrawText(font, text, p, c, x, b, &v, r), 2160,
                 DrawText(&fontImpl, text, p, c, x, &surface, &v, r));
  };
  draw(t), draw(m);
}

TEST_F(Drawing, FloatRectangles) {
  const RectF s(1, 1, 2, 2);
  const auto draw = [&](const RectF& d, uint32_t pixels) {
    EXPECT_DRAWN(DrawObject(d, src, s, m, c), pixels, DrawObject(d, &source, s, m, c, nil, nil));
    EXPECT_DRAWN(DrawObject(d, src, s, m, c, b, &v), pixels,
                 DrawObject(d, &source, s, m, c, &surface, &v));
  };
  draw({{0.5f, 0.5f}, {3, 4.5f}}, 60);
  draw({{2, 0}, {1, 5}}, 0);
  draw({{0, 2}, {5, 1}}, 0);
  draw({}, 0);
}

TEST_F(Drawing, Others) {
  EXPECT_CALL(surface, SetName(text));
  b.SetName(text);
  EXPECT_CALL(surface, Lock(false)).WillOnce(Return(true));
  EXPECT_TRUE(b.Lock(false));
  EXPECT_CALL(surface, Flush);
  b.Flush();
  EXPECT_TRUE(b.IsTextureBacked());
}

TEST_F(Drawing, DiesWithoutASurface) {
  EXPECT_DEATH(VuBitmap(nullptr),
               "src/vubitmap.cpp:24: ZIRK::VuBitmap::VuBitmap\\(ZIRK::VuBitmapImpl\\*\\): "
               "Assertion `impl' failed");
}

/// What the counter holds after a rectangle. It is summed in single precision.
struct Count {
  const char* name;
  uint32_t before = 0;
  VuRect rect{0, 0, 1, 1};
  float scale = 1;
  uint32_t after = 0;
};
class Overdraw : public helpers::Rows<Count> {};

TEST_P(Overdraw, IsCounted) {
  const helpers::Tunables restored;
  LogOverdraw = true;
  auto* const surface = new doubles::Bitmap;
  surface->overdrawPixels = GetParam().before;
  VuBitmap bitmap(surface);
  bitmap.DrawRect(GetParam().rect, white, VuTransform(0, 0, GetParam().scale, 1, 0));
  EXPECT_EQ(surface->overdrawPixels, GetParam().after);
}

ROWS(Overdraw,
     {.name = "negative extent takes away", .before = 1000, .rect{0, 0, -10, 20}, .after = 800},
     {.name = "never below zero", .before = 100, .rect{0, 0, -10, 20}},
     {.name = "single precision", .before = 1u << 24, .after = 1u << 24},
     {.name = "product wraps", .rect{0, 0, 65536, 65537}, .after = 65536},
     {.name = "no more than fits", .rect{0, 0, 40000, 40000}, .scale = 9, .after = 0xFFFFFFFF},
     {.name = "not a number", .before = 5, .scale = kNaN},
     {.name = "fractions are cut off", .scale = 1.9f, .after = 1});

struct Report {
  const char* name;
  bool counting = true;
  int level = 4;
  VuRect bounds{0, 0, 100, 100};
  const char* line = "";
  uint32_t left = 0;
};
class OverdrawReport : public helpers::Rows<Report> {};

TEST_P(OverdrawReport, AtTheEndOfAFrame) {
  const helpers::Tunables restored;
  LogOverdraw = GetParam().counting;
  auto* const surface = new doubles::Bitmap;
  VuBitmap bitmap(surface);
  ON_CALL(*surface, GetBounds).WillByDefault(Return(GetParam().bounds));
  EXPECT_CALL(*surface, Finish);
  surface->overdrawPixels = 25000;
  EXPECT_EQ(helpers::LoggedAt(GetParam().level, [&] { bitmap.Finish(); }), GetParam().line);
  EXPECT_EQ(surface->overdrawPixels, GetParam().left);
}

ROWS(OverdrawReport, {.name = "not counting", .counting = false, .left = 25000},
     {.name = "counting", .line = "<ZIRK.warning>: Overdraw: 2.500000x\n"},
     {.name = "no pixels", .bounds{}, .line = "<ZIRK.warning>: Overdraw: infx\n"},
     {.name = "not logged", .level = 3});

}  // namespace
}  // namespace ZIRK
