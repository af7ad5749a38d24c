// What is particular to DirectFB: its start, its screens, and that it never ends. The model checks
// the drawing.

#include <directfb.h>
#include <gtest/gtest.h>
#include <zirk/zirk.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <string>

#include "helpers/logged.h"
#include "helpers/pixels.h"

namespace ZIRK::tests {
namespace {

using helpers::LogsOneError;
using GraphicsPtr = std::unique_ptr<VuGraphics>;
using BitmapPtr = std::unique_ptr<VuBitmap>;
using helpers::PixelOf;

constexpr char kArgs[] = "system=dummy,mode=800x600";
constexpr uint32_t kRed = 0xFFE04030, kGreen = 0xFF30C060;

GraphicsPtr Open() {
  return GraphicsPtr(VuGraphics::Create("DirectFB", false));
}

/// Runs `run` in a process of its own, in which DirectFB has not started. It writes `said`, meets
/// all expectations and ends with 0.
void ExpectInAProcessOfItsOwn(void (*run)(), const char* said = "") {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT((run(), exit(testing::Test::HasFailure())), testing::ExitedWithCode(0), said);
}

TEST(DirectFbDeathTest, FailsWithOneErrorAndThenSucceedsSilently) {
  ExpectInAProcessOfItsOwn([] {
    for (const char* args : {"system=fbdev,fbdev=/nonexistent", "system=dummy,wm=nonexistent",
                             "help", "nonexistent=1"}) {
      setenv("DFBARGS", args, 1);
      EXPECT_TRUE(LogsOneError("DirectFB cannot be started", [] { EXPECT_EQ(Open(), nullptr); }))
          << args;
    }
    setenv("DFBARGS", kArgs, 1);
    struct sigaction before[NSIG] = {}, after{};
    for (int i = 1; i < NSIG; ++i) sigaction(i, nullptr, &before[i]);
    testing::internal::CaptureStdout();
    EXPECT_EQ(helpers::LoggedAt(3, [] { EXPECT_NE(Open(), nullptr); }), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    for (int i = 1; i < NSIG; ++i) {
      sigaction(i, nullptr, &after);
      EXPECT_EQ(after.sa_handler, before[i].sa_handler) << "signal " << i;
    }
  });
}

TEST(DirectFbDeathTest, TellsWhatItDoesIfTheUserWants) {
  ExpectInAProcessOfItsOwn(
      [] {
        setenv("DFBARGS", (std::string(kArgs) + ",no-quiet").c_str(), 1);
        EXPECT_NE(Open(), nullptr);
      },
      "\\(\\*\\) ");
}

class DirectFb : public testing::Test {
 protected:
  DirectFb() {
    setenv("DFBARGS", kArgs, 1);
    graphics_ = Open();
  }
  void SetUp() override { ASSERT_NE(graphics_, nullptr); }
  BitmapPtr Screen(int index, bool doubled) {
    return BitmapPtr(
        graphics_->CreateScreen(64, 48, doubled, index, false, VuPixelFormat::ARGB8888));
  }

  GraphicsPtr graphics_;
};

TEST_F(DirectFb, OfTwoBuffersNeitherIsShownBeforeASwap) {
  for (const bool doubled : {true, false}) {
    const BitmapPtr screen = Screen(0, doubled);
    LogPerf = true;
    swap_time = 0;
    for (int i = 0; i < 100; ++i) screen->Flush();
    LogPerf = false;
    EXPECT_EQ(swap_time == 0, doubled);
  }
}

TEST_F(DirectFb, AllThatAFrameDrawsIsInTheNextOne) {
  const BitmapPtr screen = Screen(0, true);
  const BitmapPtr bitmap(graphics_->CreateBitmap(64, 48, VuPixelFormat::ARGB8888));
  bitmap->Clear(VuColor{kRed});
  for (const int x : {0, 32}) {
    screen->SetClippingRect({x, 0, 16, 16});
    screen->DrawObject({0, 0, 64, 48}, *bitmap);
  }
  screen->SwapBuffers();
  // The clipping rectangle is still the second one.
  bitmap->Clear(VuColor{kGreen});
  screen->DrawObject({0, 0, 64, 48}, *bitmap);
  screen->SetClippingRect({0, 0, 64, 48});
  screen->DrawLine({2, 20}, {40, 40}, VuColor{kGreen});
  screen->SwapBuffers();
  EXPECT_EQ(PixelOf(*screen, 15, 5), kRed);
  EXPECT_EQ(PixelOf(*screen, 16, 5), 0u);
  EXPECT_EQ(PixelOf(*screen, 47, 5), kGreen);
  EXPECT_EQ(PixelOf(*screen, 47, 16), 0u);
  for (const int x : {2, 40}) EXPECT_EQ(PixelOf(*screen, x, x == 2 ? 20 : 40), kGreen) << x;
}

TEST_F(DirectFb, AScreenIsReadAsItIsDrawnNotAsItIsShown) {
  const BitmapPtr screen = Screen(0, true), copied = Screen(1, true);
  const BitmapPtr bitmap(graphics_->CreateBitmap(64, 48, VuPixelFormat::ARGB8888));
  screen->Clear(VuColor{kRed});
  screen->SwapBuffers();
  screen->Clear(VuColor{kGreen});
  bitmap->DrawObject({0, 0, 64, 48}, *screen);
  EXPECT_EQ(PixelOf(*bitmap, 3, 3), kGreen);
  EXPECT_TRUE(copied->CopyPixels({0, 0}, *screen, {0, 0, 64, 48}));
  EXPECT_EQ(PixelOf(*copied, 3, 3), kGreen);
}

TEST_F(DirectFb, AScreenWithoutADisplayStaysInMemory) {
  BitmapPtr first = Screen(0, true), second;
  const auto warned = [&](int index) {
    return helpers::LoggedAt(4, [&] { second = Screen(index, true); });
  };
  EXPECT_NE(warned(0).find("another screen has it: the screen stays in memory"), std::string::npos);
  EXPECT_NE(warned(1).find("display layer 1"), std::string::npos);
  second->Clear(VuColor{kRed});
  second->SwapBuffers();
  EXPECT_EQ(PixelOf(*second, 1, 1), kRed);
  first.reset();
  EXPECT_EQ(warned(0), "");
  // The display has its own size again.
  second.reset();
  first.reset(graphics_->CreateScreen(false));
  EXPECT_EQ(first->GetBounds().width, 800);
}

TEST_F(DirectFb, ADisplayOfOneSizeGivesItToItsScreen) {
  static DFBResult (*getLayer)(IDirectFB*, DFBDisplayLayerID, IDirectFBDisplayLayer**);
  static DFBResult (*configure)(IDirectFBDisplayLayer*, const DFBDisplayLayerConfig*);
  IDirectFB* directFb = nullptr;  // The one that the backend uses.
  ASSERT_EQ(DirectFBCreate(&directFb), DFB_OK);
  getLayer = directFb->GetDisplayLayer;
  directFb->GetDisplayLayer = [](IDirectFB* self, DFBDisplayLayerID id,
                                 IDirectFBDisplayLayer** layer) {
    const DFBResult result = getLayer(self, id, layer);
    configure = (*layer)->SetConfiguration;
    (*layer)->SetConfiguration = [](IDirectFBDisplayLayer* display,
                                    const DFBDisplayLayerConfig* asked) {
      return asked->width == 800 ? configure(display, asked) : DFB_UNSUPPORTED;
    };
    return result;
  };
  const BitmapPtr screen = Screen(0, false);
  directFb->GetDisplayLayer = getLayer;
  directFb->Release(directFb);
  EXPECT_EQ(screen->GetBounds(), (VuRect{0, 0, 800, 600}));
  EXPECT_EQ(graphics_->TotalMemory() - graphics_->AvailableMemory(),
            graphics_->BitmapSize(800, 600, VuPixelFormat::ARGB8888));
}

TEST_F(DirectFb, LockedSurfacesAreDrawnOnAndReadAsEver) {
  const BitmapPtr bitmap(graphics_->CreateBitmap(16, 16, VuPixelFormat::ARGB8888));
  const BitmapPtr other(graphics_->CreateBitmap(16, 16, VuPixelFormat::ARGB8888));
  const BitmapPtr screen = Screen(0, true);
  ASSERT_TRUE(bitmap->Lock());
  ASSERT_TRUE(screen->Lock());
  auto* const pixels = static_cast<uint32_t*>(bitmap->GetInfo().pixels);
  bitmap->DrawRect({0, 0, 4, 4}, VuColor{kRed});
  EXPECT_EQ(pixels[0], kRed);
  pixels[1] = kGreen;
  other->DrawObject({0, 0, 16, 16}, *bitmap);
  EXPECT_EQ(PixelOf(*other, 0, 0), kRed);
  bitmap->Clear(VuColor{kGreen});
  EXPECT_EQ(pixels[0], kGreen);
  EXPECT_TRUE(other->CopyPixels({4, 4}, *bitmap, {0, 0, 8, 8}));
  EXPECT_EQ(PixelOf(*other, 4, 4), kGreen);
  EXPECT_TRUE(LogsOneError("the screen is locked", [&] { screen->SwapBuffers(); }));
  EXPECT_TRUE(bitmap->Unlock());
  EXPECT_TRUE(screen->Unlock());
  screen->SwapBuffers();
}

/// Destroyed after DirectFB's own static objects.
BitmapPtr leftAlive[2];

TEST(DirectFbDeathTest, SurfacesOutliveTheirContextAndTheProcess) {
  ExpectInAProcessOfItsOwn([] {
    setenv("DFBARGS", kArgs, 1);
    GraphicsPtr graphics = Open();
    leftAlive[0].reset(graphics->CreateScreen(false));
    leftAlive[1].reset(graphics->CreateBitmap(8, 8, VuPixelFormat::ARGB8888));
    graphics.reset();
    leftAlive[1]->Clear(VuColor{kRed});
    leftAlive[0]->DrawObject({0, 0, 8, 8}, *leftAlive[1]);
    leftAlive[0]->SwapBuffers();
    EXPECT_EQ(PixelOf(*leftAlive[0], 7, 7), kRed);
  });
}

}  // namespace
}  // namespace ZIRK::tests
