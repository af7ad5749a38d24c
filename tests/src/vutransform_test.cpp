#include <gtest/gtest.h>
#include <zirk/vumatrix2d.h>
#include <zirk/vutransform.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace ZIRK {
namespace {

using Matrix = VuTMatrix2D<float>;

std::array<float, 5> Fields(const VuTransform& t) {
  return {t.translateX, t.translateY, t.scaleX, t.scaleY, t.rotation};
}

TEST(VuTransformTest, OfTheIdentity) {
  const VuTransform t{Matrix()};
  EXPECT_EQ(Fields(t), (std::array<float, 5>{0, 0, 1, 1, 0}));
  EXPECT_FALSE(std::signbit(t.rotation));
}

TEST(VuTransformTest, RoundTrips) {
  const VuTransform cases[] = {
      {10, 20, 1, 1, 0}, {10, 20, -2, 3, 0}, {0, 0, 2, 2, 90}, {5, 6, 1, 1, -30}};
  for (const VuTransform& t : cases) {
    const std::array<float, 5> back = Fields(VuTransform(Matrix(t)));
    for (size_t i = 0; i < 5; ++i) EXPECT_NEAR(back[i], Fields(t)[i], 1e-5) << i;
  }
}

TEST(VuTransformTest, BuildsOnlyWhatIsNeeded) {
  const Matrix m(VuTransform(0, 5, 1, 1, 0));
  EXPECT_TRUE(m.hasTranslation());
  EXPECT_FALSE(m.hasScale());
  EXPECT_FALSE(m.hasRotation());
}

TEST(VuTransformTest, RotatesThenScalesThenTranslates) {
  Matrix m;
  m.translate({7, 8});
  m.scale({2, 3});
  m.rotate(static_cast<float>(33.0f * 3.141592653589793 / 180.0));
  EXPECT_EQ(Matrix(VuTransform(7, 8, 2, 3, 33)), m);
}

TEST(VuTransformTest, DegreesComeFromTheSinglePrecisionFactor) {
  const float perRadian = 57.29578f;
  uint32_t bits = 0;
  std::memcpy(&bits, &perRadian, sizeof bits);
  EXPECT_EQ(bits, 0x42652EE1u);
  Matrix m;
  m.rotate(1.25f);
  VuTVector2D<float> scale;
  VuTVector2D<float> translation;
  float angle = 0;
  m.decompose(scale, angle, translation);
  EXPECT_EQ(VuTransform(m).rotation, angle * perRadian);
}

TEST(VuTransformTest, ARotationByNothingHasNoSign) {
  Matrix m;
  m.rotate(0.5f);
  const Matrix identity;
  std::copy(identity.get(), identity.get() + 9, const_cast<float*>(m.get()));
  ASSERT_TRUE(m.hasRotation());
  EXPECT_EQ(VuTransform(m).rotation, 0);
  EXPECT_FALSE(std::signbit(VuTransform(m).rotation));
}

}  // namespace
}  // namespace ZIRK
