// What goes through unchanged in one form only is in independentplugin_test.cpp.

#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <limits>

#include "doubles/fakefont.h"
#include "doubles/recordingsurface.h"
#include "support/logged.h"

namespace ZIRK {
namespace {

using doubles::Line;
using doubles::Recorder;
using Vector = VuTVector2D<float>;
using Matrix = VuTMatrix2D<float>;
using RectF = VuTRect2D<float>;

static_assert(sizeof(VuBitmap) == sizeof(void*), "a handle is its implementation's pointer");

class VuBitmapTest : public testing::Test {
 protected:
  /// `draw` arrives at the surface as `call`, and counts `overdraw` pixels while, and only while,
  /// that is switched on.
  template <typename F>
  void ExpectDrawing(F draw, const std::string& call, uint32_t overdraw) {
    const support::Tunables restored;
    for (const bool counted : {false, true}) {
      LogOverdraw = counted;
      impl->overdrawPixels = 7;
      draw();
      EXPECT_EQ(recorder.Take(), call);
      EXPECT_EQ(impl->overdrawPixels, counted ? 7 + overdraw : 7) << call;
    }
  }

  Recorder recorder;
  Recorder sourceRecorder;
  doubles::RecordingBitmap* impl = new doubles::RecordingBitmap(recorder);
  doubles::RecordingBitmap* sourceImpl = new doubles::RecordingBitmap(sourceRecorder);
  VuBitmap bitmap{impl};
  VuBitmap other{sourceImpl};

  // As the surface receives them.
  VuBitmapImpl* const source = sourceImpl;
  VuBitmapImpl* const none = nullptr;
  Vector* const noCoords = nullptr;
  const VuTransform identity{0, 0, 1, 1, 0};

