// Bitmaps in memory and screens drawn by OpenGL: what is sent from bitmaps to textures, and the
// order of deletion.

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <thread>
#include <vector>

#include "backends/opengles2/injectedgl.h"
#include "helpers/logged.h"
#include "helpers/pixels.h"
#include "helpers/threads.h"
#include "hybrid/hybridgraphics.h"

namespace ZIRK::backends {
namespace {

using helpers::LogsOneError;
using helpers::Pixels;
using helpers::PixelsOf;
constexpr VuColor kRed{0xFFFF0000}, kBlue{0xFF0000FF};

class Hybrid : public InjectedGl {
 protected:
  void SetUp() override {
    InjectedGl::SetUp();
    if (IsSkipped()) return;
    NoteUploads();
    ReportLosses();
    Replace("glGetIntegerv",
            [](GLenum what, GLint* value) { *value = what == GL_MAX_TEXTURE_SIZE ? 2048 : 0; });
    graphics_ = std::make_unique<HybridGraphics>();
    sent_.clear();
  }
  static void Draw(VuBitmap& target, VuBitmap& src) { target.DrawObject(src.GetBounds(), src); }

  std::unique_ptr<VuGraphicsImpl> graphics_;
};

TEST_F(Hybrid, OnlyTheRectangleThatHasChangedIsSent) {
  const BitmapPtr screen = NewScreen(*graphics_, 48, 40);
  const BitmapPtr bitmap = New(*graphics_, 48, 40), other = New(*graphics_, 48, 40);
  other->Clear(kBlue);
  const Pixels pixels(12, 0xFF00FF00u);
  const auto expectSent = [&](const char* after, const std::vector<std::array<int, 4>>& sent) {
    sent_.clear();
    Draw(*screen, *bitmap);
    Draw(*screen, *bitmap);
    EXPECT_EQ(sent_, sent) << after;
    screen->SwapBuffers();
    EXPECT_EQ(PixelsOf(*screen), PixelsOf(*bitmap)) << after;
  };
  bitmap->Clear(kRed);
  expectSent("clearing", {{0, 0, 48, 40}});
  expectSent("nothing", {});
  bitmap->DrawRect({5, 6, 7, 8}, kBlue);
  expectSent("a rectangle", {{5, 6, 7, 8}});
  bitmap->SetPixels({40, 30, 4, 3}, pixels.data(), 16);
  expectSent("pixels", {{40, 30, 4, 3}});
  bitmap->CopyPixels({46, 1}, *other, {9, 9, 9, 2});
  expectSent("copied pixels", {{46, 1, 2, 2}});
  bitmap->DrawPoint({1, 2}, 1, white);
  bitmap->DrawLine({9, 4}, {4, 9}, white);
  expectSent("a point and a line", {{1, 2, 9, 8}});
  bitmap->Lock(false);
  bitmap->Unlock();
  expectSent("a lock for reading", {});
  bitmap->Lock(true);
  static_cast<uint32_t*>(bitmap->GetInfo().pixels)[7] = 0xFF123456u;
  bitmap->Unlock();
  expectSent("a lock for writing", {{0, 0, 48, 40}});
}

TEST_F(Hybrid, ABitmapIsTextureBackedWhileAScreenHasItsTexture) {
  const BitmapPtr bitmap = New(*graphics_, 8, 8);
  for (int i = 0; i < 2; ++i) {
    BitmapPtr screen = NewScreen(*graphics_, 8, 8);
    EXPECT_FALSE(bitmap->IsTextureBacked());
    Draw(*screen, *bitmap);
    EXPECT_TRUE(bitmap->IsTextureBacked());
    EXPECT_FALSE(screen->IsTextureBacked());
    graphics_ = std::make_unique<HybridGraphics>();
  }
  EXPECT_FALSE(bitmap->IsTextureBacked());
}

TEST_F(Hybrid, TexturesOfDeletedBitmapsGoWithTheNextDraw) {
  graphics_.reset();
  int freed = 0;
  seen_ = [&freed](int) { return ++freed; };
  Watch<0>("glDeleteTextures", PFNGLDELETETEXTURESPROC());
  graphics_ = std::make_unique<HybridGraphics>();
  const BitmapPtr screen = NewScreen(*graphics_, 8, 8);
  const BitmapPtr kept = New(*graphics_, 8, 8);
  for (int deleted = 0; deleted < 3; ++deleted) {
    Draw(*screen, *New(*graphics_, 8, 8));
    const int before = freed;
    Draw(*screen, *kept);
    EXPECT_EQ(freed, before + 1);
  }
  graphics_.reset();
}

TEST_F(Hybrid, EverythingMayBeDeletedInAnyOrder) {
  std::array<int, 5> order;
  std::iota(order.begin(), order.end(), 0);
  do {
    auto context = std::make_unique<HybridGraphics>();
    BitmapPtr first = NewScreen(*context, 32, 32), second = NewScreen(*graphics_, 32, 32);
    BitmapPtr bitmap = New(*context, 8, 8);
    auto font = std::make_unique<VuFont>(ZIRK_TEST_FONTS "/sans.ttf", 0, 12);
    const std::function<void()> deletions[] = {[&] { context.reset(); }, [&] { first.reset(); },
                                               [&] { second.reset(); }, [&] { bitmap.reset(); },
                                               [&] { font.reset(); }};
    for (const int i : order) {
      // Drawn, and not sent yet.
      for (VuBitmap* screen : {first.get(), second.get()}) {
        if (screen && bitmap) Draw(*screen, *bitmap);
        if (screen && font) screen->DrawText(*font, "Ag", {1, 1}, white);
      }
      deletions[i]();
    }
  } while (std::next_permutation(order.begin(), order.end()));
  EXPECT_EQ(SDL_WasInit(SDL_INIT_VIDEO), SDL_INIT_VIDEO);
  graphics_.reset();
  EXPECT_EQ(SDL_WasInit(SDL_INIT_VIDEO), 0u);
}

TEST_F(Hybrid, BitmapsSurviveTheLossOfTheContext) {
  const BitmapPtr before = NewScreen(*graphics_, 8, 8);
  const BitmapPtr bitmap = New(*graphics_, 8, 8);
  bitmap->Clear(kRed);
  Draw(*before, *bitmap);
  lost_ = true;
  EXPECT_TRUE(LogsOneError("the context is lost", [&] { before->Finish(); }));
  lost_ = false;
  EXPECT_EQ(helpers::LoggedAt(3, [&] { Draw(*before, *bitmap); }), "");
  const BitmapPtr after = NewScreen(*graphics_, 8, 8);
  Draw(*after, *bitmap);
  EXPECT_EQ(PixelsOf(*after), PixelsOf(*bitmap));
  EXPECT_TRUE(LogsOneError("before the context was lost", [&] { Draw(*after, *before); }));
}

TEST_F(Hybrid, WhatIsTooLargeForATextureIsDrawnInParts) {
  const BitmapPtr screen = NewScreen(*graphics_, 60, 8);
  const BitmapPtr large = New(*graphics_, 3000, 8);
  for (int x = 0; x < 3000; x += 60) {
    large->DrawRect({x, 0, 60, 8}, VuColor{0xFF000000u | 0x123u * uint32_t(x)});
    screen->DrawObject({0, 0, 60, 8}, *large, {x, 0, 60, 8});
    ASSERT_EQ(PixelOf(*screen, 0, 7), PixelOf(*large, x, 7));
    ASSERT_EQ(PixelOf(*screen, 59, 0), PixelOf(*large, x, 7));
  }
  EXPECT_TRUE(screen->CopyPixels({0, 0}, *large, {100, 0, 60, 8}));
  EXPECT_EQ(PixelOf(*screen, 19, 0), PixelOf(*large, 119, 0));
  EXPECT_EQ(PixelOf(*screen, 20, 0), PixelOf(*large, 120, 0));
  const BitmapPtr tall = New(*graphics_, 8, 3000);
  const VuRect place{0, 0, 8, 8}, end{0, 2900, 8, 8};
  tall->Clear(kRed);
  const auto drawPart = [&] { screen->DrawObject(place, *tall, end); };
  EXPECT_EQ(helpers::LoggedAt(4, drawPart), "");
  EXPECT_EQ(PixelOf(*screen, 7, 7), kRed.argb);
  EXPECT_TRUE(LogsOneError("at most 2048", [&] { Draw(*screen, *large); }));
  EXPECT_EQ(graphics_->GetMaxTextureSize(), 2048);
}

TEST_F(Hybrid, OtherThreadsDrawTextAndDeleteBitmaps) {
  const BitmapPtr screen = NewScreen(*graphics_, 64, 20);
  const BitmapPtr bitmap = New(*graphics_, 64, 20);
  const VuFont font(ZIRK_TEST_FONTS "/sans.ttf", 0, 14);
  BitmapPtr drawn;
  const auto write = [&](VuBitmap& target, int last) {
    const char text[] = {'A', static_cast<char>(last), 0};
    target.Clear();
    target.DrawText(font, text, {1, 1}, white);
  };
  int round = 0;
  const auto prepare = [&](int now) {
    round = now;
    drawn = New(*graphics_, 8, 8);
    Draw(*screen, *drawn);
  };
  // The atlas grows on either thread, which deletes its former bitmap.
  const auto use = [&](bool isOther) {
    write(isOther ? *bitmap : *screen, isOther ? 'B' + round : 'z' - round);
    if (isOther) drawn.reset();
  };
  helpers::InRounds(50, prepare, use);
  for (int last = 'B'; last <= 'z'; ++last) {
    write(*screen, last);
    write(*bitmap, last);
    ASSERT_EQ(PixelsOf(*screen), PixelsOf(*bitmap)) << last;
  }
  graphics_->Flush();
  std::thread([&] { screen->Clear(kBlue), graphics_->Flush(); }).join();
  EXPECT_EQ(PixelOf(*screen, 1, 1), kBlue.argb);
}

}  // namespace
}  // namespace ZIRK::backends
