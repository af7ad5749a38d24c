#include <gmock/gmock.h>
#include <zirk/backend.h>

#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "doubles/mocks.h"
#include "helpers/fonts.h"
#include "helpers/logged.h"

namespace ZIRK {
namespace {

using testing::_;
using testing::An;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// The height of `font`, which is deleted, and how wide its 'A' is drawn: bold ones are wider.
std::pair<int, int> Made(VuFont* font) {
  const std::unique_ptr<VuFont> owned(font);
  auto* const surface = new doubles::Bitmap;
  VuFontImpl* impl = nullptr;
  EXPECT_CALL(*surface, DrawText(_, _, _, _, An<VuTransform>(), _, _, _))
      .WillOnce(testing::SaveArg<0>(&impl));
  VuBitmap(surface).DrawText(*owned, "", VuPoint{}, VuColor{});
  return {font->GetOneLineHeight(), dynamic_cast<VuFontAtlas&>(*impl).GetGlyph('A', true)->width};
}

class Fonts : public testing::Test {
 protected:
  void TearDown() override { VuFont::SetFontOverride(nullptr); }

  const std::string file = helpers::FontFile("sans.ttf");
  const char* const path = file.c_str();
  const std::vector<unsigned char> bytes = helpers::FontBytes("sans.ttf");
  const unsigned char* const data = bytes.data();
  const unsigned size = static_cast<unsigned>(bytes.size());
  const std::pair<int, int> regular{58, 33}, bold{58, 34};
};

TEST_F(Fonts, OfFiles) {
  EXPECT_EQ(Made(VuFont::CreateFont(path, 0, 48)), regular);
  EXPECT_EQ(Made(VuFont::CreateFontEx(path, 0, 48, true, false)), bold);
}

TEST_F(Fonts, WhateverTheOverride) {
  VuFont::SetFontOverride([](auto...) { return nullptr; });
  EXPECT_EQ(Made(new VuFont(path, 0, 48)), regular);
  EXPECT_EQ(Made(new VuFont(path, 0, 48, true, false)), bold);
  EXPECT_EQ(Made(new VuFont(path, 0, 48, false, true)), regular);
  EXPECT_EQ(Made(new VuFont(data, size, 0, 48)), regular);
  EXPECT_EQ(Made(new VuFont(data, size, 0, 48, true, false)), bold);
  EXPECT_EQ(Made(VuFont::CreateFontFromMemory(data, size, 0, 48)), regular);
  EXPECT_EQ(Made(VuFont::CreateFontFromMemoryEx(data, size, 0, 48, true, false)), bold);
}

TEST_F(Fonts, TheOverrideMakesThoseFromFiles) {
  testing::MockFunction<VuFont*(const char*, int, int, bool, bool)> make;
  VuFont::SetFontOverride(make.AsStdFunction());
  VuFont own(new doubles::Font);
  EXPECT_CALL(make, Call(path, 1, 2, false, false));
  EXPECT_EQ(VuFont::CreateFont(path, 1, 2), nullptr);
  EXPECT_CALL(make, Call(path, -3, 0, true, false)).WillOnce(testing::Return(&own));
  EXPECT_EQ(VuFont::CreateFontEx(path, -3, 0, true, false), &own);
  EXPECT_CALL(make, Call(path, 0, 5, false, true)).WillOnce(testing::Return(&own));
  EXPECT_EQ(VuFont::CreateFontEx(path, 0, 5, false, true), &own);
}

TEST_F(Fonts, WithoutAFile) {
  EXPECT_THROW(delete VuFont::CreateFont(nullptr, 0, 10), std::logic_error);
  const auto make = [] { delete VuFont::CreateFontFromMemory(nullptr, 100, 0, 10); };
  EXPECT_EQ(helpers::LoggedAt(7, make),
            "<ZIRK.error>: VuFontAtlas: Failed to create font buffer\n");
}

TEST(FontImplementation, StoresTheOutlineInPartsOf64) {
  doubles::Font font;
  font.SetOutlineType(VuFont::OutlineType{2});
  EXPECT_EQ(font.outlineType_, VuFont::OutlineType{2});
  font.SetFallbackGlyph(0xFFFD);
  EXPECT_EQ(font.fallbackGlyph_, 0xFFFDu);
  const std::pair<float, int> cases[] = {
      {1.5f, 96}, {0.01f, 0}, {-1.99f, -127}, {1e30f, 0x7FFFFFFF}, {kNaN, 0}};
  for (const auto& [pixels, stored] : cases) {
    font.SetOutlineThickness(pixels);
    EXPECT_EQ(font.outlineThickness_, stored);
  }
}

}  // namespace
}  // namespace ZIRK