  const VuPoint p{1, 2};
  const VuPoint q{3, 4};
  const VuRect r{5, 6, 10, 20};
  const VuRect part{7, 8, 9, 10};
  const VuColor c{0x80112233};
  const VuTransform t{5, 5, 2, 3, 0};
  const Matrix m{t};
  Vector coords[4] = {{0.5f, 1.5f}, {}, {}, {}};
};

TEST_F(VuBitmapTest, DrawPointCountsItsScaleOnlyWhenMasked) {
  ExpectDrawing([&] { bitmap.DrawPoint(p, 4, c); },
                Line("DrawPoint", p, 4, c, identity, none, Vector()), 16);
  ExpectDrawing([&] { bitmap.DrawPoint(p, 4, c, t); },
                Line("DrawPoint", p, 4, c, t, none, Vector()), 16);
  ExpectDrawing([&] { bitmap.DrawPoint(p, 4, c, t, other, coords[0]); },
                Line("DrawPoint", p, 4, c, t, source, coords[0]), 96);
  ExpectDrawing([&] { bitmap.DrawPoint(p, 4, c, m); },
                Line("DrawPoint", p, 4, c, m, none, Vector()), 16);
  ExpectDrawing([&] { bitmap.DrawPoint(p, 4, c, m, other, coords[0]); },
                Line("DrawPoint", p, 4, c, m, source, coords[0]), 96);
}

TEST_F(VuBitmapTest, DrawLineNeverCounts) {
  ExpectDrawing([&] { bitmap.DrawLine(p, q, c); },
                Line("DrawLine", p, q, c, identity, none, noCoords), 0);
  ExpectDrawing([&] { bitmap.DrawLine(p, q, c, t); }, Line("DrawLine", p, q, c, t, none, noCoords),
                0);
  ExpectDrawing([&] { bitmap.DrawLine(p, q, c, t, other, coords); },
                Line("DrawLine", p, q, c, t, source, &coords[0]), 0);
  ExpectDrawing([&] { bitmap.DrawLine(p, q, c, m); }, Line("DrawLine", p, q, c, m, none, noCoords),
                0);
  ExpectDrawing([&] { bitmap.DrawLine(p, q, c, m, other, coords); },
                Line("DrawLine", p, q, c, m, source, &coords[0]), 0);
}

TEST_F(VuBitmapTest, DrawRect) {
  ExpectDrawing([&] { bitmap.DrawRect(r, c); }, Line("DrawRect", r, c, identity, none, noCoords),
                200);
  ExpectDrawing([&] { bitmap.DrawRect(r, c, t); }, Line("DrawRect", r, c, t, none, noCoords), 1200);
  ExpectDrawing([&] { bitmap.DrawRect(r, c, t, other, coords); },
                Line("DrawRect", r, c, t, source, &coords[0]), 1200);
  ExpectDrawing([&] { bitmap.DrawRect(r, c, m); }, Line("DrawRect", r, c, m, none, noCoords), 1200);
  ExpectDrawing([&] { bitmap.DrawRect(r, c, m, other, coords); },
                Line("DrawRect", r, c, m, source, &coords[0]), 1200);
}

TEST_F(VuBitmapTest, DrawObjectWithTransform) {
  const VuRect whole = sourceImpl->bounds;
  ExpectDrawing([&] { bitmap.DrawObject(r, other); },
                Line("DrawObject", r, source, whole, identity, white, none, noCoords), 200);
  ExpectDrawing([&] { bitmap.DrawObject(r, other, part); },
                Line("DrawObject", r, source, part, identity, white, none, noCoords), 200);
  ExpectDrawing([&] { bitmap.DrawObject(r, other, t); },
                Line("DrawObject", r, source, whole, t, white, none, noCoords), 1200);
  ExpectDrawing([&] { bitmap.DrawObject(r, other, part, t); },
                Line("DrawObject", r, source, part, t, white, none, noCoords), 1200);
  ExpectDrawing([&] { bitmap.DrawObject(r, other, part, t, c); },
                Line("DrawObject", r, source, part, t, c, none, noCoords), 1200);
  ExpectDrawing([&] { bitmap.DrawObject(r, other, part, t, c, other, coords); },
                Line("DrawObject", r, source, part, t, c, source, &coords[0]), 1200);
}

TEST_F(VuBitmapTest, DrawObjectWithMatrix) {
  const VuRect whole = sourceImpl->bounds;
  ExpectDrawing([&] { bitmap.DrawObject(r, other, m); },
                Line("DrawObject", r, source, whole, m, white, none, noCoords), 1200);
  ExpectDrawing([&] { bitmap.DrawObject(r, other, part, m); },
                Line("DrawObject", r, source, part, m, white, none, noCoords), 1200);
  ExpectDrawing([&] { bitmap.DrawObject(r, other, part, m, c); },
                Line("DrawObject", r, source, part, m, c, none, noCoords), 1200);
  ExpectDrawing([&] { bitmap.DrawObject(r, other, part, m, c, other, coords); },
                Line("DrawObject", r, source, part, m, c, source, &coords[0]), 1200);
}

TEST_F(VuBitmapTest, DrawObjectWithFloatRectangles) {
  const RectF dst(0.5f, 0.5f, 2.5f, 4);
  const RectF src(1, 1, 2, 2);
  ExpectDrawing([&] { bitmap.DrawObject(dst, other, src, m, c); },
                Line("DrawObject", dst, source, src, m, c, none, noCoords), 60);
  ExpectDrawing([&] { bitmap.DrawObject(dst, other, src, m, c, other, coords); },
                Line("DrawObject", dst, source, src, m, c, source, &coords[0]), 60);
  for (const RectF& inverted : {RectF({2, 0}, {1, 5}), RectF({0, 2}, {5, 1}), RectF()}) {
    ExpectDrawing([&] { bitmap.DrawObject(inverted, other, src, m, c); },
                  Line("DrawObject", inverted, source, src, m, c, none, noCoords), 0);
  }
}

TEST_F(VuBitmapTest, ABitmapMayBeItsOwnSourceAndMask) {
  VuBitmapImpl* const self = impl;
  bitmap.DrawObject(r, bitmap, part, t, c, bitmap, nullptr);
  EXPECT_EQ(recorder.Take(), Line("DrawObject", r, self, part, t, c, self, noCoords));
}

TEST_F(VuBitmapTest, DrawTextMeasuresOnlyToCount) {
  const support::Tunables restored;
  Recorder fontRecorder;
  auto* const fontImpl = new doubles::FakeFont(fontRecorder);
  const VuFont font(fontImpl);
  VuFontImpl* const f = fontImpl;
  const char* const text = "text";
  const VuRect all{};
  const VuTransform wide{0, 0, 2, 1, 0};

  ExpectDrawing([&] { bitmap.DrawText(font, text, p, c); },
                Line("DrawText", f, text, p, c, identity, none, noCoords, all), 360);
  EXPECT_EQ(fontRecorder.Take(), Line("GetOneLineWidth", text) + Line("GetOneLineHeight"));
  ExpectDrawing([&] { bitmap.DrawText(font, text, p, c, wide); },
                Line("DrawText", f, text, p, c, wide, none, noCoords, all), 720);
  ExpectDrawing([&] { bitmap.DrawText(font, text, p, c, wide, other, coords, r); },
                Line("DrawText", f, text, p, c, wide, source, &coords[0], r), 720);
  ExpectDrawing([&] { bitmap.DrawText(font, text, p, c, Matrix(wide)); },
                Line("DrawText", f, text, p, c, Matrix(wide), none, noCoords, all), 720);
  ExpectDrawing([&] { bitmap.DrawText(font, text, p, c, Matrix(wide), other, coords, r); },
                Line("DrawText", f, text, p, c, Matrix(wide), source, &coords[0], r), 720);
}

TEST_F(VuBitmapTest, OverdrawCounterAtItsLimits) {
  const support::Tunables restored;
  LogOverdraw = true;
  struct Case {
    const char* name;
    uint32_t before;
    VuRect rect;
    VuTransform transform;
    uint32_t after;
  };
  const Case cases[] = {
      {"a negative extent takes away", 1000, {0, 0, -10, 20}, {0, 0, 1, 1, 0}, 800},
      {"never below zero", 100, {0, 0, -10, 20}, {0, 0, 1, 1, 0}, 0},
      {"single precision", 1u << 24, {0, 0, 1, 1}, {0, 0, 1, 1, 0}, 1u << 24},
      {"the product wraps", 0, {0, 0, 65536, 65537}, {0, 0, 1, 1, 0}, 65536},
      {"no more than fits", 0, {0, 0, 40000, 40000}, {0, 0, 9, 9, 0}, 0xFFFFFFFF},
      {"not a number", 5, {0, 0, 1, 1}, {0, 0, std::numeric_limits<float>::quiet_NaN(), 1, 0}, 0},
      {"fractions are cut off", 0, {0, 0, 1, 1}, {0, 0, 1.9f, 1, 0}, 1},
  };
  for (const Case& test : cases) {
    impl->overdrawPixels = test.before;
    bitmap.DrawRect(test.rect, c, test.transform);
    EXPECT_EQ(impl->overdrawPixels, test.after) << test.name;
  }
}

TEST_F(VuBitmapTest, PixelsAreTheSurfaces) {
  char pixels[4] = {};
  VuBitmapImpl* const self = impl;
  for (const bool answer : {true, false}) {
    impl->answer = answer;
    EXPECT_EQ(bitmap.GetBlendEnabled(), answer);
    EXPECT_EQ(bitmap.IsTextureBacked(), answer);
    recorder.Take();
    EXPECT_EQ(bitmap.Lock(), answer);
    EXPECT_EQ(bitmap.Lock(false), answer);
    EXPECT_EQ(bitmap.Unlock(), answer);
    EXPECT_EQ(bitmap.GetPixels(r, pixels), answer);
    EXPECT_EQ(bitmap.SetPixels(r, pixels, 3), answer);
    EXPECT_EQ(bitmap.CopyPixels(p, bitmap, r), answer);
    EXPECT_EQ(recorder.Take(), Line("Lock", true) + Line("Lock", false) + Line("Unlock") +
                                   Line("GetPixels", r, &pixels[0]) +
                                   Line("SetPixels", r, &pixels[0], 3) +
                                   Line("CopyPixels", p, self, r));
  }
}

TEST_F(VuBitmapTest, FinishReportsTheFramesOverdraw) {
  const support::Tunables restored;
  struct Case {
    const char* name;
    bool counting;
    int level;
    const char* line;
    uint32_t left;
    std::string calls;
  };
  const Case cases[] = {
      {"off", false, 4, "", 25000, Line("Finish")},
      {"on", true, 4, "<ZIRK.warning>: Overdraw: 2.500000x\n", 0,
       Line("Finish") + Line("GetBounds")},
      {"quiet", true, 3, "", 0, Line("Finish") + Line("GetBounds")},
  };
  for (const Case& test : cases) {
    LogOverdraw = test.counting;
    for (const bool swap : {false, true}) {
      impl->overdrawPixels = 25000;
      const auto end = [&] { swap ? bitmap.SwapBuffers() : bitmap.Finish(); };
      EXPECT_EQ(support::LoggedAt(test.level, end), test.line) << test.name;
      EXPECT_EQ(impl->overdrawPixels, test.left) << test.name;
      EXPECT_EQ(recorder.Take(), test.calls) << test.name;
    }
  }
}

TEST_F(VuBitmapTest, OverdrawOfASurfaceWithoutArea) {
  const support::Tunables restored;
  LogOverdraw = true;
  impl->bounds = {0, 0, 0, 0};
  impl->overdrawPixels = 1;
  EXPECT_EQ(support::LoggedAt(4, [&] { bitmap.Finish(); }), "<ZIRK.warning>: Overdraw: infx\n");
}

TEST_F(VuBitmapTest, AScreenSwapsInsteadOfFinishing) {
  VuBitmap screen(new doubles::RecordingScreen(recorder));
  screen.SwapBuffers();
  EXPECT_EQ(recorder.Take(), Line("SwapBuffers"));
  screen.Finish();
  EXPECT_EQ(recorder.Take(), Line("Finish"));
}

TEST(VuBitmapDeathTest, NeedsASurface) {
  EXPECT_DEATH(VuBitmap(nullptr),
               "src/vubitmap.cpp:24: ZIRK::VuBitmap::VuBitmap\\(ZIRK::VuBitmapImpl\\*\\): "
               "Assertion `impl' failed");
}

TEST(VuBitmapLife, TheHandleDestroysItsSurfaceOnce) {
  Recorder recorder;
  { VuBitmap bitmap(new doubles::RecordingScreen(recorder)); }
  EXPECT_EQ(recorder.Take(), Line("destroyed"));
}

}  // namespace
}  // namespace ZIRK
