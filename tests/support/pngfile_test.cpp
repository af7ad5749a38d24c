#include "support/pngfile.h"

#include <gtest/gtest.h>
#include <zirk/zirk.h>

#include <memory>
#include <string>

namespace ZIRK::support {
namespace {

TEST(PngFile, ShowsEveryFormatUnpremultiplied) {
  using Values = std::vector<uint32_t>;
  const struct {
    VuPixelFormat format;
    Values stored, expected;
  } cases[] = {
      {VuPixelFormat::ARGB8888, {0xFF123456, 0x80402010, 0}, {0xFF123456, 0x80804020, 0}},
      {VuPixelFormat::XRGB8888, {0x00123456, 0x80402010, 0}, {0xFF123456, 0xFF402010, 0xFF000000}},
      {VuPixelFormat::RGB565, {0xF800, 0x07E0, 0x8410}, {0xFFFF0000, 0xFF00FF00, 0xFF848284}},
      {VuPixelFormat::ARGB4444, {0xF123, 0x8420, 0}, {0xFF112233, 0x88804000, 0}},
      {VuPixelFormat::ARGB1555, {0xFC00, 0x801F, 0}, {0xFFFF0000, 0xFF0000FF, 0}},
      {VuPixelFormat::A8, {0xFF, 0x40, 0}, {0xFFFFFFFF, 0x40FFFFFF, 0x00FFFFFF}},
  };
  const std::string path = testing::TempDir() + "zirk_pngfile_test.png";
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  for (const auto& c : cases) {
    const std::unique_ptr<VuBitmap> bitmap(graphics->CreateBitmap(2, 3, c.format));
    for (int y = 0; y < 3; ++y) bitmap->SetPixels({1, y, 1, 1}, &c.stored.at(y), 4);
    ASSERT_TRUE(WritePng(path.c_str(), *bitmap));
    const std::optional<Picture> read = ReadPng(path.c_str());
    ASSERT_TRUE(read && read->width == 2 && read->height == 3);
    EXPECT_EQ(Values({read->pixels[1], read->pixels[3], read->pixels[5]}), c.expected);
  }
}

}  // namespace
}  // namespace ZIRK::support
