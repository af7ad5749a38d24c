// Where Hybrid shows its screens, on machines with and without displays.

#include <linux/fb.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <fstream>
#include <string>

#include "backends/opengles2/injectedgl.h"
#include "helpers/logged.h"
#include "hybrid/hybridgraphics.h"

namespace {

constexpr int kSide = 16;

}  // namespace

/// Replaces the C library's function: every file that can be opened is a framebuffer device of
/// kSide x kSide pixels.
extern "C" int ioctl(int fd, unsigned long request, ...) {
  va_list arguments;
  va_start(arguments, request);
  void* const argument = va_arg(arguments, void*);
  va_end(arguments);
  if (request == FBIOGET_FSCREENINFO) {
    fb_fix_screeninfo fixed{};
    fixed.smem_len = 4 * kSide * kSide;
    fixed.line_length = 4 * kSide;
    fixed.visual = FB_VISUAL_TRUECOLOR;
    *static_cast<fb_fix_screeninfo*>(argument) = fixed;
    return 0;
  }
  if (request == FBIOGET_VSCREENINFO) {
    fb_var_screeninfo mode{};
    mode.xres = mode.yres = mode.xres_virtual = mode.yres_virtual = kSide;
    mode.bits_per_pixel = 32;
    mode.red = {16, 8, 0};
    mode.green = {8, 8, 0};
    mode.blue = {0, 8, 0};
    *static_cast<fb_var_screeninfo*>(argument) = mode;
    return 0;
  }
  return static_cast<int>(syscall(SYS_ioctl, fd, request, argument));
}

namespace ZIRK::backends {
namespace {

struct Machine {
  const char* name;
  const char* driver = "offscreen";  ///< SDL's.
  bool gpu = false;
  bool hasFb = false;
  bool chosen = false;  ///< SDL_VIDEODRIVER is set.
  bool hasSdl = true;
  bool opens = true;  ///< Visible windows.

  bool onFb = false;  ///< Where the picture is expected.
  const char* warning = "";
};

constexpr Machine kMachines[] = {
    {.name = "desktop_without_gpu", .driver = "x11", .hasFb = true},
    {.name = "console_with_gpu", .driver = "KMSDRM", .gpu = true, .hasFb = true},
    {.name = "console_without_gpu", .driver = "KMSDRM", .hasFb = true, .onFb = true},
    {.name = "console_without_gpu_and_framebuffer", .driver = "KMSDRM"},
    {.name = "framebuffer_beside_gpu", .gpu = true, .hasFb = true, .onFb = true},
    {.name = "framebuffer_alone", .hasFb = true, .onFb = true},
    {.name = "gpu_alone", .gpu = true},
    {.name = "nothing", .warning = "llvmpipe is off-screen; /nonexistent: "},
    {.name = "off_screen_by_choice", .hasFb = true, .chosen = true},
    {.name = "no_sdl", .hasFb = true, .hasSdl = false, .onFb = true, .warning = "no SDL: "},
    {.name = "no_window",
     .driver = "x11",
     .hasFb = true,
     .opens = false,
     .onFb = true,
     .warning = "no window: refused"},
};

class Display : public InjectedGl, public testing::WithParamInterface<Machine> {};

TEST_P(Display, IsTheBestOfTheMachine) {
  static Machine machine;
  machine = GetParam();
  Replace("glGetString", [](GLenum what) -> const GLubyte* {
    const char* const renderer = machine.gpu ? "Lima" : "llvmpipe";
    return what == GL_RENDERER ? reinterpret_cast<const GLubyte*>(renderer)
                               : Real<PFNGLGETSTRINGPROC>("glGetString")(what);
  });
  Sdl().GetCurrentVideoDriver = [] { return machine.driver; };
  if (!machine.chosen) Sdl().GetHint = [](const char*) -> const char* { return nullptr; };
  if (!machine.hasSdl) Sdl().Free = nullptr;
  if (!machine.opens)
    Sdl().CreateWindow = [](const char* title, int x, int y, int width, int height, Uint32 flags) {
      if (flags & SDL_WINDOW_HIDDEN) return SDL_CreateWindow(title, x, y, width, height, flags);
      SDL_SetError("refused");
      return static_cast<SDL_Window*>(nullptr);
    };
  const std::string device = testing::TempDir() + "framebuffer" + std::to_string(getpid());
  std::ofstream(device) << std::string(4 * kSide * kSide, '\0');
  setenv("ZIRK_FB_DEVICE", machine.hasFb ? device.c_str() : "/nonexistent", 1);

  HybridGraphics graphics;
  BitmapPtr screen;
  const auto create = [&] { screen = NewScreen(graphics, kSide, kSide); };
  if (*machine.warning)
    EXPECT_TRUE(helpers::LogsOneError(machine.warning, create, 4));
  else
    EXPECT_EQ(helpers::LoggedAt(4, create), "");
  ASSERT_NE(screen, nullptr);
  screen->Clear(VuColor{0xFFFF0000});
  screen->SwapBuffers();
  std::ifstream shown(device);
  EXPECT_EQ(shown.seekg(2).get() == 0xFF, machine.onFb);
  std::remove(device.c_str());
}

INSTANTIATE_TEST_SUITE_P(Hybrid, Display, testing::ValuesIn(kMachines),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace ZIRK::backends
