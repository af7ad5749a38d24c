// What happens where SDL or OpenGL fails.

#include <malloc.h>

#include <deque>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>

#include "backends/opengles2/injectedgl.h"
#include "helpers/logged.h"
#include "helpers/rows.h"

namespace ZIRK::backends {
namespace {

using helpers::LogsOneError;

/// Makes the call at `function` fail.
template <typename R, typename... A>
void Refuse(R (*&function)(A...)) {
  function = [](A...) {
    SDL_SetError("refused");
    if constexpr (std::is_pointer_v<R>)
      return R{nullptr};
    else
      return R{-1};
  };
}

class Faults : public InjectedGl {
 protected:
  /// Counts down to the call that fails.
  static inline int left_ = 0;
  static bool IsDue() { return left_ > 0 && --left_ == 0; }

  static void ExpectNoStart(const std::string& said) {
    EXPECT_TRUE(LogsOneError(said, [] { EXPECT_EQ(GlDevice::Acquire(), nullptr); }));
    EXPECT_EQ(SDL_WasInit(SDL_INIT_VIDEO), 0u) << said;
  }
};

struct StartFault {
  const char* name;  ///< Describes it.
  void (*inject)(SdlCalls& sdl);
};

class StartFaults : public Faults, public testing::WithParamInterface<StartFault> {};

ROWS(StartFaults, {.name = "no SDL: SDL_free", .inject = [](auto& sdl) { sdl.Free = nullptr; }},
     {.name = "no video: refused", .inject = [](auto& sdl) { Refuse(sdl.InitSubSystem); }},
     {.name = "no such attribute: refused", .inject = [](auto& sdl) { Refuse(sdl.SetAttribute); }},
     {.name = "no library: refused", .inject = [](auto& sdl) { Refuse(sdl.LoadLibrary); }},
     {.name = "no window: refused", .inject = [](auto& sdl) { Refuse(sdl.CreateWindow); }},
     {.name = "no context: refused", .inject = [](auto& sdl) { Refuse(sdl.CreateContext); }},
     {.name = "no current context", .inject = [](auto& sdl) { Refuse(sdl.MakeCurrent); }},
     {.name = "no function: gl", .inject = [](auto& sdl) { Refuse(sdl.GetProcAddress); }},
     // Faults of the system: what SDL is told to use is missing.
     {.name = "no video: nonsense",
      .inject = [](auto&) { setenv("SDL_VIDEODRIVER", "nonsense", 1); }},
     {.name = "Could not load EGL library",
      .inject = [](auto&) { setenv("SDL_VIDEO_EGL_DRIVER", "/absent/libEGL.so", 1); }});

TEST_P(StartFaults, GiveOneErrorAndLeaveNothingBehind) {
  const std::string driver = getenv("SDL_VIDEODRIVER");
  GetParam().inject(Sdl());
  ExpectNoStart(GetParam().name);
  Sdl() = SdlCalls();
  setenv("SDL_VIDEODRIVER", driver.c_str(), 1);
  unsetenv("SDL_VIDEO_EGL_DRIVER");
  EXPECT_NE(NewContext(), nullptr);
}

TEST_F(Faults, OfTheDriverAtTheStart) {
  Replace("glGetShaderiv", [](GLuint, GLenum, GLint* value) { *value = !IsDue(); });
  Replace("glGetProgramiv", [](GLuint, GLenum, GLint* value) { *value = !IsDue(); });
  // Two shaders and one program, five times over: the first, and the last.
  for (const int call : {1, 2, 3, 14, 15}) {
    left_ = call;
    ExpectNoStart(call % 3 ? "does not compile a shader" : "does not link a program");
  }
  Replace("glGetShaderPrecisionFormat", [](GLenum, GLenum, GLint*, GLint* bits) { *bits = 10; });
  ExpectNoStart("highp");
}

TEST_F(Faults, OfMakingThingsOfOpenGl) {
  Replace("glGetError", []() -> GLenum {
    return std::exchange(left_, 0) ? GL_OUT_OF_MEMORY : Real<PFNGLGETERRORPROC>("glGetError")();
  });
  constexpr int Buffers = 0, BufferData = 1, Textures = 2, TexImage = 3, Framebuffers = 4,
                Attaching = 5, TexSubImage = 6, ReadPixels = 7, None = 8;
  Watch<Buffers>("glGenBuffers", PFNGLGENBUFFERSPROC());
  Watch<BufferData>("glBufferData", PFNGLBUFFERDATAPROC());
  Watch<Textures>("glGenTextures", PFNGLGENTEXTURESPROC());
  Watch<TexImage>("glTexImage2D", PFNGLTEXIMAGE2DPROC());
  Watch<Framebuffers>("glGenFramebuffers", PFNGLGENFRAMEBUFFERSPROC());
  Watch<Attaching>("glFramebufferTexture2D", PFNGLFRAMEBUFFERTEXTURE2DPROC());
  Watch<TexSubImage>("glTexSubImage2D", PFNGLTEXSUBIMAGE2DPROC());
  Watch<ReadPixels>("glReadPixels", PFNGLREADPIXELSPROC());
  int failing = None;
  seen_ = [&failing](int which) { return which == failing ? !(left_ = 1) : true; };
  for (failing = Buffers; failing <= TexImage; ++failing) ExpectNoStart("starting: out of memory");
  // A context works without textures of A8 that can be drawn on.
  for (; failing <= Attaching; ++failing) EXPECT_NE(NewContext(), nullptr);
  failing = None;
  const auto graphics = NewContext();
  ASSERT_NE(graphics, nullptr);
  const BitmapPtr bitmap = New(*graphics, 4, 4);
  uint32_t pixel = 0;
  const VuRect one{0, 0, 1, 1};
  const auto make = [&] { return New(*graphics, 8, 8) != nullptr; };
  const auto write = [&] { return bitmap->SetPixels(one, &pixel, 4); };
  const auto read = [&] { return bitmap->GetPixels(one, &pixel); };
  const auto expectFault = [&](int call, const std::string& where, const auto& operation) {
    bitmap->DrawRect({0, 0, 2, 2}, white);
    failing = call;
    EXPECT_TRUE(LogsOneError(where + ": out of memory", [&] { EXPECT_FALSE(operation()); }));
    failing = None;
  };
  for (const int call : {Textures, TexImage}) expectFault(call, "making a texture", make);
  for (const int call : {Framebuffers, Attaching}) expectFault(call, "making a framebuffer", make);
  expectFault(BufferData, "drawing", [&] { return bitmap->Finish(), false; });
  expectFault(TexSubImage, "writing pixels", write);
  expectFault(ReadPixels, "reading pixels", read);
}

TEST_F(Faults, ATextureThatCannotBeDrawnOnIsRefused) {
  Replace("glCheckFramebufferStatus", [](GLenum) -> GLenum { return GL_FRAMEBUFFER_UNSUPPORTED; });
  const auto graphics = NewContext();
  EXPECT_TRUE(LogsOneError("cannot draw on a texture of 8 x 9",
                           [&] { EXPECT_EQ(New(*graphics, 8, 9), nullptr); }));
}

TEST_F(Faults, ALostContextEndsEverythingButDeletion) {
  ReportLosses();
  const auto graphics = NewContext();
  const BitmapPtr screen = NewScreen(*graphics, 8, 8);
  const BitmapPtr bitmap = New(*graphics, 8, 8);
  screen->DrawRect({0, 0, 8, 8}, VuColor{0xFFFFFFFF});
  lost_ = true;
  EXPECT_TRUE(LogsOneError("the context is lost", [&] { bitmap->Finish(); }));
  lost_ = false;
  uint32_t pixel = 7;
  screen->DrawRect({0, 0, 8, 8}, VuColor{0xFFFFFFFF});
  screen->SwapBuffers();
  bitmap->Clear();
  EXPECT_FALSE(bitmap->GetPixels({0, 0, 1, 1}, &pixel));
  EXPECT_FALSE(bitmap->SetPixels({0, 0, 1, 1}, &pixel, 4));
  EXPECT_FALSE(bitmap->Lock(true));
  EXPECT_EQ(New(*graphics, 8, 8), nullptr);
  // A new context works, and refuses what the lost one made.
  const auto next = NewContext();
  ASSERT_NE(next, nullptr);
  const BitmapPtr fresh = New(*next, 8, 8);
  EXPECT_TRUE(LogsOneError("from before the context was lost", [&] {
    EXPECT_FALSE(fresh->CopyPixels({0, 0}, *bitmap, {0, 0, 8, 8}));
  }));
  EXPECT_EQ(PixelOf(*fresh, 0, 0), 0u);
}

// Without a window system OpenGL ends with the last window.
TEST_F(Faults, EveryWindowIsOpenedBeforeTheOneThatItReplacesIsClosed) {
  static Uint32 replaced;
  replaced = 0;
  Sdl().CreateWindow = [](auto... arguments) {
    EXPECT_TRUE(replaced == 0 || SDL_GetWindowFromID(replaced));
    SDL_Window* const window = SDL_CreateWindow(arguments...);
    replaced = SDL_GetWindowID(window);
    return window;
  };
  const auto graphics = NewContext();
  for (int i = 0; i < 2; ++i) EXPECT_NE(NewScreen(*graphics, 8, 8), nullptr);
  Sdl().CreateWindow = [](auto...) -> SDL_Window* { return nullptr; };
  EXPECT_TRUE(LogsOneError("no window: ", [&] { NewScreen(*graphics, 8, 8); }));
  Sdl() = SdlCalls();
  EXPECT_NE(NewScreen(*graphics, 8, 8), nullptr);
}

TEST_F(Faults, WithoutAWindowOrWithALostOneTheContextEnds) {
  enum { OnClosing, OnMakingCurrent };
  for (const auto fault : {OnClosing, OnMakingCurrent}) {
    const auto graphics = NewContext();
    BitmapPtr screen = fault == OnClosing ? NewScreen(*graphics, 8, 8) : nullptr;
    if (fault == OnMakingCurrent)
      Sdl().MakeCurrent = [](auto, auto) { return SDL_SetError("EGL_CONTEXT_LOST"); };
    else
      Refuse(Sdl().CreateWindow);
    EXPECT_TRUE(LogsOneError("the context is lost: ", [&] {
      screen = fault == OnClosing ? nullptr : NewScreen(*graphics, 8, 8);
    }));
    Sdl() = SdlCalls();
  }
}

TEST_F(Faults, StartsWithoutADisplayAndWithoutReportsOfLosses) {
  unsetenv("SDL_VIDEODRIVER");
  Sdl().InitSubSystem = [](Uint32 systems) {
    return SDL_GetHint(SDL_HINT_VIDEODRIVER) ? SDL_InitSubSystem(systems) : -1;
  };
  Sdl().CreateContext = [](SDL_Window* w) { return IsDue() ? nullptr : SDL_GL_CreateContext(w); };
  left_ = 1;
  EXPECT_NE(NewContext(), nullptr);
  EXPECT_EQ(SDL_GetHint(SDL_HINT_VIDEODRIVER), nullptr);
}

TEST_F(Faults, SurfacesLargerThanTextures) {
  Replace("glGetIntegerv",
          [](GLenum what, GLint* value) { *value = what == GL_MAX_TEXTURE_SIZE ? 64 : 0; });
  const auto graphics = NewContext();
  EXPECT_EQ(graphics->GetMaxTextureSize(), 64);
  EXPECT_NE(New(*graphics, 64, 64), nullptr);
  EXPECT_TRUE(LogsOneError("at most 64", [&] { EXPECT_EQ(New(*graphics, 65, 1), nullptr); }));
  EXPECT_TRUE(LogsOneError("", [&] { EXPECT_EQ(New(*graphics, 0, 5), nullptr); }));
  EXPECT_EQ(graphics->TotalMemory(), graphics->AvailableMemory());
}

/// What the heap holds: the process's pages would count those of an emulator as well.
size_t BytesInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

TEST_F(Faults, CreatingAndDeletingTakesNoMemory) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "sanitizers keep what has been freed";
#endif
  const auto graphics = NewContext();
  const auto cycle = [&](int times) {
    for (int i = 0; i < times; ++i) {
      const BitmapPtr bitmap = New(*graphics, 16, 16, VuPixelFormat(i % 6));
      bitmap->DrawRect({2, 2, 9, 9}, white);
      if (i % 500) continue;
      const BitmapPtr screen = NewScreen(*graphics, 32, 32);
      screen->CopyPixels({0, 0}, *bitmap, {0, 0, 16, 16});
      screen->SwapBuffers();
    }
  };
  const BitmapPtr page = New(*graphics, 64, 16);
  const auto write = [&](int times) {
    std::deque<VuFont> fonts;
    for (int i = 0; i < times; ++i) {
      fonts.emplace_back(ZIRK_TEST_FONTS "/sans.ttf", 0, 8);
      page->DrawText(fonts.back(), "Ag", {2, 2}, white);
    }
  };
  cycle(1000);
  write(300);
  const unsigned available = graphics->AvailableMemory();
  const size_t before = BytesInUse();
  cycle(2000);
  write(60);
  EXPECT_LT(BytesInUse(), before + (256U << 10));
  EXPECT_EQ(graphics->AvailableMemory(), available);
}

}  // namespace
}  // namespace ZIRK::backends
