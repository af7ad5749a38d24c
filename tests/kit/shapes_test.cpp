// Coverage against a count of points inside the shape; the cache; bad input; memory that runs out.

#include <gtest/gtest.h>
#include <zirk/kit/kit.h>
#include <zirk/zirk.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <tuple>

#include "helpers/logged.h"
#include "helpers/pixels.h"
#include "support/allocations.h"

namespace ZIRK::kit {
namespace {

using helpers::Pixels;

constexpr int kSide = 40;

class Canvas {
 public:
  void Clear() { bitmap_->Clear(0); }
  Pixels Drawn() { return helpers::PixelsOf(*bitmap_); }
  bool IsEmpty() { return Drawn() == Pixels(size_t{kSide} * kSide); }

  const std::unique_ptr<VuGraphics> graphics_{VuGraphics::Create("FB", false)};
  const std::unique_ptr<VuBitmap> bitmap_{
      graphics_->CreateBitmap(kSide, kSide, VuPixelFormat::ARGB8888)};
};

double FromSegment(double x, double y, Point a, Point b) {
  const double wx = b.x() - a.x(), wy = b.y() - a.y();
  const double t = std::clamp(((x - a.x()) * wx + (y - a.y()) * wy) / (wx * wx + wy * wy), 0., 1.);
  return std::hypot(x - a.x() - t * wx, y - a.y() - t * wy);
}

/// How far inside a rectangle with corners of radius `r`, negative outside.
double InRounded(double x, double y, double x0, double y0, double x1, double y1, double r) {
  const double dx = std::max({x0 + r - x, x - x1 + r, 0.0}),
               dy = std::max({y0 + r - y, y - y1 + r, 0.0});
  if (dx > 0 && dy > 0) return r - std::hypot(dx, dy);
  return std::min({x - x0, x1 - x, y - y0, y1 - y});
}

using Inside = std::function<bool(double x, double y)>;

/// Draws one shape after the other, and tells `drawn` the name of each and where it is.
void DrawShapes(Shapes& s, VuBitmap& t, const std::function<void(const char*, Inside)>& drawn) {
  s.FillDisc(t, {19.75f, 20.5f}, 13.25f, white);
  drawn("a disc between pixels",
        [](double x, double y) { return std::hypot(x - 19.75, y - 20.5) <= 13.25; });
  s.DrawRing(t, {20, 20}, 16, 0.75f, white);
  drawn("a ring",
        [](double x, double y) { return std::fabs(std::hypot(x - 20, y - 20) - 15.625) <= 0.375; });
  s.DrawArc(t, {20, 20}, 16, 6, 90, -90, white, Cap::Round);
  drawn("a quarter of a ring with round caps, clockwise", [](double x, double y) {
    const double r = std::hypot(x - 20, y - 20);
    return (x >= 20 && y <= 20 && r >= 10 && r <= 16) || std::hypot(x - 20, y - 7) <= 3 ||
           std::hypot(x - 33, y - 20) <= 3;
  });
  s.FillRoundedRect(t, {3, 5, 33, 21}, 6.5f, white);
  drawn("a rounded rectangle",
        [](double x, double y) { return InRounded(x, y, 3, 5, 36, 26, 6.5) >= 0; });
  s.DrawRoundedRect(t, {3, 5, 33, 21}, 6.5f, 2.25f, white);
  drawn("its outline", [](double x, double y) {
    const double depth = InRounded(x, y, 3, 5, 36, 26, 6.5);
    return depth >= 0 && depth <= 2.25;
  });
  s.FillRoundedRect(t, {2, 9, 35, 15}, 1e30f, white);
  drawn("radii that are too large",
        [](double x, double y) { return InRounded(x, y, 2, 9, 37, 24, 7.5) >= 0; });
  s.FillRoundedRect(t, {4, 4, 30, 30}, {0, 12, -3, NAN}, white);
  drawn("one corner", [](double x, double y) {
    return InRounded(x, y, 4, 4, 34, 34, 0) >= 0 &&
           (x < 22 || y > 16 || std::hypot(x - 22, y - 16) <= 12);
  });
  s.FillTriangle(t, {5, 35}, {35, 30.5f}, {18, 4.25f}, white);
  drawn("a triangle", [](double x, double y) {
    const auto left = [=](double ax, double ay, double bx, double by) {
      return (bx - ax) * (y - ay) - (by - ay) * (x - ax) <= 0;
    };
    return left(5, 35, 35, 30.5) && left(35, 30.5, 18, 4.25) && left(18, 4.25, 5, 35);
  });
  // Cells are 128 pixels wide and high: these two meet in the middle.
  s.FillTriangle(t, {-108, 5}, {148, 20}, {-108, 37}, white);
  drawn("two cells beside each other", [](double x, double y) {
    return y >= 5 + (x + 108) * 15 / 256 && y <= 37 - (x + 108) * 17 / 256;
  });
  s.FillTriangle(t, {5, -108}, {37, -108}, {21, 148}, white);
  drawn("two cells above each other",
        [](double x, double y) { return std::fabs(x - 21) <= (148 - y) * 16 / 256; });
  s.FillPolygon(t, {{6, 6}, {6, 34}, {34, 34}, {34, 28.5f}, {12.5f, 28.5f}, {12.5f, 6}}, white);
  drawn("a polygon that is not convex, counter-clockwise", [](double x, double y) {
    return InRounded(x, y, 6, 6, 34, 34, 0) >= 0 && !(x > 12.5 && y < 28.5);
  });
  s.DrawPolyline(t, {{6, 8}, {33, 30}, {33, 30}, {34, 9}, {24, 5}}, {5, Join::Round, Cap::Round},
                 white);
  drawn("a line with round joins and caps", [](double x, double y) {
    return std::min({FromSegment(x, y, {6, 8}, {33, 30}), FromSegment(x, y, {33, 30}, {34, 9}),
                     FromSegment(x, y, {34, 9}, {24, 5})}) <= 2.5;
  });
  s.DrawPolyline(t, {{5, 20}, {35, 20}, {35, 30}, {20, 30}, {20, 5}}, 4, white);
  drawn("a line that crosses itself", [](double x, double y) {
    return InRounded(x, y, 5, 18, 37, 22, 0) >= 0 || InRounded(x, y, 33, 18, 37, 32, 0) >= 0 ||
           InRounded(x, y, 18, 28, 37, 32, 0) >= 0 || InRounded(x, y, 18, 5, 22, 32, 0) >= 0;
  });
  s.DrawPolyline(t, {{10, 30}, {30.5f, 30}, {30.5f, 9}, {10, 9}}, 4.5f, white, true);
  drawn("a closed line with miters", [](double x, double y) {
    return InRounded(x, y, 7.75, 6.75, 32.75, 32.25, 0) >= 0 &&
           InRounded(x, y, 12.25, 11.25, 28.25, 27.75, 0) < 0;
  });
  s.DrawPolyline(t, {{10, 10}, {30, 10}, {30, 30}}, {6, Join::Bevel, Cap::Square}, white);
  drawn("a bevel and square caps", [](double x, double y) {
    return (InRounded(x, y, 7, 7, 33, 13, 0) >= 0 || InRounded(x, y, 27, 7, 33, 33, 0) >= 0) &&
           !(x > 30 && y < 10 && x - 30 + 10 - y > 3);
  });
}

/// 0 to 255, counted at 48 x 48 points.
int CoverageOf(const Inside& inside, int x, int y) {
  constexpr int kPoints = 48;
  int count = 0;
  for (int j = 0; j < kPoints; ++j)
    for (int i = 0; i < kPoints; ++i)
      count += inside(x + (i + 0.5) / kPoints, y + (j + 0.5) / kPoints);
  return static_cast<int>(std::lround(count * 255.0 / (kPoints * kPoints)));
}

TEST(Shapes, CoverPixelsToTheirArea) {
  Canvas canvas;
  Shapes shapes(*canvas.graphics_);
  DrawShapes(shapes, *canvas.bitmap_, [&](const char* name, const Inside& inside) {
    const Pixels drawn = canvas.Drawn();
    canvas.Clear();
    int worst = 0;
    for (int y = 0; y < kSide; ++y)
      for (int x = 0; x < kSide; ++x) {
        const auto alpha = static_cast<int>(drawn[static_cast<size_t>(y * kSide + x)] >> 24);
        worst = std::max(worst, std::abs(alpha - CoverageOf(inside, x, y)));
      }
    // An edge along the points moves by half their distance.
    EXPECT_LE(worst, 4) << name;
  });
}

TEST(Shapes, AreKeptWithoutFurtherRequestsForMemory) {
  Canvas canvas;
  Shapes shapes(*canvas.graphics_);
  const auto draw = [&] {
    canvas.Clear();
    DrawShapes(shapes, *canvas.bitmap_, [](auto...) {});
    shapes.FillRoundedRect(*canvas.bitmap_, {0, 0, 20, 20}, 5, Paint::Linear(white, 0xFF102030, 9));
    shapes.DrawShadow(*canvas.bitmap_, {8, 8, 20, 20}, 5, 6, 0x80FF0000);
    shapes.DrawGlow(*canvas.bitmap_, {20, 20}, 15, 0x8000FF00);
  };
  draw();
  const Pixels first = canvas.Drawn();
  const uint32_t size = shapes.GetCacheSize();
  const int before = support::Allocations();
  draw();
  const int after = support::Allocations();
  EXPECT_EQ(after, before);
  EXPECT_EQ(shapes.GetCacheSize(), size);
  EXPECT_EQ(canvas.Drawn(), first);
  shapes.ClearCache();
  EXPECT_EQ(shapes.GetCacheSize(), 0u);
}

TEST(Shapes, OfOneKindShareWhatTheyAreDrawnFrom) {
  Canvas canvas;
  Shapes shapes(*canvas.graphics_);
  const auto draw = [&](int more) {
    const VuRect rect{more - 5, 2, 30 + more, 30 + 3 * more};
    shapes.FillRoundedRect(*canvas.bitmap_, rect, 6, white);
    shapes.DrawRoundedRect(*canvas.bitmap_, rect, 6, 1.5f, white);
    shapes.DrawShadow(*canvas.bitmap_, rect, 6, 4, 0xFF000000);
    shapes.FillDisc(*canvas.bitmap_, {static_cast<float>(more), 5}, 4, white);
    shapes.DrawGlow(*canvas.bitmap_, {9, 9}, static_cast<float>(more), white);
  };
  draw(1);
  const uint32_t size = shapes.GetCacheSize();
  for (int more = 2; more < 400; more += 7) draw(more);
  EXPECT_EQ(shapes.GetCacheSize(), size);
}

TEST(Shapes, DropWhatWasUsedLongestAgo) {
  Canvas canvas;
  constexpr uint32_t kLimit = 40'000;
  Shapes shapes(*canvas.graphics_, kLimit);
  const auto disc = [&](int i) {
    shapes.FillDisc(*canvas.bitmap_, {20, 20}, 12 + static_cast<float>(i) / 16, white);
  };
  const auto requests = [&](int i) {
    const int before = support::Allocations();
    disc(i);
    return support::Allocations() - before;
  };
  for (int i = 0; i < 200; ++i) {
    disc(i);
    EXPECT_EQ(requests(0), 0);
    EXPECT_LE(shapes.GetCacheSize(), kLimit);
  }
  EXPECT_GT(shapes.GetCacheSize(), kLimit / 2);
  EXPECT_EQ(requests(199), 0);
  EXPECT_GT(requests(1), 0);

  // A cache that holds nothing draws the same.
  Shapes without(*canvas.graphics_, 0);
  for (Shapes* each : {&shapes, &without}) {
    canvas.Clear();
    each->FillRoundedRect(*canvas.bitmap_, {-200, -90, 230, 120}, 30,
                          Paint::Radial(white, 0xFF0000FF));
    static Pixels first;
    if (each == &shapes) first = canvas.Drawn();
    EXPECT_EQ(canvas.Drawn(), first);
  }
}

/// A gradient is drawn through masks, cell by cell, where a colour is drawn from coverage.
TEST(Paint, OfOneColourTwiceIsTheColour) {
  Canvas canvas;
  Shapes shapes(*canvas.graphics_);
  const auto drawn = [&](const Paint& paint) {
    std::unique_ptr<VuBitmap> large(
        canvas.graphics_->CreateBitmap(400, 300, VuPixelFormat::ARGB8888));
    shapes.FillRoundedRect(*large, {3, 5, 390, 280}, 40.5f, paint);
    shapes.DrawRoundedRect(*large, {8, 10, 380, 270}, 30, 3.5f, paint);
    shapes.DrawRing(*large, {200, 150}, 140, 20, paint);
    shapes.DrawPolyline(*large, {{10, 20}, {390, 200}, {20, 290}}, 9, paint);
    return large;
  };
  const VuColor color = 0x80406080;
  const auto plain = drawn(color);
  for (const Paint& paint : {Paint::Linear(color, color), Paint::Linear(color, color, 20),
                             Paint::Linear(color, color, 0), Paint::Radial(color, color)})
    EXPECT_LE(Compare(*plain, *drawn(paint))->worst, 3)
        << "four shapes above each other, a step each at most";
}

TEST(Paint, LiesOverTheShape) {
  Canvas canvas;
  Shapes shapes(*canvas.graphics_);
  const VuColor from = 0xFF000000, to = 0xFFFFFFFF;
  // At the top-left, the bottom-right, the top-right.
  const auto expect = [&](const Paint& paint, uint32_t first, uint32_t last, uint32_t corner) {
    canvas.Clear();
    shapes.FillRect(*canvas.bitmap_, {0, 0, kSide, kSide}, paint);
    const Pixels drawn = canvas.Drawn();
    EXPECT_EQ(std::tuple(drawn.front(), drawn.back(), drawn[kSide - 1]),
              std::tuple(first, last, corner));
  };
  expect(Paint::Linear(from, to), 0xFF030303, 0xFFFCFCFC, 0xFF030303);
  expect(Paint::Linear(from, to, 90), 0xFFFCFCFC, 0xFF030303, 0xFFFCFCFC);
  expect(Paint::Linear(from, to, 360), 0xFF030303, 0xFFFCFCFC, 0xFFFCFCFC);
  expect(Paint::Linear(from, to, -45), 0xFF030303, 0xFFFCFCFC, 0xFF808080);
  expect(Paint::Linear(from, to, NAN), 0xFF030303, 0xFFFCFCFC, 0xFF030303);
  expect(Paint::Radial(from, to), 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF);
  expect(Paint::Linear(0xFF804020, 0x0000FF00), 0xFC7E3F20, 0x03020100, 0xFC7E3F20);
}

TEST(Shadow, IsTheSameStretchedAndInOnePiece) {
  Canvas canvas;
  Shapes shapes(*canvas.graphics_);
  // The second one is too large to be kept divided.
  const auto cornerOf = [&](float blur, int x, int size) {
    canvas.Clear();
    shapes.DrawShadow(*canvas.bitmap_, {x, x, size, size}, 0, blur, white);
    return canvas.Drawn();
  };
  EXPECT_EQ(cornerOf(20, 20, 100), cornerOf(20, 20, 4000));
  const Pixels large = cornerOf(90, 20, 1000);
  // Half of the light at an edge, a quarter at a corner, and all of it deep inside.
  EXPECT_NEAR(static_cast<double>(large[20 * kSide + 20] >> 24), 64, 3);
  EXPECT_NEAR(static_cast<double>(cornerOf(4, 0, 40)[20 * kSide] >> 24), 151, 1);
  EXPECT_EQ(cornerOf(4, 0, 40)[20 * kSide + 20], 0xFFFFFFFFu);
}

TEST(Shapes, OfNoSensibleSizeDrawNothing) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  Canvas canvas;
  Shapes s(*canvas.graphics_);
  VuBitmap& t = *canvas.bitmap_;
  const float kBad[] = {0, -1, NAN, kInfinity, -kInfinity, 1e30f};
  const std::string log = helpers::LoggedAt(7, [&] {
    for (const float bad : kBad) {
      s.FillDisc(t, {20, 20}, bad, white);
      s.DrawRing(t, {20, 20}, 9, bad, white);
      s.DrawLine(t, {2, 2}, {9, 9}, bad, white);
      s.DrawGlow(t, {20, 20}, bad, white);
      s.DrawRoundedRect(t, {2, 2, 9, 9}, 3, bad, white);
      if (bad == 0 || bad == -1) continue;
      s.FillDisc(t, {bad, 20}, 9, white);
      s.DrawArc(t, {20, 20}, 9, 2, std::isfinite(bad) ? NAN : bad, 90, white);
      s.FillTriangle(t, {2, 2}, {9, 9}, {bad, 4}, white);
      s.DrawLine(t, {2, bad}, {9, 9}, 2, white);
    }
    for (const VuRect rect : {VuRect{2, 2, -5, 9},
                              {2, 2, 9, 0},
                              {2, 2, INT32_MAX, INT32_MAX},
                              {INT32_MIN, INT32_MIN, 50, 50}}) {
      s.FillRect(t, rect, Paint::Radial(white, white));
      s.FillRoundedRect(t, rect, 3, white);
      s.DrawShadow(t, rect, 3, 5, white);
    }
    s.FillPolygon(t, {{2, 2}, {30, 30}}, white);
    s.FillPolygon(t, {{2, 2}, {30, 30}, {16, 16}}, white);
    s.FillPolygon(t, Points(nullptr, 0), white);
    s.DrawPolyline(t, std::vector<Point>(), 3, white);
    s.DrawLine(t, {5, 5}, {5, 5}, 3, white);
  });
  EXPECT_TRUE(canvas.IsEmpty());
  EXPECT_EQ(log, "");
}

TEST(Shapes, DrawWhatIsSeenOfThem) {
  Canvas canvas;
  Shapes s(*canvas.graphics_);
  VuBitmap& t = *canvas.bitmap_;
  const auto expect = [&](const char* name, uint32_t everywhere) {
    EXPECT_EQ(canvas.Drawn(), Pixels(size_t{kSide} * kSide, everywhere)) << name;
    canvas.Clear();
  };
  s.FillDisc(t, {900'000, 20}, 1e6f, white);
  expect("a large disc", 0xFFFFFFFFu);
  s.FillRoundedRect(t, {-900'000, -400'000, 1'000'000, 999'999}, 1e5f, white);
  expect("a large rectangle", 0xFFFFFFFFu);
  s.DrawLine(t, {-1e6f, 0}, {1e6f, 30}, 1e6f, white);
  expect("a large line", 0xFFFFFFFFu);
  s.DrawShadow(t, {-500'000, -500'000, 1'000'000, 1'000'000}, 1e6f, 1e9f, white);
  expect("a large shadow", 0xFFFFFFFFu);
  s.FillRoundedRect(t, {-1'000'000, -400'000, 1'000'000, 999'999}, 9, white);
  expect("a rectangle that ends at the left side", 0);
  s.FillTriangle(t, {-900, -309}, {-300, -309}, {-600, -9}, white);
  expect("a triangle out of sight", 0);
  s.FillRect(t, {-300, -300, 9, 9}, Paint::Radial(white, 0));
  expect("a gradient out of sight", 0);
}

TEST(Shapes, AreLeftOutWhereMemoryRunsOut) {
  Canvas canvas;
  const auto draw = [&](int granted) {
    const support::ScarceMemory memory(granted);
    Shapes s(*canvas.graphics_);
    s.DrawPolyline(*canvas.bitmap_, {{2, 2}, {30, 30}, {3, 20}}, {3, Join::Round},
                   Paint::Radial(white, 0));
    return memory.HasRunOut();
  };
  int granted = 0;
  for (bool ranOut = true; ranOut; ++granted)
    EXPECT_TRUE(helpers::LogsOneError("", [&] { ranOut = draw(granted); }) || !ranOut) << granted;
  EXPECT_GT(granted, 10);
}

}  // namespace
}  // namespace ZIRK::kit
