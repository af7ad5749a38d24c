#include <gmock/gmock.h>
#include <sys/resource.h>
#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "helpers/logged.h"
#include "helpers/pixels.h"
#include "support/allocations.h"

namespace ZIRK::kit {
namespace {

using BitmapPtr = std::unique_ptr<VuBitmap>;
using helpers::Pixels;

const std::string kPath = testing::TempDir() + "zirk_pictures_test.png";

class Pictures : public testing::Test {
 protected:
  BitmapPtr New(int width, int height, VuPixelFormat format = {}) {
    return BitmapPtr(graphics_->CreateBitmap(width, height, format));
  }
  const std::unique_ptr<VuGraphics> graphics_{VuGraphics::Create("FB", false)};
};

TEST_F(Pictures, SavesEveryFormatUnpremultipliedInItsDepth) {
  using F = VuPixelFormat;
  constexpr char kGreyAlpha = 4, kColor = 2, kColorAlpha = 6;  // PNG's colour types.
  const struct {
    F format;
    Pixels stored, seen;  // Premultiplied, as a picture is read.
    char type;
    std::string bits;
  } cases[] = {
      {F::ARGB8888, {0xFF123456, 0x80402010, 0}, {0xFF123456, 0x80402010, 0}, kColorAlpha, ""},
      {F::XRGB8888, {0x123456, 0x80402010, 0}, {0xFF123456, 0xFF402010, 0xFF000000}, kColor, ""},
      {F::RGB565, {0xF800, 0x7E0, 0x8410}, {0xFFFF0000, 0xFF00FF00, 0xFF848284}, kColor, "\5\6\5"},
      {F::ARGB4444, {0xF123, 0x8420, 0}, {0xFF112233, 0x88442200, 0}, kColorAlpha, "\4\4\4\4"},
      {F::ARGB1555, {0xFC00, 0x801F, 0}, {0xFFFF0000, 0xFF0000FF, 0}, kColorAlpha, "\5\5\5\1"},
      {F::A8, {0xFF, 0x40, 0}, {0xFFFFFFFF, 0x40404040, 0}, kGreyAlpha, ""},
  };
  for (const auto& c : cases) {
    const BitmapPtr bitmap = New(2, 4, c.format);
    for (int y = 0; y < 3; ++y)
      bitmap->SetPixels({1, y, 1, 1}, &c.stored.at(static_cast<size_t>(y)), 4);
    ASSERT_TRUE(SavePng(*bitmap, {1, 0, 1, 3}, kPath.c_str()));
    const BitmapPtr read(graphics_->CreateBitmapFromFile(kPath.c_str()));
    ASSERT_TRUE(read && read->GetBounds() == (VuRect{0, 0, 1, 3}));
    EXPECT_EQ(helpers::PixelsOf(*read), c.seen);
    EXPECT_EQ(Compare(*read, read->GetBounds(), *bitmap, {1, 0, 1, 3})->worst, 0);
    std::ifstream file(kPath, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(bytes.at(25), c.type);
    EXPECT_EQ(bytes.find("sBIT" + c.bits) != std::string::npos, !c.bits.empty());
  }
}

TEST_F(Pictures, SayInOneLineWhyTheyAreNotSaved) {
  const BitmapPtr bitmap = New(300, 300);
  const auto fails = [&](const char* path, VuRect part, const char* reason) {
    bool isSaved = true;
    EXPECT_TRUE(helpers::LogsOneError(reason, [&] { isSaved = SavePng(*bitmap, part, path); }));
    EXPECT_FALSE(isSaved);
  };
  fails("no/a.png", {0, 0, 9, 9}, "no/a.png: No such file or directory");
  fails("/dev/full", {0, 0, 300, 300}, "/dev/full: No space left on device");
  fails(kPath.c_str(), {1, 0, 300, 1}, "cannot be read");
  fails(kPath.c_str(), {0, 0, 0, 1}, "cannot be read");
  EXPECT_TRUE(std::filesystem::exists("/dev/full"));
  rlimit files;
  getrlimit(RLIMIT_FSIZE, &files);
  const rlimit few{100, files.rlim_max};
  std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &few);
  fails(kPath.c_str(), {0, 0, 300, 300}, "File too large");
  setrlimit(RLIMIT_FSIZE, &files);
  EXPECT_FALSE(std::filesystem::exists(kPath)) << "half a file is left";
  bool isSaved = false;
  for (int granted = 0; !isSaved; ++granted) {
    const support::ScarceMemory scarce(granted);
    isSaved = SavePng(*bitmap, kPath.c_str());
  }
  EXPECT_TRUE(BitmapPtr(graphics_->CreateBitmapFromFile(kPath.c_str())));
}

TEST_F(Pictures, AreComparedAsTheyAreSeen) {
  const BitmapPtr a = New(4, 3), b = New(5, 3), narrow = New(4, 3, VuPixelFormat::ARGB4444);
  const BitmapPtr shown = New(4, 3);
  a->Clear(0xFF000000);
  b->Clear(0xFF000000);
  b->SetBlendEnabled(false);
  b->DrawRect({3, 1, 1, 1}, 0xFF000A00);
  b->DrawRect({4, 2, 1, 1}, 0xF0F00000);
  const auto difference = Compare(*a, a->GetBounds(), *b, {1, 0, 4, 3}, shown.get());
  ASSERT_TRUE(difference);
  EXPECT_EQ(difference->worst, 226) << "of 240, premultiplied";
  EXPECT_EQ(difference->worstAt, (VuPoint{3, 2}));
  EXPECT_DOUBLE_EQ(difference->mean, (10 + 15 + 226) / 48.0);
  EXPECT_EQ(helpers::PixelOf(*shown, 2, 1), 0xFF005000);
  EXPECT_EQ(helpers::PixelOf(*shown, 3, 2), 0xFFFF0000);
  EXPECT_EQ(helpers::PixelOf(*shown, 0, 0), 0xFF000000);

  EXPECT_TRUE(helpers::LogsOneError("4 x 3 and 5 x 3", [&] { EXPECT_FALSE(Compare(*a, *b)); }));
  EXPECT_TRUE(helpers::LogsOneError("cannot be written",
                                    [&] { EXPECT_FALSE(Compare(*a, *a, narrow.get())); }));
  const VuRect outside{2, 0, 4, 3};
  EXPECT_TRUE(helpers::LogsOneError(
      "cannot be read", [&] { EXPECT_FALSE(Compare(*a, a->GetBounds(), *b, outside)); }));
}

}  // namespace
}  // namespace ZIRK::kit
