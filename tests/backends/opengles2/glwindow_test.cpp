// A screen's picture in windows of other sizes.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

#include "backends/opengles2/injectedgl.h"

namespace ZIRK::backends {
namespace {

using VuSize = std::array<int, 2>;
constexpr uint32_t kRed = 0xFFFF0000u, kBlue = 0xFF0000FFu, kBlack = 0xFF000000u;

/// A screen of 16 x 8 in a framebuffer that is large enough for windows of several sizes.
class Windows : public InjectedGl {
 protected:
  void SetUp() override {
    InjectedGl::SetUp();
    Sdl().CreateWindow = [](const char* title, int x, int y, int, int, Uint32 flags) {
      return SDL_CreateWindow(title, x, y, 64, 64, flags);
    };
    Sdl().GetDrawableSize = [](SDL_Window*, int* width, int* height) {
      *width = size_[0];
      *height = size_[1];
    };
  }
  static uint32_t Shown(int x, int y) {
    const auto device = GlDevice::Acquire();
    const GlScope scope(*device);
    uint32_t pixel = 0;
    device->Batch().BindFramebuffer(0);
    device->Gl().ReadPixels(x, size_[1] - 1 - y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &pixel);
    return ExchangeRedAndBlue(pixel);
  }
  static inline VuSize size_;
};

TEST_F(Windows, ShowTheWholePictureBetweenBars) {
  const struct {
    VuSize window;
    Box box;  ///< Where the picture is expected.
  } rows[] = {{{32, 16}, {0, 0, 32, 16}},  {{64, 8}, {24, 0, 40, 8}}, {{16, 8}, {0, 0, 16, 8}},
              {{40, 60}, {0, 20, 40, 40}}, {{8, 12}, {0, 4, 8, 8}},   {{18, 9}, {1, 0, 17, 8}}};
  const auto graphics = NewContext();
  const BitmapPtr screen = NewScreen(*graphics, 16, 8, 0, VuPixelFormat::RGB565);
  const BitmapPtr copy = New(*graphics, 16, 8, VuPixelFormat::RGB565);
  for (const auto& [window, box] : rows) {
    size_ = window;
    screen->DrawRect({0, 0, 8, 8}, VuColor{kRed});
    screen->DrawRect({8, 0, 8, 8}, VuColor{kBlue});
    copy->CopyPixels({0, 0}, *screen, {0, 0, 16, 8});
    EXPECT_EQ(PixelOf(*screen, 7, 7), 0xF800u) << window[0];
    EXPECT_EQ(PixelOf(*copy, 8, 0), 0x001Fu) << window[0];
    screen->SwapBuffers();
    EXPECT_EQ(Shown(box.x0, box.y0), kRed) << window[0];
    EXPECT_EQ(Shown(box.x1 - 1, box.y1 - 1), kBlue) << window[0];
    // Only scaling by a fraction blurs it.
    EXPECT_EQ(Shown((box.x0 + box.x1) / 2, box.y0) == kBlue, window[0] != 40) << window[0];
    if (box.x0 + box.y0 > 0) {
      EXPECT_EQ(Shown(box.x0 ? box.x0 - 1 : 0, box.y0 ? box.y0 - 1 : 0), kBlack) << window[0];
    }
  }
}

TEST_F(Windows, HaveAllPixelsOfADenseDisplay) {
  static VuSize points;
  Sdl() = SdlCalls();
  Sdl().GetCurrentVideoDriver = [] { return "wayland"; };
  Sdl().GetDrawableSize = [](SDL_Window* window, int* width, int* height) {
    SDL_GetWindowSize(window, width, height);
    *width = *width * 3 / 2;
    *height = *height * 3 / 2;
  };
  Sdl().SetWindowSize = [](SDL_Window*, int width, int height) { points = {width, height}; };
  const auto graphics = NewContext();
  EXPECT_NE(NewScreen(*graphics, 301, 150), nullptr);
  EXPECT_EQ(points, (VuSize{201, 100}));
  SDL_DisplayMode mode = {};
  SDL_GetDesktopDisplayMode(0, &mode);
  EXPECT_EQ(HandleOf(graphics->CreateScreen(true))->GetBounds().width, mode.w * 3 / 2);
}

TEST(XWindow, IsResizedWhileFramesAreShown) {
  const std::string folder = testing::TempDir();
  // The server ends with its only client.
  const std::string command =
      "exec timeout 60 Xvfb -displayfd 1 -terminate -screen 0 320x240x24 "
      "-fbdir " +
      folder + " 2>/dev/null";
  FILE* const server = popen(command.c_str(), "r");
  char name[16] = ":";
  const bool runs = std::fgets(name + 1, sizeof name - 1, server) != nullptr;
  if (runs) {
    setenv("DISPLAY", std::strtok(name, "\n"), 1);
    setenv("SDL_VIDEODRIVER", "x11", 1);
    const auto graphics = GlGraphics::Start();
    ASSERT_NE(graphics, nullptr);
    const auto screen =
        std::make_unique<VuBitmap>(graphics->CreateScreen({160, 80, 0, 2, {}, false}));
    const auto shows = [&](int red) {
      // The file is a window dump, in which the pixels come last.
      std::vector<uint32_t> pixels(320 * 240);
      std::ifstream file(folder + "/Xvfb_screen0", std::ios::binary);
      const auto bytes = static_cast<std::streamsize>(pixels.size() * 4);
      for (int i = 0; i < 500; ++i) {
        screen->Clear(VuColor{kRed});
        screen->SwapBuffers();
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        file.seekg(-std::streamoff{bytes}, std::ios::end)
            .read(reinterpret_cast<char*>(pixels.data()), bytes);
        for (uint32_t& pixel : pixels) pixel |= kBlack;  // The dump leaves alpha out.
        if (std::count(pixels.begin(), pixels.end(), kRed) == red) return true;
      }
      return false;
    };
    EXPECT_TRUE(shows(160 * 80));
    SDL_SetWindowPosition(SDL_GL_GetCurrentWindow(), 0, 0);
    SDL_SetWindowSize(SDL_GL_GetCurrentWindow(), 320, 200);
    EXPECT_TRUE(shows(320 * 160));
  }
  pclose(server);
  unsetenv("SDL_VIDEODRIVER");
  if (!runs) GTEST_SKIP() << "no Xvfb here";
}

}  // namespace
}  // namespace ZIRK::backends
