#include <gtest/gtest.h>
#include <zirk/impl/vubitmapimpl.h>
#include <zirk/zirk.h>

#include <functional>
#include <memory>
#include <sstream>

#include "backends/common/oneerror.h"
#include "backends/images/samples.h"
#include "common/surfaceformat.h"
#include "stub/stubgraphics.h"

namespace ZIRK::tests {
namespace {

constexpr auto kArgb = VuPixelFormat::ARGB8888;

/// A context around the plug-in, as an application has it.
class StubPlugIn : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(graphics_); }

  std::unique_ptr<VuBitmap> Bitmap(int width, int height, VuPixelFormat format) {
    return std::unique_ptr<VuBitmap>(graphics_->CreateBitmap(width, height, format));
  }

  const std::unique_ptr<VuGraphics> graphics_{VuGraphics::CreateStub()};
};

TEST_F(StubPlugIn, SaysWhatItIs) {
  EXPECT_EQ(graphics_->GetGraphicsType(), 4);
  EXPECT_EQ(graphics_->GetMaxTextureSize(), backends::kMaxSide);
}

TEST_F(StubPlugIn, GivesScreensTheSizeAskedForOrItsOwn) {
  struct {
    int width, height, expectedWidth, expectedHeight;
  } const cases[] = {{800, 480, 800, 480}, {0, 480, 1280, 720}, {800, -1, 1280, 720}};
  for (const auto& c : cases) {
    const std::unique_ptr<VuBitmap> screen(graphics_->CreateScreen(c.width, c.height, true));
    ASSERT_TRUE(screen);
    EXPECT_EQ(screen->GetBounds().width, c.expectedWidth);
    EXPECT_EQ(screen->GetBounds().height, c.expectedHeight);
  }
  const std::unique_ptr<VuBitmap> screen(graphics_->CreateScreen(true));
  EXPECT_EQ(screen->GetInfo().width, 1280);
  EXPECT_EQ(screen->GetInfo().format, kArgb);
  const std::unique_ptr<VuBitmap> narrow(
      graphics_->CreateScreen(10, 10, false, 0, false, VuPixelFormat::RGB565));
  EXPECT_EQ(narrow->GetInfo().format, VuPixelFormat::RGB565);
}

TEST_F(StubPlugIn, CountsFramesOfScreensOnly) {
  const std::unique_ptr<VuBitmap> screen(graphics_->CreateScreen(64, 64, false));
  const auto bitmap = Bitmap(64, 64, kArgb);
  LogFPS = true;
  EXPECT_EQ(support::LoggedAt(4, [&] { bitmap->SwapBuffers(); }), "");
  // A thread's first frame is reported at once.
  EXPECT_NE(support::LoggedAt(4, [&] { screen->SwapBuffers(); }), "");
  LogFPS = false;
}

TEST_F(StubPlugIn, KeepsTheStateOfASurface) {
  const auto bitmap = Bitmap(30, 20, VuPixelFormat::RGB565);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->GetInfo().pitch, 64);
  EXPECT_EQ(bitmap->GetSize(), 64u * 20);
  EXPECT_EQ(bitmap->GetClippingRect().width, 30);
  VuBlendingFactor src, dst;
  bitmap->GetBlendingFunc(src, dst);
  EXPECT_EQ(src, VuBlendingFactor::One);
  EXPECT_EQ(dst, VuBlendingFactor::OneMinusSrcAlpha);
  EXPECT_TRUE(bitmap->GetBlendEnabled());

  bitmap->SetClippingRect({-1, 2, 300, 4});
  bitmap->SetBlendingFunc(VuBlendingFactor::DstColor, VuBlendingFactor::Zero, VuBlendingFactor::One,
                          VuBlendingFactor::One);
  bitmap->SetBlendEnabled(false);
  bitmap->SetBlendColor(VuColor{0x12345678});
  bitmap->SetScaleMode(VuScaleMode::Bilinear);
  EXPECT_EQ(bitmap->GetClippingRect().x, -1);
  EXPECT_EQ(bitmap->GetClippingRect().width, 300);
  bitmap->GetBlendingFunc(src, dst);
  EXPECT_EQ(src, VuBlendingFactor::DstColor);
  EXPECT_EQ(dst, VuBlendingFactor::Zero);
  EXPECT_FALSE(bitmap->GetBlendEnabled());
  EXPECT_EQ(bitmap->GetBlendColor().argb, 0x12345678u);
  EXPECT_EQ(bitmap->GetScaleMode(), VuScaleMode::Bilinear);
}

TEST_F(StubPlugIn, AcceptsPixelsThatOtherBackendsWould) {
  const auto bitmap = Bitmap(4, 3, kArgb);
  const auto other = Bitmap(4, 3, kArgb);
  uint32_t pixels[12];
  std::fill(std::begin(pixels), std::end(pixels), 0x11111111u);
  EXPECT_TRUE(bitmap->SetPixels({1, 1, 3, 2}, pixels, 12));
  EXPECT_TRUE(bitmap->GetPixels({1, 1, 3, 2}, pixels));
  EXPECT_EQ(pixels[5], 0u);
  EXPECT_EQ(pixels[6], 0x11111111u);
  EXPECT_TRUE(bitmap->CopyPixels({0, 0}, *other, {0, 0, 4, 3}));

  const VuRect outside[] = {{-1, 0, 2, 2}, {2, 0, 3, 1}, {0, 0, -1, 1}, {1, 1, INT32_MAX, 1}};
  for (const VuRect& rect : outside) {
    EXPECT_FALSE(bitmap->GetPixels(rect, pixels)) << rect.x << ", " << rect.width;
    EXPECT_FALSE(bitmap->SetPixels(rect, pixels, 16)) << rect.x << ", " << rect.width;
  }
  EXPECT_FALSE(bitmap->GetPixels({0, 0, 1, 1}, nullptr));
  EXPECT_FALSE(bitmap->SetPixels({0, 0, 1, 1}, nullptr, 4));
}

