// All backends in one process.

#include <vector>

#include "helpers/logged.h"
#include "helpers/pixels.h"
#include "scenes/backends.h"

namespace ZIRK::scenes {
namespace {

using helpers::LogsOneError;
using helpers::PixelOf;

constexpr const char* kTogether[] = {
    BackendName(BackendType::FB), BackendName(BackendType::OpenGLES2),
    BackendName(BackendType::Hybrid), BackendName(BackendType::DirectFB)};

struct Context {
  explicit Context(const char* backend) : graphics(Open(backend)) {
    if (graphics) bitmap.reset(graphics->CreateBitmap(4, 4, VuPixelFormat::ARGB8888));
  }

  std::unique_ptr<VuGraphics> graphics;
  std::unique_ptr<VuBitmap> bitmap;
};

class Together : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* const backend : kTogether) {
      contexts_.emplace_back(backend);
      if (contexts_.back().bitmap) continue;
      ASSERT_TRUE(MayBeMissing(backend)) << backend;
      GTEST_SKIP() << backend << " does not run here";
    }
  }

  std::vector<Context> contexts_;
};

TEST_F(Together, ContextsOfDifferentBackendsLiveSideBySide) {
  constexpr uint32_t kColors[] = {0xFF102030, 0xFF405060, 0xFF708090, 0xFFA0B0C0};
  for (size_t i = 0; i < contexts_.size(); ++i) contexts_[i].bitmap->Clear({kColors[i]});
  // Each works on when another is deleted.
  for (size_t left = contexts_.size(); left > 1; --left) {
    contexts_.erase(contexts_.begin());
    for (size_t i = 0; i < contexts_.size(); ++i)
      EXPECT_EQ(PixelOf(*contexts_[i].bitmap, 0, 0), kColors[i + 5 - left]) << left;
  }
}

TEST_F(Together, BitmapsOfAnotherBackendAreRefused) {
  const VuRect all{0, 0, 4, 4};
  for (Context& foreign : contexts_) {
    const std::unique_ptr<VuBitmap> screen(foreign.graphics->CreateScreen(4, 4, false));
    for (VuBitmap* const stranger : {foreign.bitmap.get(), screen.get()}) {
      stranger->Clear(white);
      for (Context& own : contexts_) {
        if (&own == &foreign) continue;
        SCOPED_TRACE(own.graphics->GetGraphicsType());
        VuBitmap& target = *own.bitmap;
        target.Clear();
        const auto expectRefused = [&](const auto& use) {
          EXPECT_TRUE(LogsOneError("another backend", [&] { use(), target.Finish(); }));
        };
        expectRefused([&] { target.DrawObject(all, *stranger); });
        expectRefused([&] { target.DrawRect(all, white, VuTransform(), *stranger, nullptr); });
        expectRefused([&] { EXPECT_FALSE(target.CopyPixels(VuPoint{}, *stranger, all)); });
        EXPECT_EQ(PixelOf(target, 0, 0), 0u);
      }
    }
  }
}

TEST_F(Together, DefaultGoesOnToDirectFbWithoutOpenGl) {
  contexts_.clear();
  const std::string driver = std::getenv("SDL_VIDEODRIVER");
  VuGraphics::SetDefaultImpl("Default");
  EXPECT_EQ(std::unique_ptr<VuGraphics>(VuGraphics::Create())->GetGraphicsType(),
            TypeCode(BackendType::OpenGLES2));
  setenv("SDL_VIDEODRIVER", "none", 1);
  EXPECT_EQ(std::unique_ptr<VuGraphics>(VuGraphics::Create())->GetGraphicsType(),
            TypeCode(BackendType::DirectFB));
  setenv("SDL_VIDEODRIVER", driver.c_str(), 1);
  VuGraphics::SetDefaultImpl(nullptr);
}

}  // namespace
}  // namespace ZIRK::scenes
