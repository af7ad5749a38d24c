#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <array>
#include <limits>
#include <utility>

#include "doubles/fakefont.h"

namespace ZIRK {
namespace {

using doubles::Line;

static_assert(sizeof(VuFont) == sizeof(void*), "a handle is its implementation's pointer");

class VuFontTest : public testing::Test {
 protected:
  doubles::Recorder recorder;
  doubles::FakeFont* impl = new doubles::FakeFont(recorder);
  VuFont font{impl};
};

TEST_F(VuFontTest, MetricsAreTheImplementations) {
  int a = 0;
  int b = 0;
  int c = 0;
  int d = 0;
  font.GetFontMetrics(a, b, c, d);
  EXPECT_EQ((std::array{a, b, c, d}), (std::array{1, 2, 3, 4}));
  EXPECT_EQ(font.GetAscent(), 5);
  EXPECT_EQ(font.GetDescent(), 6);
  EXPECT_EQ(font.GetMaxAdvance(), 7);
  font.GetUnderlineMetrics(a, b);
  EXPECT_EQ((std::array{a, b}), (std::array{8, 9}));
  EXPECT_EQ(font.GetOneLineHeight(), 12);
  recorder.Take();
  const char* const text = "text";
  EXPECT_EQ(font.GetOneLineWidth(text), 30);
  EXPECT_EQ(recorder.Take(), Line("GetOneLineWidth", text));
}

TEST_F(VuFontTest, FallbackFontIsPassedByItsImplementation) {
  auto* const otherImpl = new doubles::FakeFont(recorder);
  const VuFont other(otherImpl);
  font.SetFallbackFont(&other);
  font.SetFallbackFont(nullptr);
  const VuFontImpl* const passed = otherImpl;
  const VuFontImpl* const none = nullptr;
  EXPECT_EQ(recorder.Take(), Line("SetFallbackFont", passed) + Line("SetFallbackFont", none));
}

TEST_F(VuFontTest, OutlineThicknessIsCutTo26Dot6) {
  const std::pair<float, int> cases[] = {
      {1.5f, 96},
      {0.01f, 0},
      {-1.99f, -127},
      {1e30f, std::numeric_limits<int>::max()},
      {std::numeric_limits<float>::quiet_NaN(), 0},
  };
  for (const auto& [pixels, stored] : cases) {
    font.SetOutlineThickness(pixels);
    EXPECT_EQ(impl->outlineThickness(), stored) << pixels;
  }
}

TEST_F(VuFontTest, OutlineTypeAndFallbackGlyphAreStored) {
  font.SetOutlineType(VuFont::OutlineType::Outer);
  font.SetFallbackGlyph(0xFFFD);
  EXPECT_EQ(impl->outlineType(), VuFont::OutlineType::Outer);
  EXPECT_EQ(impl->fallbackGlyph(), 0xFFFDu);
}

}  // namespace
}  // namespace ZIRK
