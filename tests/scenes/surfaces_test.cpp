// What surfaces do besides drawing, by every backend.

#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "helpers/logged.h"
#include "helpers/pixels.h"
#include "scenes/backends.h"
#include "scenes/operations.h"

namespace ZIRK::scenes {
namespace {

using Format = VuPixelFormat;
using helpers::Pixels;
using helpers::PixelsOf;
using Surfaces = OnEachBackend;

INSTANTIATE_TEST_SUITE_P(Backends, Surfaces, testing::ValuesIn(kBackends),
                         [](const auto& test) { return std::string(test.param); });

TEST_P(Surfaces, PixelsGoInAndOut) {
  constexpr struct {
    size_t bytes;
    uint32_t cleared, first = 0;
  } kFormats[] = {{.bytes = 4, .cleared = 0x6F4F2F1Fu},
                  {.bytes = 4, .cleared = 0xFF4F2F1Fu, .first = 0xFF000000u},
                  {.bytes = 2, .cleared = 0x4963u},
                  {.bytes = 2, .cleared = 0x6421u},
                  {.bytes = 2, .cleared = 0x24A3u},
                  {.bytes = 1, .cleared = 0x6Fu}};
  for (size_t format = 0; format < 6; ++format) {
    SCOPED_TRACE(format);
    const auto& [bytes, cleared, first] = kFormats[format];
    // Wider than what is converted at a time.
    const auto target = NewTarget(300, 40, Format(format));
    target->SetName(std::string(300, 'n').c_str());
    const auto at = [&](int x, int y) {
      uint32_t pixel = 0;
      EXPECT_TRUE(target->GetPixels({x, y, 1, 1}, &pixel));
      return pixel;
    };
    const int type = graphics_->GetGraphicsType();
    EXPECT_EQ(target->IsTextureBacked(),
              type == TypeCode(BackendType::OpenGLES2) || type == TypeCode(BackendType::DirectFB));
    EXPECT_EQ(at(299, 39), first);
    target->SetClippingRect({5, 5, 1, 1});
    // What is opaque keeps its alpha when it is drawn on; the next surface is cleared all the same.
    const auto opaque = New(4, 4, Format::XRGB8888);
    opaque->DrawRect({0, 0, 4, 4}, VuColor{0x40FFFFFF});
    EXPECT_EQ(PixelsOf(*opaque), Pixels(16, 0xFF404040u));
    target->Clear(VuColor{0x6FB56C47});  // Bits are dropped, not rounded.
    EXPECT_EQ(std::pair(at(0, 0), at(299, 39)), std::pair(cleared, cleared));

    std::vector<uint8_t> in(8 * bytes), out(6 * bytes + 1, 7);  // Two rows of three, four apart.
    for (size_t i = 0; i < in.size(); ++i) in[i] = static_cast<uint8_t>(i * 37 + 11);
    EXPECT_TRUE(target->SetPixels({1, 1, 3, 2}, in.data(), static_cast<unsigned>(4 * bytes)));
    // What is opaque stays so.
    for (size_t i = 3; first != 0 && i < in.size(); i += 4) in[i] = 0xFF;
    EXPECT_TRUE(target->GetPixels({1, 1, 3, 2}, out.data()));
    EXPECT_EQ(std::memcmp(&out[0], &in[0], 3 * bytes), 0);
    EXPECT_EQ(std::memcmp(&out[3 * bytes], &in[4 * bytes], 3 * bytes), 0);
    EXPECT_EQ(out.back(), 7);

    EXPECT_FALSE(target->Unlock());
    EXPECT_EQ(target->GetInfo().pixels, nullptr);
    ASSERT_TRUE(target->Lock());
    EXPECT_FALSE(target->Lock(false));
    auto* const locked = static_cast<uint8_t*>(target->GetInfo().pixels);
    uint8_t* const second = locked + target->GetInfo().pitch + bytes;
    EXPECT_EQ(std::memcmp(second, in.data(), 3 * bytes), 0);
    std::memset(second, 0x21, bytes);
    EXPECT_TRUE(target->Unlock());
    EXPECT_EQ(target->GetInfo().pixels, nullptr);
    EXPECT_EQ(at(1, 1), 0x21212121u >> (32 - 8 * bytes) | first);
    ASSERT_TRUE(target->Lock(false));
    target->Clear(VuColor{0x6FB56C47});
    EXPECT_TRUE(target->Unlock());
    EXPECT_EQ(at(1, 1), cleared) << "a lock for reading writes nothing back";

    for (const VuRect& outside : {VuRect{-1, 0, 2, 2}, VuRect{298, 0, 3, 1}, VuRect{0, 39, 1, 2},
                                  VuRect{2, 2, -1, 1}, VuRect{1, 1, INT32_MAX, 1}}) {
      EXPECT_FALSE(target->SetPixels(outside, in.data(), 16));
      EXPECT_FALSE(target->GetPixels(outside, out.data()));
    }
    EXPECT_FALSE(target->SetPixels({0, 0, 1, 1}, nullptr, 4));
    EXPECT_FALSE(target->GetPixels({0, 0, 1, 1}, nullptr));
  }
}

TEST_P(Surfaces, PicturesAreTheFirstBackends) {
  const auto first = Open(kBackends[0]);
  for (const char* const file : {ZIRK_TEST_IMAGES "rgba8.png", ZIRK_TEST_IMAGES "rgb.jpg"})
    for (const VuScaleMode mode : {VuScaleMode::Nearest, VuScaleMode::Bilinear}) {
      const auto picture = [&](VuGraphics& g) {
        const std::unique_ptr<VuBitmap> bitmap(
            g.CreateBitmapFromFile(file, 60, 13, mode, VuDisplayMode::Stretch));
        EXPECT_TRUE(bitmap->Lock() && bitmap->Unlock());
        return PixelsOf(*bitmap);
      };
      EXPECT_EQ(picture(*graphics_), picture(*first)) << file;
    }
}

TEST_P(Surfaces, WhateverDrawsIsInTheNextPictureAndTheNextFrame) {
  constexpr VuColor kGround{0x60302010};
  constexpr int kWidth = kOperationWidth, kHeight = kOperationHeight;
  Sources sources(*graphics_);
  const auto screen = std::unique_ptr<VuBitmap>(graphics_->CreateScreen(kWidth, kHeight, true));
  const auto bitmap = New(kWidth, kHeight);
  const auto show = [&] { screen->Clear(), screen->DrawObject(sources.all, *bitmap); };
  for (const Operation& operation : kOperations) {
    SCOPED_TRACE(operation.name);
    bitmap->Clear(kGround);
    show();
    const Pixels before = PixelsOf(*screen);
    sources.Fill();
    operation.run(*bitmap, sources);
    show();
    EXPECT_EQ(PixelsOf(*screen), PixelsOf(*bitmap));
    EXPECT_NE(PixelsOf(*screen), before);
    // OpenGL does not keep what it has shown.
    if (graphics_->GetGraphicsType() != TypeCode(BackendType::DirectFB)) continue;
    screen->Clear();
    screen->SwapBuffers();
    sources.Fill();
    operation.run(*screen, sources);
    const Pixels drawn = PixelsOf(*screen);
    screen->SwapBuffers();
    EXPECT_EQ(PixelsOf(*screen), drawn);
  }
}

TEST_P(Surfaces, LargeCopiesComeAfterWhatIsDrawnBefore) {
  constexpr int kSide = 160;
  const VuRect all{0, 0, kSide, kSide};
  const auto source = New(kSide, kSide), target = New(kSide, kSide);
  for (const uint32_t color : {0xFF112233u, 0xFF445566u}) {
    source->DrawRect(all, VuColor{color});
    target->DrawRect(all, white);
    EXPECT_TRUE(target->CopyPixels({0, 0}, *source, all));
    EXPECT_EQ(PixelsOf(*target), Pixels(kSide * kSide, color));
  }
}

TEST_P(Surfaces, AreTimedAndCountFrames) {
  using Clock = std::chrono::steady_clock;
  const std::unique_ptr<VuBitmap> screen(graphics_->CreateScreen(40, 30, true));
  const std::unique_ptr<VuBitmap> bitmap = New(200, 200);
  LogPerf = true;
  draw_time = swap_time = 0;
  const auto begin = Clock::now();
  for (int i = 0; i < 1000; ++i) bitmap->DrawRect({1, 1, 3, 3}, white);
  // New glyphs are set on the atlas meanwhile, which counts once.
  for (int size = 90; size < 110; ++size)
    bitmap->DrawText(TestFont("sans.ttf", size), "RWSG@", {0, 0}, white);
  const auto spent = std::chrono::ceil<std::chrono::microseconds>(Clock::now() - begin);
  EXPECT_GT(draw_time, 0u);
  EXPECT_LE(draw_time, spent.count());
  EXPECT_EQ(swap_time, 0u);
  const uint32_t drawn = draw_time;
  for (int i = 0; i < 100; ++i) screen->SwapBuffers();
  EXPECT_GT(swap_time, 0u);
  EXPECT_EQ(draw_time, drawn);
  LogPerf = false;

  LogFPS = true;
  const std::string log = helpers::LoggedAt(4, [&] {
    graphics_->Flush();
    // The first frame of a thread is reported at once.
    std::thread([&] { screen->SwapBuffers(), graphics_->Flush(); }).join();
  });
  LogFPS = false;
  EXPECT_NE(log.find("Average frame time"), std::string::npos) << log;
}

TEST_P(Surfaces, OutliveTheirContextAndAreReadByAnother) {
  const auto orphan = NewTarget(8, 8);
  const auto other = Open(GetParam());
  const auto target = scenes::NewTarget(*other, 8, 8);
  graphics_.reset();
  orphan->Clear(VuColor{0xFF123456});
  target->DrawObject({0, 0, 8, 8}, *orphan);
  EXPECT_EQ(PixelsOf(*target), Pixels(64, 0xFF123456u));
}

}  // namespace
}  // namespace ZIRK::scenes
