#include <gtest/gtest.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vurect2d.h>
#include <zirk/vutransform.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <tuple>
#include <vector>

#include "helpers/logged.h"
#include "helpers/rows.h"

namespace ZIRK {
namespace {

using Matrix = VuTMatrix2D<float>;
using Vector = VuTVector2D<float>;
using VectorI = VuTVector2D<int>;
using RectF = VuTRect2D<float>;
using RectI = VuTRect2D<int>;
using Nine = std::array<float, 9>;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr int kMax = std::numeric_limits<int>::max();
constexpr int kMin = std::numeric_limits<int>::min();

Nine Elements(const Matrix& m) {
  Nine e{};
  std::copy(m.get(), m.get() + 9, e.begin());
  return e;
}

std::array<bool, 3> Flags(const Matrix& m) {
  return {m.hasTranslation(), m.hasScale(), m.hasRotation()};
}

Matrix Translation(float x, float y) {
  return VuTransform(x, y, 1, 1, 0);
}
Matrix Scale(float x, float y) {
  return VuTransform(0, 0, x, y, 0);
}
Matrix Rotation(float angle) {
  Matrix m;
  m.rotate(angle);
  return m;
}

/// One matrix for each combination of flags.
std::vector<Matrix> EveryKind() {
  const Matrix r = Rotation(1);
  const Matrix s = Scale(2, -4);
  const Matrix t = Translation(3, -5);
  return {Matrix(), t, s, s * t, r, r * t, r * s, r * s * t};
}

Nine FullProduct(const Nine& p, const Nine& q) {
  return {p[0] * q[0] + p[1] * q[3],        p[0] * q[1] + p[1] * q[4],        0,
          p[3] * q[0] + p[4] * q[3],        p[3] * q[1] + p[4] * q[4],        0,
          p[6] * q[0] + p[7] * q[3] + q[6], p[6] * q[1] + p[7] * q[4] + q[7], 1};
}

TEST(VuMatrix, EveryShortcutEqualsTheFullOperation) {
  for (const Matrix& a : EveryKind()) {
    const Nine e = Elements(a);
    EXPECT_EQ(a.transformVector(Vector(7, 11)),
              Vector(7 * e[0] + 11 * e[3] + e[6], 7 * e[1] + 11 * e[4] + e[7]));
    for (const Matrix& b : EveryKind()) {
      Matrix right = a;
      right.multRight(b);
      EXPECT_EQ(Elements(right), FullProduct(e, Elements(b)));
      for (size_t i = 0; i < 3; ++i) EXPECT_EQ(Flags(right)[i], Flags(a)[i] || Flags(b)[i]);
      Matrix left = b;
      left.multLeft(a);
      EXPECT_EQ(left, right);
      EXPECT_EQ(a * b, right);
    }
    Matrix square = a;
    square *= square;
    EXPECT_EQ(square, a * a);
    square = a;
    square.multLeft(square);
    EXPECT_EQ(square, a * a);
  }
}

TEST(VuMatrix, FlagsTellWhatWasDoneNotWhatIsLeft) {
  Matrix m;
  m.translate({0, -0.0f});
  m.scale({1, 1});
  m.rotate(0);
  EXPECT_TRUE(m.isIdentity());
  m.scale({2, 2});
  m.scale({0.5f, 0.5f});
  EXPECT_EQ(Elements(m), Elements(Matrix()));
  EXPECT_NE(m, Scale(1, 1));
  m.makeIdentity();
  EXPECT_EQ(m, Matrix());
}

TEST(VuMatrix, StepsArePrependedAndRotationsDouble) {
  const auto angle = static_cast<float>(22.0f * 3.141592653589793 / 180.0);
  const auto s = static_cast<float>(std::sin(double{angle}));
  const auto c = static_cast<float>(std::cos(double{angle}));
  Matrix m;
  m.translate({5, 7});
  m.scale({2, 3});
  m.rotate(angle);
  EXPECT_EQ(Elements(m), (Nine{c * 2, -s * 3, 0, s * 2, c * 3, 0, 5, 7, 1}));
  EXPECT_EQ(Matrix(VuTransform(5, 7, 2, 3, 22)), m);
  EXPECT_EQ(Flags(VuTransform(0, 5, 1, 1, 0)), (std::array{true, false, false}));
}

TEST(VuMatrix, ComparesBits) {
  EXPECT_NE(Scale(0, 2), Scale(-0.0f, 2));
  EXPECT_EQ(Scale(kNaN, 2), Scale(kNaN, 2));
}

TEST(VuVector, ComputesAndComparesValues) {
  EXPECT_EQ(Vector(4, 1) * 3 + Vector(1, 1) - Vector(0, 5), Vector(13, -1));
  EXPECT_EQ(VectorI(5, -5) * 0.5f, VectorI(2, -2));
  EXPECT_EQ(Vector(0, 0), Vector(-0.0f, 0));
  EXPECT_NE(Vector(kNaN, 0), Vector(kNaN, 0));
}

struct Inverse {
  const char* name;
  Matrix matrix = {};
  Nine inverse;
};
class MatrixInverse : public helpers::Rows<Inverse> {};

TEST_P(MatrixInverse, BySpecialCase) {
  EXPECT_EQ(Elements(GetParam().matrix.inverse()), GetParam().inverse);
  EXPECT_EQ(Flags(GetParam().matrix.inverse()), Flags(GetParam().matrix));
}

const Matrix kTurned = Rotation(0.5f), kMoved = Translation(3, -5), kScaled = Scale(2, -4);
ROWS(MatrixInverse, {.name = "identity", .inverse{1, 0, 0, 0, 1, 0, 0, 0, 1}},
     {.name = "translation", .matrix = kMoved, .inverse{1, 0, 0, 0, 1, 0, -3, 5, 1}},
     {.name = "scale", .matrix = kScaled, .inverse{0.5f, 0, 0, 0, -0.25f, 0, 0, 0, 1}},
     {.name = "no_width", .matrix = Scale(0, 2), .inverse{HUGE_VALF, 0, 0, 0, 0.5f, 0, 0, 0, 1}},
     {.name = "scale_and_translation",
      .matrix = kScaled * kMoved,
      .inverse{0.5f, 0, 0, 0, -0.25f, 0, -1.5f, -1.25f, 1}},
     {.name = "rotation",
      .matrix = kTurned,
      .inverse{kTurned.get()[0], kTurned.get()[3], 0, kTurned.get()[1], kTurned.get()[4], 0, 0, 0,
               1}});

TEST(VuMatrix, GeneralInverse) {
  const Matrix m = Rotation(0.5f) * Scale(2, -4) * Translation(3, -5);
  const Matrix product = m * m.inverse();
  for (int i = 0; i < 9; ++i) EXPECT_NEAR(product.get()[i], Matrix().get()[i], 1e-5) << i;
  EXPECT_TRUE((Rotation(0.5f) * Translation(1, 1)).inverse().hasScale());
  EXPECT_EQ((Rotation(0.5f) * Scale(0, 0) * Translation(3, 4)).inverse(), Matrix());
}

TEST(VuMatrix, TransformsIntegersByTruncation) {
  const VectorI one(1, 1);
  EXPECT_EQ(Scale(0.6f, 1.9f).transformVector(one), VectorI(0, 1));
  EXPECT_EQ(Scale(-0.6f, -1.9f).transformVector(one), VectorI(0, -1));
  EXPECT_EQ(Scale(2147483648.0f, -1e20f).transformVector(one), VectorI(kMax, kMin));
  EXPECT_EQ(Scale(kNaN, 1).transformVector(one), VectorI(0, 1));
}

TEST(VuMatrixDeathTest, ElementsAreByRowAndColumn) {
  const Matrix m = Translation(5, 7);
  EXPECT_EQ(m.getElement(2, 1), 7);
  EXPECT_DEATH(std::ignore = m.getElement(3, 0),
               "src/vumatrix2d.cpp:[0-9]+: .*Assertion `row < 3' failed");
  EXPECT_DEATH(std::ignore = m.getElement(0, 3),
               "src/vumatrix2d.cpp:[0-9]+: .*Assertion `col < 3' failed");
}

TEST(Geometry, Prints) {
  const auto print = [] {
    (Scale(2, 3) * Translation(40.5f, -5)).print();
    RectI(1, 2, 9, 8).print("clip");
  };
  EXPECT_EQ(helpers::LoggedAt(3, print),
            "<ZIRK.error>: matrix (null) 1:  2.000  0.000  0.000\n"
            "<ZIRK.error>: matrix (null) 2:  0.000  3.000  0.000\n"
            "<ZIRK.error>: matrix (null) 3: 40.500 -5.000  1.000\n"
            "<ZIRK.error>: rect clip -- min  1.000  2.000\n"
            "<ZIRK.error>: rect clip -- max  10.000 10.000\n");
}

TEST(VuTransformTest, RoundTrips) {
  for (const VuTransform& t : {VuTransform(0, 0, 1, 1, 0), VuTransform(10, 20, -2, 3, 0),
                               VuTransform(0, 0, 2, 2, 90), VuTransform(5, 6, 1, 1, -30)}) {
    const VuTransform back{Matrix(t)};
    EXPECT_NEAR(back.translateX, t.translateX, 1e-5);
    EXPECT_NEAR(back.translateY, t.translateY, 1e-5);
    EXPECT_NEAR(back.scaleX, t.scaleX, 1e-5);
    EXPECT_NEAR(back.scaleY, t.scaleY, 1e-5);
    EXPECT_NEAR(back.rotation, t.rotation, 1e-5);
  }
}

TEST(VuTransformTest, TwoScalesAreMixedInTheAngle) {
  const Nine e = Elements(Rotation(0.5f) * Scale(2, 5));
  const VuTransform t(Rotation(0.5f) * Scale(2, 5));
  EXPECT_EQ(t.scaleX, std::sqrt(e[0] * e[0] + e[1] * e[1]));
  EXPECT_EQ(t.scaleY, std::sqrt(e[3] * e[3] + e[4] * e[4]));
  EXPECT_EQ(t.rotation, std::atan2(-e[1] / t.scaleY, e[0] / t.scaleX) * 57.29578f);
}

TEST(VuTransformTest, ARotationByNothingHasNoSign) {
  Matrix flagged = Rotation(0.5f);
  std::copy_n(Matrix().get(), 9, const_cast<float*>(flagged.get()));
  EXPECT_FALSE(std::signbit(VuTransform(flagged).rotation));
}

TEST(VuRect, GrowsMovesAndShrinks) {
  RectI r;
  EXPECT_TRUE(r.isEmpty());
  r.addPoint({3, -4});
  EXPECT_FALSE(r.isEmpty());
  r.addPoint({1, 5});
  r.expand(RectI());
  EXPECT_EQ(r, RectI({1, -4}, {3, 5}));
  r.translate(1, 2);
  EXPECT_EQ(r, RectI({2, -2}, {4, 7}));
  EXPECT_EQ(r.height(), 9);
  r.inset({-1, 5});
  EXPECT_EQ(r, RectI({1, 3}, {5, 2}));
  EXPECT_TRUE(r.isEmpty());
  EXPECT_EQ(r.width(), 0);
}

const RectF kSquare(0, 0, 10, 10);
struct Pair {
  const char* name;
  RectF a = kSquare, b = kSquare;
  bool overlap = false, contains = false;
};
class RectPair : public helpers::Rows<Pair> {};

TEST_P(RectPair, OverlapAndContainment) {
  const auto& [name, a, b, overlap, contains] = GetParam();
  EXPECT_EQ(a.overlaps(b), overlap);
  EXPECT_EQ(b.overlaps(a), overlap);
  EXPECT_EQ(a.contains(b), contains);
}

ROWS(RectPair, {.name = "outside_around", .a{2, 2, 3, 3}, .overlap = true},
     {.name = "inside", .b{2, 2, 3, 3}, .overlap = true, .contains = true},
     {.name = "itself", .overlap = true, .contains = true},
     {.name = "corner_touches", .b{10, 10, 5, 5}, .overlap = true},
     {.name = "beside", .b{11, 0, 5, 5}}, {.name = "below", .b{0, 11, 5, 5}},
     {.name = "crossing", .b{2, -5, 2, 20}, .overlap = true},
     {.name = "point", .b{10, 10, 0, 0}, .overlap = true, .contains = true},
     {.name = "empty_in_it", .b{}}, {.name = "in_an_empty_one", .a{}});

TEST(VuRect, Extremes) {
  // Summed as integers: 2^24 + 1 has no float, 2^24 + 2 does.
  EXPECT_EQ(RectF(VuRect{(1 << 24) + 1, 0, 1, 0}).maxPoint().x(), 16777218.0f);
  EXPECT_EQ(RectI(VuRect{kMax, 0, 1, 0}).maxPoint().x(), kMin);
  EXPECT_EQ(RectI(), RectI({kMax, kMax}, {kMin, kMin}));
  EXPECT_EQ(RectF(), RectF({2147483648.0f, 2147483648.0f}, {-2147483648.0f, -2147483648.0f}));
}

TEST(VuRect, TransformedByKind) {
  const Matrix flip = Scale(-1, -2);
  EXPECT_EQ(RectF({1, 1}, {3, 2}).transform(flip), RectF({-3, -4}, {-1, -2}));
  EXPECT_EQ(RectI({3, 3}, {1, 9}).transform(flip), RectI({3, 3}, {1, 9}));
  EXPECT_EQ(RectI({1, 0}, {3, 2}).transform(Translation(1.75f, -0.75f)), RectI({2, 0}, {4, 1}));
  EXPECT_EQ(RectI(0, 0, 100, 100).transform(Rotation(0.785398163f)), RectI({0, -70}, {141, 70}));
}

}  // namespace
}  // namespace ZIRK
