#include "stub/stubgraphics.h"
#include "support/logged.h"

#include <zirk/impl/vubitmapimpl.h>
#include <zirk/zirk.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <sstream>

namespace ZIRK::tests {
namespace {

using support::LogsOneError;
using Bitmap = std::unique_ptr<VuBitmap>;
constexpr auto kArgb = VuPixelFormat::ARGB8888;
const char* const kPath = ZIRK_TEST_IMAGES "rgba8.png";  // 29 x 19.

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
  EXPECT_NE(support::LoggedAt(4, [&] { screen->SwapBuffers(); }), "");
  LogFPS = false;
}

TEST_F(StubPlugIn, KeepsTheStateOfASurface) {
  const Bitmap bitmap(graphics_->CreateBitmap(30, 20, VuPixelFormat::RGB565));
  EXPECT_EQ(bitmap->GetInfo().pitch, 64);
  bitmap->SetClippingRect({-1, 2, 300, 4});
  EXPECT_EQ(bitmap->GetClippingRect().width, 300);
  bitmap->SetBlendingFunc(VuBlendingFactor::DstColor, VuBlendingFactor::Zero);
  VuBlendingFactor src, dst;
  bitmap->GetBlendingFunc(src, dst);
  EXPECT_EQ(std::pair(src, dst), std::pair(VuBlendingFactor::DstColor, VuBlendingFactor::Zero));
  bitmap->SetBlendEnabled(false);
  EXPECT_FALSE(bitmap->GetBlendEnabled());
  bitmap->SetBlendColor(VuColor{0x12345678});
  EXPECT_EQ(bitmap->GetBlendColor().argb, 0x12345678u);
  bitmap->SetScaleMode(VuScaleMode::Bilinear);
  EXPECT_EQ(bitmap->GetScaleMode(), VuScaleMode::Bilinear);
  EXPECT_FALSE(bitmap->Unlock());
  EXPECT_TRUE(bitmap->Lock());
  EXPECT_FALSE(bitmap->Lock(false));
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

TEST_F(StubPlugIn, TakesSizesFromPictures) {
  std::ifstream in(kPath, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(in), {});
  const auto size = static_cast<unsigned>(bytes.size());
  const auto expect = [&](VuBitmap* created, unsigned asked, int width, int height) {
    const VuRect bounds = Bitmap(created)->GetBounds();
    EXPECT_EQ(std::pair(bounds.width, bounds.height), std::pair(width, height));
    EXPECT_EQ(asked, graphics_->BitmapSize(width, height, kArgb));
  };
  auto& g = *graphics_;
  expect(g.CreateBitmapFromFile(kPath), g.BitmapSize(kPath), 29, 19);
  expect(g.CreateBitmapFromFile(kPath, 58, 99, {}, VuDisplayMode::Fit), g.BitmapSize(kPath, 58, 38),
         58, 38);
  expect(g.CreateBitmapFromMemory(bytes.data(), size), g.BitmapSize(bytes.data(), size), 29, 19);
  expect(g.CreateBitmapFromMemory(bytes.data(), size, 7, 8, {}),
         g.BitmapSize(bytes.data(), size, 7, 8), 7, 8);
}

// With a limit of its own the context is made here, from the plug-in's source.
TEST(StubGraphics, ReportsOnceWhatItCannotReadOrHasNoMemoryFor) {
  backends::StubGraphics graphics(4000);
  const std::unique_ptr<VuBitmapImpl> most(graphics.CreateBitmap(30, 20, kArgb));
  EXPECT_EQ(graphics.AvailableMemory(), 4000 - most->GetSize());
  const struct {
    const char* message;
    std::function<bool()> succeeds;
  } attempts[] = {
      {"no.png", [&] { return graphics.CreateBitmapFromFile("no.png"); }},
      {"in memory (10 bytes)", [&] { return graphics.CreateBitmapFromMemory(nullptr, 10); }},
      {kPath, [&] { return graphics.CreateBitmapFromFile(kPath); }},
      {"1280 x 720", [&] { return graphics.CreateScreen(false); }},
  };
  for (const auto& attempt : attempts)
    EXPECT_TRUE(LogsOneError(attempt.message, [&] { EXPECT_FALSE(attempt.succeeds()); }));
}

TEST(StubGraphics, ListsLiveBitmapsByNameAndMayGoFirst) {
  auto graphics = std::make_unique<backends::StubGraphics>();
  const std::unique_ptr<VuBitmapImpl> bitmap(graphics->CreateBitmap(3, 4, VuPixelFormat::RGB565));
  bitmap->SetName("panel");
  delete graphics->CreateBitmap(5, 6, kArgb);
  std::ostringstream plain, masked;
  graphics->PrintBitmapList(0, plain);
  graphics->PrintBitmapList(0x5A5A, masked);
  const std::string line = " \"panel\" 3x4 format 2 64 bytes\n";
  EXPECT_EQ(plain.str().find(line) + line.size(), plain.str().size()) << plain.str();
  EXPECT_NE(plain.str(), masked.str());
  graphics.reset();
  bitmap->SetName(nullptr);
}

}  // namespace
}  // namespace ZIRK::tests
