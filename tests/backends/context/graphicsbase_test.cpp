#include "context/graphicsbase.h"

#include <zirk/impl/vubitmapimpl.h>
#include <zirk/impl/vuscreenimpl.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <thread>

#include "context/entrypoints.h"
#include "helpers/logged.h"
#include "stub/stubgraphics.h"

namespace ZIRK::tests {
namespace {

using backends::CreateForLibrary;
using backends::StubGraphics;
using helpers::LogsOneError;
using Bitmap = std::unique_ptr<VuBitmapImpl>;
constexpr auto kArgb = VuPixelFormat::ARGB8888;
const char* const kPath = ZIRK_TEST_IMAGES "rgba8.png";  // 29 x 19.

TEST(GraphicsBase, TakesSizesFromPictures) {
  std::ifstream in(kPath, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(in), {});
  const auto size = static_cast<unsigned>(bytes.size());
  StubGraphics g;
  const auto expect = [&](VuBitmapImpl* created, unsigned asked, int width, int height) {
    const VuRect bounds = Bitmap(created)->GetBounds();
    EXPECT_EQ(std::pair(bounds.width, bounds.height), std::pair(width, height));
    EXPECT_EQ(asked, g.BitmapSize(width, height, kArgb));
  };
  expect(g.CreateBitmapFromFile(kPath), g.BitmapSize(kPath), 29, 19);
  expect(g.CreateBitmapFromFile(kPath, 58, 99, {}, VuDisplayMode::Fit), g.BitmapSize(kPath, 58, 38),
         58, 38);
  expect(g.CreateBitmapFromMemory(bytes.data(), size), g.BitmapSize(bytes.data(), size), 29, 19);
  expect(g.CreateBitmapFromMemory(bytes.data(), size, 7, 8, {}),
         g.BitmapSize(bytes.data(), size, 7, 8), 7, 8);
}

TEST(GraphicsBase, ReportsOnceWhatItCannotReadOrHasNoMemoryFor) {
  StubGraphics graphics(4000), small(2000);
  const Bitmap most(graphics.CreateBitmap(30, 20, kArgb));
  EXPECT_EQ(graphics.AvailableMemory(), 4000 - most->GetSize());
  const std::string path = kPath;
  const auto expectFailure = [](const std::string& message, const auto& create) {
    EXPECT_TRUE(LogsOneError(message, [&] { EXPECT_EQ(create(), nullptr); }));
  };
  expectFailure("cannot read no.png", [&] { return graphics.CreateBitmapFromFile("no.png"); });
  expectFailure("in memory (10 bytes)",
                [&] { return graphics.CreateBitmapFromMemory(nullptr, 10); });
  expectFailure("no memory for " + path + ": 29 x 19 pixels, 1440 bytes left",
                [&] { return graphics.CreateBitmapFromFile(kPath); });
  expectFailure("no memory for a surface of 1280 x 720: 3686400 bytes requested, 1440 left",
                [&] { return graphics.CreateScreen(false); });
  // Even where the bitmap would be small, decoding may need the whole picture.
  expectFailure(path + ": 29 x 19 pixels are more than memory allows",
                [&] { return small.CreateBitmapFromFile(kPath, 2, 2, {}, {}); });
}

TEST(GraphicsBase, ListsLiveBitmapsByNameAndMayGoFirst) {
  auto graphics = std::make_unique<StubGraphics>();
  const std::unique_ptr<VuBitmapImpl> bitmap(graphics->CreateBitmap(3, 4, VuPixelFormat::RGB565));
  bitmap->SetName("panel");
  delete graphics->CreateBitmap(5, 6, kArgb);
  const Bitmap newest(graphics->CreateBitmap(7, 8, kArgb));
  std::ostringstream plain, masked;
  graphics->PrintBitmapList(0, plain);
  graphics->PrintBitmapList(0x5A5A, masked);
  const std::string line = " \"panel\" 3x4 format 2 64 bytes\n";
  const size_t end = plain.str().find(line) + line.size();
  EXPECT_EQ(plain.str().find('\n', end) + 1, plain.str().size()) << plain.str();
  EXPECT_NE(plain.str().find("7x8", end), std::string::npos) << plain.str();
  EXPECT_NE(plain.str(), masked.str());
  graphics.reset();
  bitmap->SetName(nullptr);
}

TEST(StubGraphics, GivesScreensTheSizeAskedForOrItsOwn) {
  StubGraphics g;
  const auto bytes = [&](int width, int height) {
    return Bitmap(g.CreateScreen({width, height, 0, 2, VuPixelFormat::RGB565, false}))->GetSize();
  };
  EXPECT_EQ(bytes(800, 480), 800u * 480 * 2);
  EXPECT_EQ(bytes(0, 480), 1280u * 720 * 2);
  EXPECT_EQ(bytes(800, -1), 1280u * 720 * 2);
  EXPECT_EQ(Bitmap(g.CreateScreen(true))->GetSize(), 1280u * 720 * 4);
}

TEST(StubGraphics, CountsFrames) {
  const std::unique_ptr<VuScreenImpl> screen(StubGraphics().CreateScreen(true));
  LogFPS = true;
  // The first frame of a thread is reported at once.
  const auto frame = [&] { std::thread([&] { screen->SwapBuffers(); }).join(); };
  EXPECT_NE(helpers::LoggedAt(4, frame), "");
  LogFPS = false;
}

TEST(StubGraphics, AcceptsPixelsThatOtherBackendsWould) {
  const Bitmap bitmap(StubGraphics().CreateBitmap(4, 3, kArgb));
  uint32_t pixels[] = {1, 1, 1, 1, 1, 1, 1};
  EXPECT_TRUE(bitmap->SetPixels({1, 1, 3, 2}, pixels, 12));
  EXPECT_TRUE(bitmap->GetPixels({1, 1, 3, 2}, pixels));
  EXPECT_EQ(pixels[5], 0u);
  EXPECT_EQ(pixels[6], 1u);
  EXPECT_FALSE(bitmap->GetPixels({2, 0, 3, 1}, pixels));
  EXPECT_FALSE(bitmap->SetPixels({2, 0, 3, 1}, pixels, 16));
  EXPECT_FALSE(bitmap->GetPixels({0, 0, 1, 1}, nullptr));
}

TEST(EntryPoints, LetNoExceptionOut) {
  using Graphics = std::unique_ptr<VuGraphicsImpl>;
  EXPECT_TRUE(LogsOneError("the backend has no memory to start with", [] {
    EXPECT_FALSE(CreateForLibrary<VuGraphicsImpl>([]() -> Graphics { throw std::bad_alloc(); }));
  }));
  EXPECT_TRUE(LogsOneError("the backend cannot be started", [] {
    EXPECT_FALSE(CreateForLibrary<VuGraphicsImpl>([]() -> Graphics { throw 1; }));
  }));
}

}  // namespace
}  // namespace ZIRK::tests
