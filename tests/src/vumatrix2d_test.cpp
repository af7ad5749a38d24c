#include <gtest/gtest.h>
#include <zirk/vumatrix2d.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "support/logged.h"

namespace ZIRK {

void PrintTo(const VuTMatrix2D<float>& m, std::ostream* os) {
  for (int i = 0; i < 9; ++i) *os << m.get()[i] << ' ';
  *os << m.hasTranslation() << m.hasScale() << m.hasRotation();
}

namespace {

using Matrix = VuTMatrix2D<float>;
using Vector = VuTVector2D<float>;
using VectorI = VuTVector2D<int>;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

std::array<float, 9> Elements(const Matrix& m) {
  std::array<float, 9> e{};
  std::copy(m.get(), m.get() + 9, e.begin());
  return e;
}

Matrix Translation(float x, float y) {
  Matrix m;
  m.translate({x, y});
  return m;
}
Matrix Scale(float x, float y) {
  Matrix m;
  m.scale({x, y});
  return m;
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

std::array<float, 9> FullProduct(const Matrix& a, const Matrix& b) {
  const float* const p = a.get();
  const float* const q = b.get();
  return {p[0] * q[0] + p[1] * q[3],        p[0] * q[1] + p[1] * q[4],        0,
          p[3] * q[0] + p[4] * q[3],        p[3] * q[1] + p[4] * q[4],        0,
          p[6] * q[0] + p[7] * q[3] + q[6], p[6] * q[1] + p[7] * q[4] + q[7], 1};
}

TEST(VuMatrix, EveryShortcutEqualsTheFullProduct) {
  for (const Matrix& a : EveryKind()) {
    for (const Matrix& b : EveryKind()) {
      Matrix right = a;
      right.multRight(b);
      EXPECT_EQ(Elements(right), FullProduct(a, b))
          << testing::PrintToString(a) << " right by " << testing::PrintToString(b);
      Matrix left = b;
      left.multLeft(a);
      EXPECT_EQ(left, right);
      EXPECT_EQ(a * b, right);
      EXPECT_EQ(right.hasTranslation(), a.hasTranslation() || b.hasTranslation());
      EXPECT_EQ(right.hasScale(), a.hasScale() || b.hasScale());
      EXPECT_EQ(right.hasRotation(), a.hasRotation() || b.hasRotation());
    }
  }
}

TEST(VuMatrix, MultipliesByItself) {
  for (const Matrix& m : EveryKind()) {
    Matrix square = m;
    square *= square;
    EXPECT_EQ(square, m * m);
    square = m;
    square.multLeft(square);
    EXPECT_EQ(square, m * m);
  }
}

TEST(VuMatrix, ProductsLeaveTheThirdColumnAlone) {
  Matrix odd = Rotation(1);
  for (const int i : {2, 5, 8}) const_cast<float*>(odd.get())[i] = 0.25f;
  for (const Matrix& m : EveryKind()) {
    Matrix product = odd;
    product.multRight(m);
    product.multLeft(m);
    for (const int i : {2, 5, 8}) EXPECT_EQ(product.get()[i], 0.25f);
  }
}

TEST(VuMatrix, NeutralStepsSetNoFlag) {
  Matrix m;
  m.translate({0, -0.0f});
  m.scale({1, 1});
  m.rotate(0);
  EXPECT_TRUE(m.isIdentity());
  EXPECT_EQ(Elements(m), Elements(Matrix()));
}

TEST(VuMatrix, FlagsStay) {
  Matrix m;
  m.rotate(0.7f);
  m.rotate(-0.7f);
  EXPECT_TRUE(m.hasRotation());
  EXPECT_FALSE(m.isIdentity());
  EXPECT_NEAR(m.get()[1], 0, 1e-6);
  m.makeIdentity();
  EXPECT_TRUE(m.isIdentity());
  EXPECT_EQ(m, Matrix());
}

TEST(VuMatrix, StepsArePrepended) {
  Matrix m;
  m.translate({5, 0});
  m.scale({2, 2});
  EXPECT_EQ(Elements(m), (std::array<float, 9>{2, 0, 0, 0, 2, 0, 5, 0, 1}));
  EXPECT_EQ(m.transformVector(Vector(1, 1)), Vector(7, 2));
}

TEST(VuMatrix, RotatesInDoublePrecision) {
  const float angle = 100.25f;
  const Matrix m = Rotation(angle);
  const auto s = static_cast<float>(std::sin(double{angle}));
  const auto c = static_cast<float>(std::cos(double{angle}));
  EXPECT_EQ(Elements(m), (std::array<float, 9>{c, -s, 0, s, c, 0, 0, 0, 1}));
}

TEST(VuMatrix, ComparesBitsAndFlags) {
  EXPECT_NE(Scale(0, 2), Scale(-0.0f, 2));
  EXPECT_EQ(Scale(kNaN, 2), Scale(kNaN, 2));
  Matrix flagged = Scale(2, 2);
  flagged.scale({0.5f, 0.5f});
  EXPECT_EQ(Elements(flagged), Elements(Matrix()));
  EXPECT_NE(flagged, Matrix());
}

TEST(VuMatrix, InversesBySpecialCase) {
  struct Case {
    const char* name;
    Matrix m;
    std::array<float, 9> inverse;
  };
  const Matrix r = Rotation(0.5f);
  const Case cases[] = {
      {"identity", Matrix(), {1, 0, 0, 0, 1, 0, 0, 0, 1}},
      {"translation", Translation(3, -5), {1, 0, 0, 0, 1, 0, -3, 5, 1}},
      {"scale", Scale(2, -4), {0.5f, 0, 0, 0, -0.25f, 0, 0, 0, 1}},
      {"no scale", Scale(0, 2), {kInfinity, 0, 0, 0, 0.5f, 0, 0, 0, 1}},
      {"scale and translation",
       Scale(2, -4) * Translation(3, -5),
       {0.5f, 0, 0, 0, -0.25f, 0, -1.5f, -1.25f, 1}},
      {"rotation", r, {r.get()[0], r.get()[3], 0, r.get()[1], r.get()[4], 0, 0, 0, 1}},
  };
  for (const Case& test : cases) {
    const Matrix inverse = test.m.inverse();
    EXPECT_EQ(Elements(inverse), test.inverse) << test.name;
    EXPECT_EQ(inverse.hasTranslation(), test.m.hasTranslation()) << test.name;
    EXPECT_EQ(inverse.hasScale(), test.m.hasScale()) << test.name;
    EXPECT_EQ(inverse.hasRotation(), test.m.hasRotation()) << test.name;
  }
}

TEST(VuMatrix, GeneralInverse) {
  const Matrix m = Rotation(0.5f) * Scale(2, -4) * Translation(3, -5);
  const Matrix inverse = m.inverse();
  const Matrix product = m * inverse;
  for (int i = 0; i < 9; ++i) EXPECT_NEAR(product.get()[i], Matrix().get()[i], 1e-5) << i;
  EXPECT_TRUE((Rotation(0.5f) * Translation(1, 1)).inverse().hasScale());
}

TEST(VuMatrix, SingularMatrixInvertsToTheIdentity) {
  const Matrix singular = Rotation(0.5f) * Scale(0, 0) * Translation(3, 4);
  EXPECT_EQ(singular.inverse(), Matrix());
  EXPECT_TRUE(singular.inverse().isIdentity());
}

TEST(VuMatrix, Decomposes) {
  Vector scale;
  Vector translation;
  float angle = 9;
  (Scale(-2, 3) * Translation(4, 5)).decompose(scale, angle, translation);
  EXPECT_EQ(scale, Vector(-2, 3));
  EXPECT_EQ(angle, 0);
  EXPECT_EQ(translation, Vector(4, 5));

  Rotation(0.5f).decompose(scale, angle, translation);
  EXPECT_EQ(scale, Vector(1, 1));
  EXPECT_FLOAT_EQ(angle, 0.5f);

  // With two scales the angle mixes them: -m[1] over the second, m[0] over the first.
  const Matrix m = Rotation(0.5f) * Scale(2, 5);
  m.decompose(scale, angle, translation);
  const float* const e = m.get();
  EXPECT_EQ(scale.x(), std::sqrt(e[0] * e[0] + e[1] * e[1]));
  EXPECT_EQ(scale.y(), std::sqrt(e[3] * e[3] + e[4] * e[4]));
  EXPECT_EQ(angle, std::atan2(-e[1] / scale.y(), e[0] / scale.x()));
}

TEST(VuMatrix, TransformsIntegersByTruncation) {
  EXPECT_EQ(Scale(0.6f, 0.6f).transformVector(VectorI(1, 1)), VectorI(0, 0));
  EXPECT_EQ(Scale(-0.6f, -1.9f).transformVector(VectorI(1, 1)), VectorI(0, -1));
  EXPECT_EQ(Scale(1e20f, -1e20f).transformVector(VectorI(1, 1)),
            VectorI(std::numeric_limits<int>::max(), std::numeric_limits<int>::min()));
  EXPECT_EQ(Scale(kNaN, 1).transformVector(VectorI(1, 1)), VectorI(0, 1));
}

TEST(VuMatrix, TransformsByKind) {
  for (const Matrix& m : EveryKind()) {
    const float* const e = m.get();
    EXPECT_EQ(m.transformVector(Vector(7, 11)),
              Vector(7 * e[0] + 11 * e[3] + e[6], 7 * e[1] + 11 * e[4] + e[7]))
        << testing::PrintToString(m);
  }
}

TEST(VuMatrix, Elements) {
  const Matrix m = Scale(2, 3) * Translation(4, 5);
  EXPECT_EQ(m.getElement(1, 1), 3);
  EXPECT_EQ(m.getElement(2, 0), 4);
}

TEST(VuMatrixDeathTest, ElementsOutside) {
  const Matrix m;
  EXPECT_DEATH(m.getElement(3, 0), "src/vumatrix2d.cpp:[0-9]+: .*Assertion `row < 3' failed");
  EXPECT_DEATH(m.getElement(0, 3), "src/vumatrix2d.cpp:[0-9]+: .*Assertion `col < 3' failed");
}

TEST(VuMatrix, Prints) {
  const Matrix m = Scale(2, 3) * Translation(40.5f, -5);
  EXPECT_EQ(support::LoggedAt(3, [&] { m.print("view"); }),
            "<ZIRK.error>: matrix view 1:  2.000  0.000  0.000\n"
            "<ZIRK.error>: matrix view 2:  0.000  3.000  0.000\n"
            "<ZIRK.error>: matrix view 3: 40.500 -5.000  1.000\n");
  EXPECT_EQ(support::LoggedAt(2, [&] { m.print("view"); }), "");
  EXPECT_NE(support::LoggedAt(3, [&] { m.print(); }).find("matrix (null) 1:"), std::string::npos);
}

TEST(VuVector, Arithmetic) {
  Vector v(1, 2);
  v.translateX(3);
  v.translateY(-1);
  EXPECT_EQ(v, Vector(4, 1));
  EXPECT_EQ(v * 3, Vector(12, 3));
  EXPECT_EQ(v * 0.5f, Vector(2, 0.5f));
  EXPECT_EQ(v + Vector(1, 1) - Vector(0, 5), Vector(5, -3));
  EXPECT_EQ(Vector(0, 0), Vector(-0.0f, 0));
  EXPECT_NE(Vector(kNaN, 0), Vector(kNaN, 0));
}

}  // namespace
}  // namespace ZIRK
