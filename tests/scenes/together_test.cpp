// All backends in one process.

#include <algorithm>
#include <iterator>
#include <vector>

#include "scenes/backends.h"
#include "support/logged.h"

namespace ZIRK::scenes {
namespace {

constexpr const char* kTogether[] = {"FB", "OpenGLES2", "Hybrid", "DirectFB"};

struct Context {
  explicit Context(const char* backend)
      : graphics(Open(backend)), bitmap(graphics->CreateBitmap(4, 4, VuPixelFormat::ARGB8888)) {}

  uint32_t FirstPixel() {
    uint32_t pixel = 0;
    EXPECT_TRUE(bitmap->GetPixels({0, 0, 1, 1}, &pixel));
    return pixel;
  }

  std::unique_ptr<VuGraphics> graphics;
  std::unique_ptr<VuBitmap> bitmap;
};

class Together : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* const backend : kTogether) {
      if (Open(backend)) continue;
      ASSERT_TRUE(MayBeMissing(backend)) << backend;
      GTEST_SKIP() << backend << " does not run here";
    }
  }
};

TEST_F(Together, ContextsOfDifferentBackendsLiveSideBySide) {
  std::vector<Context> contexts(std::begin(kTogether), std::end(kTogether));
  constexpr uint32_t kColors[] = {0xFF102030, 0xFF405060, 0xFF708090, 0xFFA0B0C0};
  for (size_t i = 0; i < contexts.size(); ++i) contexts[i].bitmap->Clear({kColors[i]});
  // Those that are left go on while the others go.
  for (size_t left = contexts.size(); left > 1; --left) {
    contexts.erase(contexts.begin());
    for (size_t i = 0; i < contexts.size(); ++i)
      EXPECT_EQ(contexts[i].FirstPixel(), kColors[i + 5 - left]) << left;
  }
}

TEST_F(Together, BitmapsOfAnotherBackendAreRefused) {
  for (const char* const own : kTogether)
    for (const char* const other : kTogether) {
      if (own == other) continue;
      Context context(own), foreign(other);
      foreign.bitmap->Clear(white);
      const std::string log = support::LoggedAt(3, [&] {
        context.bitmap->DrawObject({0, 0, 4, 4}, *foreign.bitmap);
        context.bitmap->Finish();
      });
      EXPECT_EQ(context.FirstPixel(), 0u) << own << " " << other;
      EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << own << " " << other << log;
    }
}

TEST_F(Together, DefaultGoesOnToDirectFbWithoutOpenGl) {
  const std::string driver = std::getenv("SDL_VIDEODRIVER");
  VuGraphics::SetDefaultImpl("Default");
  EXPECT_EQ(std::unique_ptr<VuGraphics>(VuGraphics::Create())->GetGraphicsType(), 1);
  setenv("SDL_VIDEODRIVER", "none", 1);
  EXPECT_EQ(std::unique_ptr<VuGraphics>(VuGraphics::Create())->GetGraphicsType(), 2);
  setenv("SDL_VIDEODRIVER", driver.c_str(), 1);
  VuGraphics::SetDefaultImpl(nullptr);
}

}  // namespace
}  // namespace ZIRK::scenes
