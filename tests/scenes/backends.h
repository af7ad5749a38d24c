#pragma once

#include <gtest/gtest.h>
#include <zirk/graphicsimplloader.h>
#include <zirk/vufontatlas.h>
#include <zirk/zirk.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "helpers/fonts.h"
#include "support/offscreen.h"

namespace ZIRK::scenes {

/// Every backend that draws; all pictures are drawn by each.
inline constexpr const char* kBackends[] = {
    BackendName(BackendType::FB),       BackendName(BackendType::OpenGLES2),
    BackendName(BackendType::Hybrid),   "HybridWithoutOpenGL",
    BackendName(BackendType::DirectFB),
};

/// It has drawn the golden pictures, and matches exactly what others may round differently.
inline bool IsReference(const char* backend) {
  return backend == kBackends[0];
}

/// Whether tests may be skipped where it does not run.
inline bool MayBeMissing(const char* backend) {
  const std::string name = backend;
  if (name == BackendName(BackendType::DirectFB)) return !std::getenv("ZIRK_TEST_REQUIRE_DIRECTFB");
  return name == BackendName(BackendType::OpenGLES2) && !std::getenv("ZIRK_TEST_REQUIRE_GL");
}

/// Null where the backend does not run. One that the library does not know is opened by its file.
inline std::unique_ptr<VuGraphics> Open(const char* backend) {
  support::UseOffscreenOpenGl();
  support::UseOffscreenDirectFb();
  if (std::string(backend) == "Plain") {
    const auto loader = GraphicsImplLoader::GetInstance();
    loader->SetupGfxImpl(backend, "libZIRKImplPlain.so", {0, 0}, false);
    auto* const impl = static_cast<VuGraphicsImpl*>(loader->CreateImplInstance(backend, false));
    return impl ? std::make_unique<VuGraphics>(impl) : nullptr;
  }
  static const std::string driver = std::getenv("SDL_VIDEODRIVER");
  const bool withoutOpenGl = std::string(backend) == "HybridWithoutOpenGL";
  setenv("SDL_VIDEODRIVER", withoutOpenGl ? "none" : driver.c_str(), 1);
  return std::unique_ptr<VuGraphics>(
      VuGraphics::Create(withoutOpenGl ? BackendName(BackendType::Hybrid) : backend, false));
}

/// A surface to draw on, transparent: a bitmap, or a screen where that is drawn in another way. A
/// window that OpenGL draws on has 32 bits.
inline std::unique_ptr<VuBitmap> NewTarget(VuGraphics& graphics, int width, int height,
                                           VuPixelFormat format = {}) {
  if (graphics.GetGraphicsType() != TypeCode(BackendType::Hybrid) ||
      format > VuPixelFormat::XRGB8888)
    return std::unique_ptr<VuBitmap>(graphics.CreateBitmap(width, height, format));
  return std::unique_ptr<VuBitmap>(graphics.CreateScreen(width, height, true, 0, false, format));
}

using helpers::FontFile;

struct TestFont : VuFont {
  TestFont(const char* name, int size, bool bold = false)
      : VuFont(new VuFontAtlas(FontFile(name).c_str(), 0, size, bold, false)) {}
};

class OnEachBackend : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    graphics_ = Open(GetParam());
    ASSERT_TRUE(graphics_ || MayBeMissing(GetParam()));
    if (!graphics_) GTEST_SKIP() << GetParam() << " does not run here";
  }
  std::unique_ptr<VuBitmap> New(int width, int height, VuPixelFormat format = {}) {
    return std::unique_ptr<VuBitmap>(graphics_->CreateBitmap(width, height, format));
  }

  std::unique_ptr<VuBitmap> NewTarget(int width, int height, VuPixelFormat format = {}) {
    return scenes::NewTarget(*graphics_, width, height, format);
  }

  std::unique_ptr<VuGraphics> graphics_;
};

}  // namespace ZIRK::scenes
