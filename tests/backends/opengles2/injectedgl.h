#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "helpers/pixels.h"
#include "opengles2/glgraphics.h"
#include "opengles2/glscreen.h"
#include "support/offscreen.h"

namespace ZIRK::backends {

using helpers::PixelOf;

/// OpenGL off-screen, with functions of SDL or OpenGL replaced before it starts.
class InjectedGl : public testing::Test {
 protected:
  void SetUp() override {
    support::UseOffscreenOpenGl();
    const bool runs = GlDevice::Acquire() != nullptr;
    ASSERT_TRUE(runs || !std::getenv("ZIRK_TEST_REQUIRE_GL"));
    if (!runs) GTEST_SKIP() << "no OpenGL ES 2 here";
    Sdl().GetProcAddress = [](const char* name) -> void* {
      void* const real = SDL_GL_GetProcAddress(name);
      const auto at = replaced_.find(name);
      if (at == replaced_.end()) return real;
      real_[name] = real;
      return at->second;
    };
  }
  void TearDown() override {
    Sdl() = SdlCalls();
    replaced_.clear();
    seen_ = nullptr;
  }

  /// OpenGL's function `name` is `function` from the next start on.
  template <typename Lambda>
  static void Replace(const char* name, Lambda function) {
    replaced_[name] = reinterpret_cast<void*>(+function);
  }
  /// The function that was replaced.
  template <typename F>
  static F Real(const char* name) {
    return reinterpret_cast<F>(real_[name]);
  }

  /// Asks `seen_` whether a call of OpenGL's function `name` reaches OpenGL. The second argument is
  /// a null pointer of the function's type.
  template <int Which, typename... A>
  static void Watch(const char* name, void (*)(A...)) {
    static const char* const watched = name;
    Replace(name, [](A... a) {
      if (seen_(Which)) Real<void (*)(A...)>(watched)(a...);
    });
  }
  static inline std::function<bool(int)> seen_;

  /// The rectangles of textures that are sent are noted in `sent_`.
  static void NoteUploads() {
    Replace("glTexSubImage2D", [](GLenum target, GLint level, GLint x, GLint y, GLsizei width,
                                  GLsizei height, GLenum format, GLenum type, const void* data) {
      sent_.push_back({x, y, width, height});
      Real<PFNGLTEXSUBIMAGE2DPROC>("glTexSubImage2D")(target, level, x, y, width, height, format,
                                                      type, data);
    });
  }
  static inline std::vector<std::array<int, 4>> sent_;

  /// The driver reports the context's loss while `lost_`.
  static void ReportLosses() {
    lost_ = false;
    Replace("glGetString", [](GLenum) { return "GL_KHR_robustness"; });
    Replace("glGetGraphicsResetStatusKHR",
            []() -> GLenum { return lost_ ? GL_GUILTY_CONTEXT_RESET_EXT : GL_NO_ERROR; });
  }
  static inline bool lost_ = false;

  using BitmapPtr = std::unique_ptr<VuBitmap>;

  /// A handle for what a context has made, if it has.
  static BitmapPtr HandleOf(VuBitmapImpl* made) {
    return made ? std::make_unique<VuBitmap>(made) : nullptr;
  }
  static BitmapPtr New(VuGraphicsImpl& graphics, int width, int height,
                       VuPixelFormat format = VuPixelFormat::ARGB8888) {
    return HandleOf(graphics.CreateBitmap(width, height, format));
  }
  static BitmapPtr NewScreen(VuGraphicsImpl& graphics, int width, int height, uint8_t index = 0,
                             VuPixelFormat format = VuPixelFormat::ARGB8888) {
    return HandleOf(graphics.CreateScreen({width, height, index, 2, format, false}));
  }
  static std::unique_ptr<GlGraphics> NewContext() {
    auto device = GlDevice::Acquire();
    return device ? std::make_unique<GlGraphics>(std::move(device)) : nullptr;
  }

 private:
  static inline std::map<std::string, void*> replaced_, real_;
};

}  // namespace ZIRK::backends
