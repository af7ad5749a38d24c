// What each operation of a font calls is in vubitmap_test.cpp.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "doubles/memorygraphics.h"
#include "helpers/fonts.h"
#include "helpers/logged.h"

namespace ZIRK {
namespace {

using helpers::FontFile;

class Fonts : public testing::Test {
 protected:
  void TearDown() override { VuFont::SetFontOverride(nullptr); }

  /// Height, and how wide 'A' is drawn: an emboldened one is wider.
  static std::string Made(VuFont* font) {
    const std::unique_ptr<VuFont> owned(font);
    doubles::FakeObject<VuBitmapImpl> surface;
    static VuFontImpl* drawn;
    surface.Set(
        30, +[](void*, VuFontImpl* impl) { drawn = impl; });
    VuBitmap(surface.get()).DrawText(*owned, "", VuPoint{}, VuColor{});
    const auto* const atlas = dynamic_cast<VuFontAtlas*>(drawn);
    return std::to_string(font->GetOneLineHeight()) + ' ' +
           std::to_string(atlas->GetGlyph('A', true)->width);
  }
};

TEST_F(Fonts, AreMadeAsAskedFor) {
  const std::string file = FontFile("sans.ttf");
  const char* const path = file.c_str();
  const std::vector<unsigned char> bytes = helpers::FontBytes("sans.ttf");
  const unsigned char* const data = bytes.data();
  const auto size = static_cast<unsigned>(bytes.size());
  const char* const regular = "58 33";
  const char* const bold = "58 34";
  for (const bool overridden : {true, false}) {
    if (overridden) VuFont::SetFontOverride([](auto...) { return nullptr; });
    EXPECT_EQ(Made(new VuFont(path, 0, 48)), regular);
    EXPECT_EQ(Made(new VuFont(path, 0, 48, true, false)), bold);
    EXPECT_EQ(Made(new VuFont(path, 0, 48, false, true)), regular);
    EXPECT_EQ(Made(new VuFont(data, size, 0, 48)), regular);
    EXPECT_EQ(Made(new VuFont(data, size, 0, 48, true, false)), bold);
    EXPECT_EQ(Made(VuFont::CreateFontFromMemory(data, size, 0, 48)), regular);
    EXPECT_EQ(Made(VuFont::CreateFontFromMemoryEx(data, size, 0, 48, true, false)), bold);
    VuFont::SetFontOverride(nullptr);
  }
  EXPECT_EQ(Made(VuFont::CreateFont(path, 0, 48)), regular);
  EXPECT_EQ(Made(VuFont::CreateFontEx(path, 0, 48, true, false)), bold);
}

TEST_F(Fonts, TheOverrideMakesThoseFromFiles) {
  std::string asked;
  VuFont* made = nullptr;
  VuFont::SetFontOverride([&](const char* path, int faceIndex, int size, bool bold, bool italic) {
    asked += path + (' ' + std::to_string(faceIndex)) + ' ' + std::to_string(size) + ' ' +
             (bold ? "bold" : "-") + ' ' + (italic ? "italic\n" : "-\n");
    return made;
  });
  EXPECT_EQ(VuFont::CreateFont("a", 1, 2), nullptr);
  doubles::FakeObject<VuFontImpl> impl;
  VuFont own(impl.get());
  made = &own;
  EXPECT_EQ(VuFont::CreateFontEx("b", -3, 0, true, false), &own);
  EXPECT_EQ(VuFont::CreateFontEx("c", 0, 5, false, true), &own);
  EXPECT_EQ(asked, "a 1 2 - -\nb -3 0 bold -\nc 0 5 - italic\n");
}

TEST_F(Fonts, WithoutAFile) {
  EXPECT_THROW(VuFont::CreateFont(nullptr, 0, 10), std::logic_error);
  const auto make = [] { delete VuFont::CreateFontFromMemory(nullptr, 100, 0, 10); };
  EXPECT_EQ(helpers::LoggedAt(7, make),
            "<ZIRK.error>: VuFontAtlas: Failed to create font buffer\n");
}

}  // namespace
}  // namespace ZIRK
