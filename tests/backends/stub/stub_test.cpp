#include <zirk/zirk.h>

#include <memory>
#include <thread>

#include "helpers/logged.h"

namespace ZIRK::tests {
namespace {

using Bitmap = std::unique_ptr<VuBitmap>;
constexpr auto kArgb = VuPixelFormat::ARGB8888;

/// A context around the plug-in, as an application has it.
class StubPlugIn : public testing::Test {
 protected:
  const std::unique_ptr<VuGraphics> graphics_{VuGraphics::CreateStub()};
};

TEST_F(StubPlugIn, GivesScreensTheSizeAskedForOrItsOwn) {
  const auto bytes = [&](int width, int height) {
    return Bitmap(graphics_->CreateScreen(width, height, true, 0, false, VuPixelFormat::RGB565))
        ->GetSize();
  };
  EXPECT_EQ(bytes(800, 480), 800u * 480 * 2);
  EXPECT_EQ(bytes(0, 480), 1280u * 720 * 2);
  EXPECT_EQ(bytes(800, -1), 1280u * 720 * 2);
  EXPECT_EQ(Bitmap(graphics_->CreateScreen(true))->GetSize(), 1280u * 720 * 4);
}

TEST_F(StubPlugIn, CountsFrames) {
  const Bitmap screen(graphics_->CreateScreen(64, 64, false));
  LogFPS = true;
  // A thread's first frame is reported at once.
  const auto frame = [&] { std::thread([&] { screen->SwapBuffers(); }).join(); };
  EXPECT_NE(helpers::LoggedAt(4, frame), "");
  LogFPS = false;
}

TEST_F(StubPlugIn, AcceptsPixelsThatOtherBackendsWould) {
  const Bitmap bitmap(graphics_->CreateBitmap(4, 3, kArgb));
  uint32_t pixels[] = {1, 1, 1, 1, 1, 1, 1};
  EXPECT_TRUE(bitmap->SetPixels({1, 1, 3, 2}, pixels, 12));
  EXPECT_TRUE(bitmap->GetPixels({1, 1, 3, 2}, pixels));
  EXPECT_EQ(pixels[5], 0u);
  EXPECT_EQ(pixels[6], 1u);
  EXPECT_FALSE(bitmap->GetPixels({2, 0, 3, 1}, pixels));
  EXPECT_FALSE(bitmap->SetPixels({2, 0, 3, 1}, pixels, 16));
  EXPECT_FALSE(bitmap->GetPixels({0, 0, 1, 1}, nullptr));
}

}  // namespace
}  // namespace ZIRK::tests
