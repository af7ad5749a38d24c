// Plug-ins are built apart from the library and meet it by position only: each operation of a
// handle calls one entry of its implementation's table, with the application's arguments. Here are
// those whose results no test of a backend compares; the order of the tables is on record in
// tests/abi.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <limits>
#include <sstream>
#include <tuple>
#include <utility>

#include "doubles/fakeobject.h"
#include "helpers/logged.h"

namespace ZIRK {
namespace {

using doubles::FakeObject;
using Vector = VuTVector2D<float>;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// A handle is its implementation's pointer.
static_assert(sizeof(VuBitmap) + sizeof(VuGraphics) + sizeof(VuFont) == 3 * sizeof(void*));

VuRect Whole(void*) {
  return {1, 2, 100, 100};
}
int measured = 0;
int TextWidth(void*, const char*) {
  return ++measured, 30;
}
int TextHeight(void*) {
  return 12;
}

/// EXPECT_DRAWN(call, overdraw, entry, arguments...)
#define EXPECT_DRAWN(call, ...) ExpectDrawn([&] { call; }, __VA_ARGS__)

class Slots : public testing::Test {
 protected:
  Slots() {
    source.Set(9, &Whole);
    fontObject.Set(4, &TextWidth);
    fontObject.Set(5, &TextHeight);
  }

  /// As EXPECT_ENTRY. Counts `overdraw` pixels while, and only while, that is switched on.
  template <typename F, typename... Args>
  void ExpectDrawn(F draw, uint32_t overdraw, int entry, Args... args) {
    for (const bool counted : {false, true}) {
      LogOverdraw = counted;
      surface.fields[0] = 7;
      measured = 0;
      ExpectEntry(draw, surface, entry, args...);
      EXPECT_EQ(surface.fields[0], counted ? 7 + overdraw : 7) << "entry " << entry;
      EXPECT_EQ(measured, counted && entry >= 30 ? 1 : 0) << "entry " << entry;
    }
  }

  const helpers::Tunables restored;
  FakeObject<VuBitmapImpl> surface, source;
  FakeObject<VuFontImpl> fontObject;
  VuBitmap b{surface.get()};
  const VuBitmap src{source.get()};
  VuFont font{fontObject.get()};

  // As the surface receives them.
  void* const own = surface.get();
  void* const from = source.get();
  void* const f = fontObject.get();
  void* const nil = nullptr;
  const VuTransform id{0, 0, 1, 1, 0};
  const VuRect whole = Whole(nullptr);

