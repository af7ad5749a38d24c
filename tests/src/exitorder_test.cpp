// The process ends cleanly whatever the application leaves alive. Each of these ends a process
// whose static objects still hold something, and reads what the plug-in says to that.

#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <cstdlib>
#include <memory>

#include "support/plugins.h"

namespace ZIRK {
namespace {

/// Destroyed last of the static objects below, when the compositor has gone already.
struct EnablesAtExit {
  bool armed = false;
  ~EnablesAtExit() {
    if (!armed) return;
    fprintf(stderr, "layers at exit: %d\n", VuCompositor::GetVirtualLayerCount());
    VuCompositor::Enable(true);
  }
} enablesAtExit;
std::unique_ptr<VuGraphics> graphics;
std::unique_ptr<VuBitmap> bitmap;
std::shared_ptr<VuCompositorImpl> compositor;

class ExitOrderDeathTest : public testing::Test {
 protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

  static void CreateAll() {
    LogLevel = 2;
    support::InstallAnnouncing("Hybrid");
    graphics.reset(VuGraphics::Create());
    bitmap.reset(graphics->CreateBitmap(1, 1, VuPixelFormat::ARGB8888));
    support::InstallAnnouncingCompositor();
    VuCompositor::Enable(true);
  }
};

TEST_F(ExitOrderDeathTest, HandlesInStaticObjects) {
  EXPECT_EXIT(
      {
        CreateAll();
        enablesAtExit.armed = true;
        exit(0);
      },
      testing::ExitedWithCode(0),
      "compositor deleted\n.*bitmap deleted\n.*context deleted\n.*layers at exit: 0\n"
      "CreateVuCompositor 0\ncompositor deleted\nplug-in closed\n$");
}

TEST_F(ExitOrderDeathTest, HandlesThatAreNeverDestroyed) {
  EXPECT_EXIT(
      {
        CreateAll();
        static VuBitmap* const leftBitmap = bitmap.release();
        static VuGraphics* const leftGraphics = graphics.release();
        exit(leftBitmap && leftGraphics ? 0 : 1);
      },
      testing::ExitedWithCode(0), "CreateVuCompositor 0\ncompositor deleted\nplug-in closed\n$");
}

TEST_F(ExitOrderDeathTest, AShareInTheCompositor) {
  EXPECT_EXIT(
      {
        CreateAll();
        compositor = VuCompositorImpl::GetInstance();
        exit(0);
      },
      testing::ExitedWithCode(0), "compositor deleted\n.*plug-in closed\n$");
}

TEST_F(ExitOrderDeathTest, AContextHeldByTheOverride) {
  EXPECT_EXIT(
      {
        CreateAll();
        VuGraphics::SetGraphicsOverride([held = std::shared_ptr<VuGraphics>(VuGraphics::Create())](
                                            bool) { return held.get(); });
        exit(0);
      },
      testing::ExitedWithCode(0), "context deleted\n.*context deleted\n");
}

}  // namespace
}  // namespace ZIRK
