#include <gtest/gtest.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vurect2d.h>

#include <limits>
#include <ostream>

#include "support/logged.h"

namespace ZIRK {

template <typename T>
void PrintTo(const VuTRect2D<T>& r, std::ostream* os) {
  *os << r.minPoint().x() << ',' << r.minPoint().y() << " - " << r.maxPoint().x() << ','
      << r.maxPoint().y();
}

namespace {

using RectF = VuTRect2D<float>;
using RectI = VuTRect2D<int>;
using Matrix = VuTMatrix2D<float>;

constexpr int kMax = std::numeric_limits<int>::max();
constexpr int kMin = std::numeric_limits<int>::min();

template <typename T>
class VuRectTest : public testing::Test {};
using Types = testing::Types<int, float>;
TYPED_TEST_SUITE(VuRectTest, Types);

TYPED_TEST(VuRectTest, ANewRectangleIsEmptyAndGrows) {
  using Rect = VuTRect2D<TypeParam>;
  Rect r;
  EXPECT_TRUE(r.isEmpty());
  EXPECT_EQ(r.width(), 0);
  EXPECT_EQ(r.height(), 0);
  r.addPoint({3, -4});
  EXPECT_EQ(r, Rect({3, -4}, {3, -4}));
  EXPECT_FALSE(r.isEmpty());
  r.addPoint({1, 5});
  EXPECT_EQ(r, Rect({1, -4}, {3, 5}));
  r.expand(Rect());
  EXPECT_EQ(r, Rect({1, -4}, {3, 5}));
  Rect fresh;
  fresh.expand(r);
  EXPECT_EQ(fresh, r);
}

TYPED_TEST(VuRectTest, OverlapAndContainment) {
  using Rect = VuTRect2D<TypeParam>;
  struct Case {
    const char* name;
    Rect a;
    Rect b;
    bool overlap;
    bool contained;  ///< b in a
  };
  const Rect square(0, 0, 10, 10);
  const Case cases[] = {
      {"itself", square, square, true, true},
      {"inside", square, Rect(2, 2, 3, 3), true, true},
      {"outside around", Rect(2, 2, 3, 3), square, true, false},
      {"corner touches", square, Rect(10, 10, 5, 5), true, false},
      {"one past", square, Rect(11, 0, 5, 5), false, false},
      {"below", square, Rect(0, 11, 5, 5), false, false},
      {"crossing", square, Rect(2, -5, 2, 20), true, false},
      {"point", square, Rect(10, 10, 0, 0), true, true},
      {"empty in it", square, Rect(), false, false},
      {"empty with itself", Rect(), Rect(), false, false},
      {"in an empty one", Rect(), square, false, false},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(test.a.overlaps(test.b), test.overlap) << test.name;
    EXPECT_EQ(test.b.overlaps(test.a), test.overlap) << test.name;
    EXPECT_EQ(test.a.contains(test.b), test.contained) << test.name;
  }
}

TYPED_TEST(VuRectTest, MovesAndInsets) {
  using Rect = VuTRect2D<TypeParam>;
  Rect r(1, 2, 10, 20);
  r.translate(1, 2);
  EXPECT_EQ(r, Rect({2, 4}, {12, 24}));
  r.inset({-1, 3});
  EXPECT_EQ(r, Rect({1, 7}, {13, 21}));
  r.inset(7, 0);
  EXPECT_TRUE(r.isEmpty());
  EXPECT_EQ(r.width(), 0);
  EXPECT_EQ(r.height(), 0);
  EXPECT_EQ(r.minPoint().x(), 8);
}

TEST(VuRect, FromOriginAndExtent) {
  const RectI point{VuRect{5, 6, 0, 0}};
  EXPECT_EQ(point, RectI({5, 6}, {5, 6}));
  EXPECT_FALSE(point.isEmpty());
  // Summed as integers: 2^24 + 1 has no float, 2^24 + 2 does.
  EXPECT_EQ(RectF(VuRect{(1 << 24) + 1, 0, 1, 0}).maxPoint().x(), 16777218.0f);
  EXPECT_EQ(RectI(VuRect{kMax, 0, 1, 0}).maxPoint().x(), kMin);
}

TEST(VuRect, InvertedAsFarAsItGoes) {
  EXPECT_EQ(RectI(), RectI({kMax, kMax}, {kMin, kMin}));
  EXPECT_EQ(RectF(), RectF({2147483648.0f, 2147483648.0f}, {-2147483648.0f, -2147483648.0f}));
}

TEST(VuRect, TransformedByKind) {
  Matrix flip;
  flip.scale({-1, 1});
  EXPECT_EQ(RectF({1, 1}, {3, 2}).transform(flip), RectF({-3, 1}, {-1, 2}));
  Matrix flipDown;
  flipDown.scale({1, -2});
  EXPECT_EQ(RectI({1, 1}, {3, 2}).transform(flipDown), RectI({1, -4}, {3, -2}));
  Matrix move;
  move.translate({1.75f, -0.75f});
  EXPECT_EQ(RectI({1, 0}, {3, 2}).transform(move), RectI({2, 0}, {4, 1}));

  Matrix turn;
  turn.rotate(0.785398163f);
  const RectF box = RectF(0, 0, 1, 1).transform(turn);
  EXPECT_NEAR(box.minPoint().x(), 0, 1e-6);
  EXPECT_NEAR(box.minPoint().y(), -0.70710678, 1e-6);
  EXPECT_NEAR(box.maxPoint().x(), 1.41421356, 1e-6);
  EXPECT_NEAR(box.maxPoint().y(), 0.70710678, 1e-6);
  EXPECT_EQ(RectF().transform(turn), RectF());
  EXPECT_EQ(RectI({3, 3}, {1, 9}).transform(flip), RectI({3, 3}, {1, 9}));
}

TEST(VuRect, Prints) {
  EXPECT_EQ(support::LoggedAt(3, [] { RectI(1, 2, 9, 8).print("clip"); }),
            "<ZIRK.error>: rect clip -- min  1.000  2.000\n"
            "<ZIRK.error>: rect clip -- max  10.000 10.000\n");
  EXPECT_EQ(support::LoggedAt(2, [] { RectF(1, 2, 9, 8).print("clip"); }), "");
}

}  // namespace
}  // namespace ZIRK