  const VuPoint p{1, 2}, q{3, 4};
  const VuRect r{5, 6, 10, 20}, part{7, 8, 9, 10}, all{};
  const VuColor c{0x80112233};
  const float size = 4;
  const char* const text = "text";
  Vector v{0.5f, 1.5f};
};

TEST_F(Slots, Bitmap) {
  EXPECT_ENTRY(b.SetName(text), surface, 4, text);
  EXPECT_ENTRY(b.Lock(false), surface, 32, false);
  EXPECT_ENTRY(b.Flush(), surface, 35);
  EXPECT_TRUE(surface.get()->VuBitmapImpl::IsTextureBacked());
}

TEST_F(Slots, Drawing) {
  EXPECT_DRAWN(b.DrawPoint(p, size, c), 16, 21, p, size, c, id, nil, Vector());
  EXPECT_DRAWN(b.DrawLine(p, q, c), 0, 23, p, q, c, id, nil, nil);
  EXPECT_DRAWN(b.DrawRect(r, c), 200, 25, r, c, id, nil, nil);
  EXPECT_DRAWN(b.DrawObject(r, src), 200, 27, r, from, whole, id, white, nil, nil);
  EXPECT_DRAWN(b.DrawObject(r, src, part), 200, 27, r, from, part, id, white, nil, nil);
  EXPECT_DRAWN(b.DrawText(font, text, p, c), 360, 30, f, text, p, c, id, nil, nil, all);
  const auto draw = [&](const auto t, int i) {
    EXPECT_DRAWN(b.DrawPoint(p, size, c, t), 16, 21 + i, p, size, c, t, nil, Vector());
    EXPECT_DRAWN(b.DrawPoint(p, size, c, t, b, v), 96, 21 + i, p, size, c, t, own, v);
    EXPECT_DRAWN(b.DrawLine(p, q, c, t), 0, 23 + i, p, q, c, t, nil, nil);
    EXPECT_DRAWN(b.DrawLine(p, q, c, t, b, &v), 0, 23 + i, p, q, c, t, own, &v);
    EXPECT_DRAWN(b.DrawRect(r, c, t), 1200, 25 + i, r, c, t, nil, nil);
    EXPECT_DRAWN(b.DrawRect(r, c, t, b, &v), 1200, 25 + i, r, c, t, own, &v);
    EXPECT_DRAWN(b.DrawObject(r, src, t), 1200, 27 + i, r, from, whole, t, white, nil, nil);
    EXPECT_DRAWN(b.DrawObject(r, src, part, t), 1200, 27 + i, r, from, part, t, white, nil, nil);
    EXPECT_DRAWN(b.DrawObject(r, src, part, t, c), 1200, 27 + i, r, from, part, t, c, nil, nil);
    EXPECT_DRAWN(b.DrawObject(r, src, part, t, c, b, &v), 1200, 27 + i, r, from, part, t, c, own,
                 &v);
    EXPECT_DRAWN(b.DrawText(font, text, p, c, t), 2160, 30 + i, f, text, p, c, t, nil, nil, all);
    EXPECT_DRAWN(b.DrawText(font, text, p, c, t, b, &v, r), 2160, 30 + i, f, text, p, c, t, own, &v,
                 r);
  };
  draw(VuTransform{5, 5, 2, 3, 0}, 0);
  draw(VuTMatrix2D<float>(VuTransform{5, 5, 2, 3, 0}), 1);
}

TEST_F(Slots, DrawingWithFloatRectangles) {
  const VuTMatrix2D<float> m(VuTransform{5, 5, 2, 3, 0});
  const VuTRect2D<float> s(1, 1, 2, 2);
  const std::pair<VuTRect2D<float>, uint32_t> cases[] = {
      {{{0.5f, 0.5f}, {3, 4.5f}}, 60}, {{{2, 0}, {1, 5}}, 0}, {{{0, 2}, {5, 1}}, 0}, {{}, 0}};
  for (const auto& test : cases) {
    const VuTRect2D<float>& d = test.first;
    EXPECT_DRAWN(b.DrawObject(d, src, s, m, c), test.second, 29, d, from, s, m, c, nil, nil);
    EXPECT_DRAWN(b.DrawObject(d, src, s, m, c, b, &v), test.second, 29, d, from, s, m, c, own, &v);
  }
}

TEST_F(Slots, OverdrawIsCountedInSinglePrecision) {
  surface.Set(25, &doubles::Entry<void, VuRect, VuColor, VuTransform, void*, void*>);
  LogOverdraw = true;
  const std::tuple<const char*, uint32_t, VuRect, float, uint32_t> cases[] = {
      {"a negative extent takes away", 1000, {0, 0, -10, 20}, 1, 800},
      {"never below zero", 100, {0, 0, -10, 20}, 1, 0},
      {"single precision", 1u << 24, {0, 0, 1, 1}, 1, 1u << 24},
      {"the product wraps", 0, {0, 0, 65536, 65537}, 1, 65536},
      {"no more than fits", 0, {0, 0, 40000, 40000}, 9, 0xFFFFFFFF},
      {"not a number", 5, {0, 0, 1, 1}, kNaN, 0},
      {"fractions are cut off", 0, {0, 0, 1, 1}, 1.9f, 1},
  };
  for (const auto& [name, before, rect, scale, after] : cases) {
    surface.fields[0] = before;
    b.DrawRect(rect, white, VuTransform(0, 0, scale, 1, 0));
    EXPECT_EQ(surface.fields[0], after) << name;
  }
}

TEST_F(Slots, OverdrawIsReportedAtTheEndOfAFrame) {
  surface.Set(34, &doubles::Entry<void>);
  const std::tuple<bool, int, VuRect (*)(void*), const char*, uint32_t> cases[] = {
      {false, 4, &Whole, "", 25000},
      {true, 4, &Whole, "<ZIRK.warning>: Overdraw: 2.500000x\n", 0},
      {true, 4, [](void*) { return VuRect{}; }, "<ZIRK.warning>: Overdraw: infx\n", 0},
      {true, 3, &Whole, "", 0},
  };
  for (const auto& [counting, level, bounds, line, left] : cases) {
    LogOverdraw = counting;
    surface.Set(9, bounds);
    surface.fields[0] = 25000;
    EXPECT_EQ(helpers::LoggedAt(level, [&] { b.Finish(); }), line);
    EXPECT_EQ(surface.fields[0], left) << line;
  }
}

TEST(SlotsDeathTest, NeedsASurface) {
  EXPECT_DEATH(VuBitmap(nullptr),
               "src/vubitmap.cpp:24: ZIRK::VuBitmap::VuBitmap\\(ZIRK::VuBitmapImpl\\*\\): "
               "Assertion `impl' failed");
}

TEST_F(Slots, Graphics) {
  FakeObject<VuGraphicsImpl> impl;
  VuGraphics g(impl.get());
  const void* const data = text;
  const VuScaleMode scale{4};
  std::ostringstream stream;
  std::ostream& os = stream;
  const VuScreenDescription full{-1, 0, 44, 2, VuPixelFormat{2}, true};
  const VuScreenDescription option{8, 9, 1, 1, VuPixelFormat::ARGB8888, true};
  const VuScreenDescription index{8, 9, 44, 1, VuPixelFormat::ARGB8888, false};
  const VuScreenDescription least{8, 9, 0, 2, VuPixelFormat::ARGB8888, false};
  EXPECT_ENTRY(g.CreateScreen(-1, 0, true, 300, true, VuPixelFormat{2}), impl, 4, &full);
  EXPECT_ENTRY(g.CreateScreen(8, 9, false, 1, true), impl, 4, &option);
  EXPECT_ENTRY(g.CreateScreen(8, 9, false, 300), impl, 4, &index);
  EXPECT_ENTRY(g.CreateScreen(8, 9, true), impl, 4, &least);
  EXPECT_ENTRY(g.CreateBitmapFromFile(text), impl, 6, text);
  EXPECT_ENTRY(g.CreateBitmapFromFile(text, 1, 2, scale), impl, 7, text, 1, 2, 4, 0);
  EXPECT_ENTRY(g.CreateBitmapFromMemory(data, 5), impl, 8, data, 5u);
  EXPECT_ENTRY(g.CreateBitmapFromMemory(data, 5, 1, 2, scale), impl, 9, data, 5u, 1, 2, 4);
  EXPECT_ENTRY(g.AvailableMemory(), impl, 10);
  EXPECT_ENTRY(g.TotalMemory(), impl, 11);
  EXPECT_ENTRY(g.BitmapSize(1, 2, VuPixelFormat{3}), impl, 12, 1, 2, 3);
  EXPECT_ENTRY(g.BitmapSize(text), impl, 13, text);
  EXPECT_ENTRY(g.BitmapSize(text, 1, 2), impl, 14, text, 1, 2);
  EXPECT_ENTRY(g.BitmapSize(data, 5), impl, 15, data, 5u);
  EXPECT_ENTRY(g.BitmapSize(data, 5, 1, 2), impl, 16, data, 5u, 1, 2);
  EXPECT_ENTRY(g.PrintBitmapList(os), impl, 17, 0u, &os);
  EXPECT_ENTRY(g.Flush(), impl, 18);
  EXPECT_ENTRY(g.SetTerminateOnDestruct(true), impl, 19, true);
  EXPECT_EQ(impl.get()->VuGraphicsImpl::GetMaxTextureSize(), 2048);
}

TEST_F(Slots, Font) {
  int i = 0, j = 0, k = 0, n = 0;
  EXPECT_ENTRY(font.GetFontMetrics(i, j, k, n), fontObject, 3, &i, &j, &k, &n);
  EXPECT_ENTRY(font.GetAscent(), fontObject, 6);
  EXPECT_ENTRY(font.GetDescent(), fontObject, 7);
  EXPECT_ENTRY(font.GetMaxAdvance(), fontObject, 8);
  EXPECT_ENTRY(font.GetUnderlineMetrics(i, j), fontObject, 9, &i, &j);
}

TEST_F(Slots, OutlineIsStoredAndItsThicknessCutTo26Dot6) {
  const std::pair<float, int> cases[] = {
      {1.5f, 96}, {0.01f, 0}, {-1.99f, -127}, {1e30f, 0x7FFFFFFF}, {kNaN, 0}};
  fontObject.get()->VuFontImpl::SetOutlineType(VuFont::OutlineType{2});
  fontObject.get()->VuFontImpl::SetFallbackGlyph(0xFFFD);
  for (const auto& [pixels, stored] : cases) {
    fontObject.get()->VuFontImpl::SetOutlineThickness(pixels);
    EXPECT_THAT(fontObject.fields,
                testing::ElementsAre(2, static_cast<uint32_t>(stored), 0xFFFD, 0));
  }
}

}  // namespace
}  // namespace ZIRK
