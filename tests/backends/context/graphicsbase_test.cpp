#include "context/graphicsbase.h"

#include <zirk/impl/vubitmapimpl.h>
#include <zirk/impl/vuscreenimpl.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <new>
#include <sstream>
#include <string>

#include "helpers/logged.h"
#include "stub/stubgraphics.h"

namespace ZIRK::tests {
namespace {

using backends::GraphicsBase;
using backends::StubGraphics;
using helpers::LogsOneError;
using Bitmap = std::unique_ptr<VuBitmapImpl>;
constexpr auto kArgb = VuPixelFormat::ARGB8888;
const char* const kPath = ZIRK_TEST_IMAGES "rgba8.png";  // 29 x 19.

/// A context with one display that runs out of memory whatever it makes.
class ExhaustedGraphics final : public GraphicsBase {
 public:
  void Flush() override {}
  int GetGraphicsType() const override { return 100; }

 protected:
  std::optional<backends::ImageSize> DeviceSize(int index) const override {
    if (index > 0) return std::nullopt;
    return backends::ImageSize{640, 360};
  }
  std::unique_ptr<VuScreenImpl> MakeScreen(Reservation, const VuScreenDescription&) override {
    throw std::bad_alloc();
  }
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation, int, int, VuPixelFormat) override {
    throw std::bad_alloc();
  }
  std::unique_ptr<VuBitmapImpl> MakePicture(Reservation, int, int, backends::Image&,
                                            VuScaleMode) override {
    throw std::bad_alloc();
  }
};

TEST(GraphicsBase, ReturnsNullWhereMemoryRunsOut) {
  ExhaustedGraphics graphics;
  const auto screen = [&](int width, int height, uint8_t index) {
    return graphics.CreateScreen({width, height, index, 2, kArgb, false});
  };
  const struct {
    const char* size;
    std::function<bool()> succeeds;
  } attempts[] = {
      {"640 x 360", [&] { return graphics.CreateScreen(false); }},
      {"640 x 360", [&] { return screen(0, 9, 0); }},
      {"1280 x 720", [&] { return screen(0, 0, 1); }},
      {"8 x 9", [&] { return screen(8, 9, 0); }},
      {"8 x 9", [&] { return graphics.CreateBitmap(8, 9, kArgb); }},
      {"29 x 19", [&] { return graphics.CreateBitmapFromFile(kPath); }},
      {"8 x 9", [&] { return graphics.CreateBitmapFromFile(kPath, 8, 9, {}, {}); }},
  };
  for (const auto& attempt : attempts)
    EXPECT_TRUE(LogsOneError(std::string("no memory for a surface of ") + attempt.size + "\n",
                             [&] { EXPECT_FALSE(attempt.succeeds()); }));
  EXPECT_EQ(graphics.AvailableMemory(), graphics.TotalMemory());
}

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
  const struct {
    std::string message;
    std::function<bool()> succeeds;
  } attempts[] = {
      {"cannot read no.png", [&] { return graphics.CreateBitmapFromFile("no.png"); }},
      {"in memory (10 bytes)", [&] { return graphics.CreateBitmapFromMemory(nullptr, 10); }},
      {"no memory for " + path + ": 29 x 19 pixels, 1440 bytes left",
       [&] { return graphics.CreateBitmapFromFile(kPath); }},
      {"no memory for a surface of 1280 x 720: 3686400 bytes asked, 1440 left",
       [&] { return graphics.CreateScreen(false); }},
      // Even where the bitmap would be small, decoding may need the whole picture.
      {path + ": 29 x 19 pixels are more than memory allows",
       [&] { return small.CreateBitmapFromFile(kPath, 2, 2, {}, {}); }},
  };
  for (const auto& attempt : attempts)
    EXPECT_TRUE(LogsOneError(attempt.message, [&] { EXPECT_FALSE(attempt.succeeds()); }));
}

TEST(GraphicsBase, ListsLiveBitmapsByNameAndMayGoFirst) {
  auto graphics = std::make_unique<StubGraphics>();
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
