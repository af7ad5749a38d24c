#include "support/pngfile.h"

#include <gtest/gtest.h>
#include <zirk/zirk.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace ZIRK::examples {
namespace {

class PngFile : public testing::Test {
 protected:
  std::unique_ptr<VuBitmap> MakeBitmap(int width, int height, VuPixelFormat format) {
    return std::unique_ptr<VuBitmap>(graphics_->CreateBitmap(width, height, format));
  }

  const std::string path_ = testing::TempDir() + "zirk_pngfile_test.png";

 private:
  const std::unique_ptr<VuGraphics> graphics_{VuGraphics::Create("FB", false)};
};

TEST_F(PngFile, ShowsEveryFormatUnpremultiplied) {
  const struct {
    const char* name;
    VuPixelFormat format;
    uint32_t stored[3], expected[3];
  } cases[] = {
      {"ARGB8888",
       VuPixelFormat::ARGB8888,
       {0xFF123456, 0x80402010, 0x00000000},
       {0xFF123456, 0x80804020, 0x00000000}},
      {"XRGB8888",
       VuPixelFormat::XRGB8888,
       {0x00123456, 0xFFFFFFFF, 0x80402010},
       {0xFF123456, 0xFFFFFFFF, 0xFF402010}},
      {"RGB565",
       VuPixelFormat::RGB565,
       {0xF800, 0x07E0, 0x8410},
       {0xFFFF0000, 0xFF00FF00, 0xFF848284}},
      {"ARGB4444",
       VuPixelFormat::ARGB4444,
       {0xF123, 0x8420, 0x0000},
       {0xFF112233, 0x88804000, 0x00000000}},
      {"ARGB1555",
       VuPixelFormat::ARGB1555,
       {0xFC00, 0x801F, 0x0000},
       {0xFFFF0000, 0xFF0000FF, 0x00000000}},
      {"A8", VuPixelFormat::A8, {0xFF, 0x40, 0x00}, {0xFFFFFFFF, 0x40FFFFFF, 0x00FFFFFF}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const auto bitmap = MakeBitmap(3, 1, c.format);
    for (int x = 0; x < 3; ++x) ASSERT_TRUE(bitmap->SetPixels({x, 0, 1, 1}, &c.stored[x], 4));
    ASSERT_TRUE(WritePng(path_.c_str(), *bitmap));
    const std::optional<Picture> read = ReadPng(path_.c_str());
    ASSERT_TRUE(read);
    ASSERT_EQ(read->width, 3);
    ASSERT_EQ(read->height, 1);
    for (size_t x = 0; x < 3; ++x)
      EXPECT_EQ(read->pixels[x], c.expected[x]) << x << std::hex << ": " << read->pixels[x];
  }
}

TEST_F(PngFile, KeepsSizesAndRows) {
  const Picture picture{3, 2, {1, 0xFF000002, 3, 0xFFFFFF04, 5, 0x7F000006}};
  ASSERT_TRUE(WritePng(path_.c_str(), picture));
  const std::optional<Picture> read = ReadPng(path_.c_str());
  ASSERT_TRUE(read);
  EXPECT_EQ(read->width, 3);
  EXPECT_EQ(read->height, 2);
  EXPECT_EQ(read->pixels, picture.pixels);
}

TEST_F(PngFile, SaysWhatItCannotReadOrWrite) {
  testing::internal::CaptureStderr();
  EXPECT_FALSE(ReadPng("/nonexistent/picture.png"));
  EXPECT_FALSE(WritePng("/nonexistent/picture.png", Picture{1, 1, {0}}));
  const std::string lines = testing::internal::GetCapturedStderr();
  EXPECT_EQ(lines,
            "/nonexistent/picture.png: No such file or directory\n"
            "/nonexistent/picture.png: No such file or directory\n");
}

}  // namespace
}  // namespace ZIRK::examples
