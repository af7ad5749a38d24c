// The process ends cleanly whatever the application leaves alive. Each test ends a process whose
// static objects still hold something, and compares what the plug-in prints.

#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <cstdlib>
#include <memory>
#include <utility>

#include "helpers/fonts.h"
#include "helpers/plugins.h"

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

/// A process creates one of each, calls `leave` and exits.
void ExpectAtExit(void (*leave)(), const char* said) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        LogLevel = 2;
        helpers::Install("Hybrid");
        helpers::Install("GLCompositor", "Independent", "VuCompositor");
        graphics.reset(VuGraphics::Create());
        bitmap.reset(graphics->CreateBitmap(1, 1, VuPixelFormat::ARGB8888));
        VuCompositor::Enable(true);
        leave();
        exit(0);
      },
      testing::ExitedWithCode(0), said);
}

TEST(ExitOrderDeathTest, HandlesInStaticObjects) {
  ExpectAtExit([] { enablesAtExit.armed = true; },
               "compositor destroyed\nsurface destroyed\ncontext destroyed\nlayers at exit: 0\n"
               "CreateVuCompositor 0\ncompositor destroyed\nplug-in closed\n$");
}

TEST(ExitOrderDeathTest, AShareInTheCompositorAndHandlesThatAreNeverDestroyed) {
  ExpectAtExit(
      [] {
        compositor = VuCompositorImpl::GetInstance();
        [[maybe_unused]] static const std::pair left(bitmap.release(), graphics.release());
      },
      "CreateVuCompositor 0\ncompositor destroyed\nplug-in closed\n$");
}

TEST(ExitOrderDeathTest, AContextHeldByTheOverride) {
  ExpectAtExit(
      [] {
        VuGraphics::SetGraphicsOverride([held = std::shared_ptr<VuGraphics>(VuGraphics::Create())](
                                            bool) { return held.get(); });
      },
      "context destroyed\n.*context destroyed\n.*plug-in closed\n$");
}

TEST(ExitOrderDeathTest, AnAtlasHeldByTheFontOverride) {
  ExpectAtExit(
      [] {
        const std::shared_ptr<VuGraphicsImpl> impl(static_cast<VuGraphicsImpl*>(
            GraphicsImplLoader::GetInstance()->CreateImplInstance("Hybrid", false)));
        auto* const atlas =
            new VuFontAtlas(helpers::FontFile("sans.ttf").c_str(), 0, 9, false, false);
        atlas->GetAtlas(impl.get());
        VuFont::SetFontOverride(
            [impl, font = std::make_shared<VuFont>(atlas)](auto...) { return font.get(); });
      },
      "context destroyed\nsurface destroyed\ncontext destroyed\nplug-in closed\n$");
}

}  // namespace
}  // namespace ZIRK