TEST_F(StubPlugIn, LocksOnceAtATime) {
  const auto bitmap = Bitmap(4, 3, kArgb);
  EXPECT_FALSE(bitmap->Unlock());
  EXPECT_TRUE(bitmap->Lock());
  EXPECT_FALSE(bitmap->Lock(false));
  EXPECT_EQ(bitmap->GetInfo().pixels, nullptr);
  EXPECT_TRUE(bitmap->Unlock());
}

TEST_F(StubPlugIn, TakesSizesFromPictures) {
  const std::vector<uint8_t> bytes = ReadSample("rgb.jpg");
  const auto size = static_cast<unsigned>(bytes.size());
  const char* path = ZIRK_TEST_IMAGES "rgba8.png";
  const auto expect = [](VuBitmap* created, int width, int height, unsigned asked) {
    const std::unique_ptr<VuBitmap> bitmap(created);
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->GetBounds().width, width);
    EXPECT_EQ(bitmap->GetBounds().height, height);
    EXPECT_EQ(bitmap->GetInfo().format, kArgb);
    EXPECT_EQ(bitmap->GetSize(), asked);
  };
  expect(graphics_->CreateBitmapFromFile(path), 29, 19, graphics_->BitmapSize(path));
  expect(graphics_->CreateBitmapFromFile(path, 40, 50, VuScaleMode::Bilinear), 40, 50,
         graphics_->BitmapSize(path, 40, 50));
  expect(graphics_->CreateBitmapFromFile(path, 58, 99, VuScaleMode::Bilinear, VuDisplayMode::Fit),
         58, 38, graphics_->BitmapSize(58, 38, kArgb));
  expect(graphics_->CreateBitmapFromMemory(bytes.data(), size), 29, 19,
         graphics_->BitmapSize(bytes.data(), size));
  expect(graphics_->CreateBitmapFromMemory(bytes.data(), size, 7, 8, VuScaleMode::Nearest), 7, 8,
         graphics_->BitmapSize(bytes.data(), size, 7, 8));
}

TEST_F(StubPlugIn, ReportsWhatItCannotReadOnce) {
  const char* missing = ZIRK_TEST_IMAGES "missing.png";
  const std::function<bool()> attempts[] = {
      [&] { return graphics_->CreateBitmapFromFile(missing) != nullptr; },
      [&] {
        return graphics_->CreateBitmapFromFile(missing, 5, 5, VuScaleMode::Nearest) != nullptr;
      },
      [&] { return graphics_->BitmapSize(missing) != 0; },
      [&] { return graphics_->BitmapSize(missing, 5, 5) != 0; },
  };
  for (const auto& succeeds : attempts) {
    EXPECT_TRUE(LogsOneError(missing, [&] { EXPECT_FALSE(succeeds()); }));
  }
  EXPECT_TRUE(LogsOneError("image in memory (10 bytes)", [&] {
    EXPECT_EQ(graphics_->CreateBitmapFromMemory(nullptr, 10), nullptr);
  }));
}

TEST_F(StubPlugIn, ListsWhatIsAlive) {
  std::ostringstream full, empty;
  {
    const auto bitmap = Bitmap(100, 10, kArgb);
    bitmap->SetName("wall");
    graphics_->PrintBitmapList(full);
  }
  graphics_->PrintBitmapList(empty);
  EXPECT_NE(full.str().find("\"wall\" 100x10"), std::string::npos) << full.str();
  EXPECT_EQ(empty.str(), "");
}

// With a limit of its own the context is made here, from the plug-in's source.
TEST(StubGraphics, RefusesWhatExceedsItsMemory) {
  backends::StubGraphics graphics(4000);
  EXPECT_EQ(graphics.BitmapSize(-1, 10, kArgb), 0u);
  std::unique_ptr<VuBitmapImpl> most(graphics.CreateBitmap(30, 20, kArgb));
  ASSERT_TRUE(most);
  EXPECT_EQ(graphics.BitmapSize(30, 20, kArgb), most->GetSize());
  EXPECT_EQ(graphics.AvailableMemory(), 4000 - most->GetSize());
  EXPECT_EQ(graphics.TotalMemory(), 4000u);
  const char* path = ZIRK_TEST_IMAGES "rgb8.png";
  EXPECT_TRUE(LogsOneError(path, [&] { EXPECT_EQ(graphics.CreateBitmapFromFile(path), nullptr); }));
  EXPECT_TRUE(
      LogsOneError("1280 x 720", [&] { EXPECT_EQ(graphics.CreateScreen(false), nullptr); }));
  most.reset();
  EXPECT_EQ(graphics.AvailableMemory(), 4000u);
}

}  // namespace
}  // namespace ZIRK::tests
