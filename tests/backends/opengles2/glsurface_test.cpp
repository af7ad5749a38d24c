// What surfaces of OpenGL do that the scenes do not show.

#include <array>
#include <csignal>
#include <thread>
#include <vector>

#include "backends/opengles2/injectedgl.h"
#include "opengles2/glcompositor.h"

namespace ZIRK::backends {
namespace {

using Format = VuPixelFormat;

class Surfaces : public InjectedGl {
 protected:
  void SetUp() override {
    InjectedGl::SetUp();
    if (IsSkipped()) return;
    Replace("glDrawElements", [](GLenum mode, GLsizei count, GLenum type, const void* indices) {
      ++draws_;
      Real<PFNGLDRAWELEMENTSPROC>("glDrawElements")(mode, count, type, indices);
    });
    NoteUploads();
    graphics_ = NewContext();
    draws_ = 0;
    sent_.clear();
  }
  BitmapPtr New(int width, int height, Format format = Format::ARGB8888) {
    return InjectedGl::New(*graphics_, width, height, format);
  }
  std::unique_ptr<GlGraphics> graphics_;
  static inline int draws_ = 0;
};

TEST_F(Surfaces, AScreenOfManyPicturesIsFewDrawCalls) {
  const BitmapPtr target = New(640, 400);
  std::vector<BitmapPtr> icons, masks;
  for (int i = 0; i < 40; ++i) {
    icons.push_back(New(20 + i % 3, 20));
    icons.back()->Clear(VuColor{0x80004080u + static_cast<uint32_t>(i * 5)});
    masks.push_back(New(20, 20 + i % 2, Format::A8));
    masks.back()->Clear(VuColor{0x80000000u});
  }
  const VuFont font(ZIRK_TEST_FONTS "/sans.ttf", 0, 14);
  const auto drawCell = [&](size_t i, VuRect cell) {
    target->DrawRect(cell, VuColor{0xFF203040});
    target->DrawObject({cell.x + 4, cell.y + 4, 20, 20}, *icons[i], {0, 0, 20, 20});
    target->DrawText(font, "Cell", {cell.x + 8, cell.y + 36}, white);
  };
  const auto drawMore = [&](size_t i, VuRect cell) {
    target->SetClippingRect({cell.x + 2, cell.y + 2, 70, 70});
    drawCell(i, cell);
    target->DrawObject(VuRect{cell.x + 40, cell.y + 4, 32, 32}, *icons[i], {0, 0, 20, 20},
                       VuTransform(), white, *masks[i], nullptr);
    target->DrawLine({cell.x, cell.y + 60}, {cell.x + 79, cell.y + 50}, white);
  };
  // Each overlaps the one before.
  const auto drawTurned = [&](size_t i, VuRect) {
    icons[0]->SetScaleMode(VuScaleMode::Bilinear);
    const VuTransform t(static_cast<float>(12 * i), 40, 1, 1,
                        i % 2 ? static_cast<float>(9 * i) : 0);
    target->DrawObject({0, 0, 20, 20}, *icons[0], {0, 0, 20, 20}, t);
  };
  // Neither colours nor clipping interrupt them.
  const BitmapPtr sheet = New(32, 32);
  const auto drawSprites = [&](size_t, VuRect cell) {
    for (int sprite = 0; sprite < 100; ++sprite) {
      target->DrawObject({cell.x + sprite % 50, cell.y, 8, 8}, *sheet, {sprite % 24, 0, 8, 8});
      target->DrawRect({sprite, 0, 2, 2}, VuColor{0xFF00FF00});
      target->SetClippingRect({0, 0, 640, 50 + sprite});
    }
  };
  // New glyphs are rendered in between, and the atlas grows.
  const auto drawLine = [&](size_t i, VuRect) {
    target->DrawText(font, "The quick brown fox, 0123456789", {5, int(i) * 10}, white);
  };
  const struct {
    const char* name;
    std::function<void(size_t, VuRect)> draw;
    int first, next;  ///< Most draw calls of the first frame, and of each later one.
  } screens[] = {{"rectangles, pictures and labels", drawCell, 5, 2},
                 {"clips, masks and lines", drawMore, 4, 3},
                 {"one bitmap, upright and turned", drawTurned, 1, 1},
                 {"sprites of one bitmap", drawSprites, 5, 5},
                 {"lines of text", drawLine, 8, 1}};
  for (const auto& screen : screens)
    for (const int most : {screen.first, screen.next, screen.next}) {
      target->SetClippingRect(target->GetBounds());
      target->Clear(VuColor{0xFF000000});
      draws_ = 0;
      for (int i = 0; i < 40; ++i) screen.draw(size_t(i), {i % 8 * 80, i / 8 * 80, 80, 80});
      target->Finish();
      EXPECT_LE(draws_, most) << screen.name;
    }
}

TEST_F(Surfaces, AFrameDrawnAgainChangesNoState) {
  graphics_.reset();
  int changes[8] = {};
  seen_ = [&](int which) { return ++changes[which]; };
  Watch<0>("glUniform2fv", PFNGLUNIFORM2FVPROC());
  Watch<1>("glUniform4fv", PFNGLUNIFORM4FVPROC());
  Watch<2>("glUniformMatrix4fv", PFNGLUNIFORMMATRIX4FVPROC());
  Watch<3>("glVertexAttribPointer", PFNGLVERTEXATTRIBPOINTERPROC());
  Watch<4>("glBlendColor", PFNGLBLENDCOLORPROC());
  Watch<5>("glBlendFuncSeparate", PFNGLBLENDFUNCSEPARATEPROC());
  Watch<6>("glUseProgram", PFNGLUSEPROGRAMPROC());
  Sdl().SetSwapInterval = [](int interval) {
    seen_(7);
    return SDL_GL_SetSwapInterval(interval);
  };
  graphics_ = NewContext();
  {
    const BitmapPtr screen = NewScreen(*graphics_, 64, 64);
    const BitmapPtr sheet = New(32, 32);
    screen->SetBlendColor(VuColor{0xFF102030});
    const auto drawFrame = [&](int sprites) {
      std::fill(std::begin(changes), std::end(changes), 0);
      for (int i = 0; i < sprites; ++i) {
        screen->DrawObject({i % 50, i % 60, 8, 8}, *sheet, {i % 24, 0, 8, 8});
        screen->DrawRect({i % 60, 0, 2, 2}, VuColor{0xFF00FF00});
      }
      screen->SwapBuffers();
      return std::vector<int>(std::begin(changes), std::end(changes));
    };
    for (const int count : drawFrame(10)) EXPECT_GT(count, 0);
    // Longer than one draw call can be.
    EXPECT_EQ(drawFrame(5000), std::vector<int>(8));
    screen->SetBlendColor(VuColor{0xFF000000});
    EXPECT_EQ(drawFrame(10), (std::vector<int>{0, 0, 0, 0, 1, 0, 0, 0}));
  }
  graphics_.reset();
}

TEST_F(Surfaces, OnlyScreensOfTwoBuffersWaitForTheDisplay) {
  static std::vector<int> intervals;
  Sdl().SetSwapInterval = [](int interval) {
    intervals.push_back(interval);
    return SDL_GL_SetSwapInterval(interval);
  };
  // A new window has the address of the one before.
  static SDL_Window* closed;
  closed = nullptr;
  Sdl().DestroyWindow = [](SDL_Window* window) {
    if (SDL_Window* const other = std::exchange(closed, window)) SDL_DestroyWindow(other);
  };
  Sdl().CreateWindow = [](auto... arguments) {
    return closed ? std::exchange(closed, nullptr) : SDL_CreateWindow(arguments...);
  };
  const auto newScreen = [&](bool two, uint8_t index = 0) {
    const auto buffers = static_cast<uint8_t>(two ? 2 : 1);
    return HandleOf(graphics_->CreateScreen({8, 8, index, buffers, Format::ARGB8888, false}));
  };
  for (const bool two : {true, true, false}) {
    intervals.clear();
    newScreen(two)->SwapBuffers();
    EXPECT_EQ(intervals, std::vector<int>{two});
  }
  intervals.clear();
  const BitmapPtr screen = HandleOf(graphics_->CreateScreen(true));
  screen->SwapBuffers();
  EXPECT_EQ(intervals, std::vector<int>{1}) << "two unless asked otherwise";
  // Layers share a window, and the last one to swap sets its interval.
  const GlCompositor compositor;
  const BitmapPtr layer = newScreen(false, 1);
  for (const auto& swapped : {&screen, &layer, &layer}) (*swapped)->SwapBuffers();
  EXPECT_EQ(intervals.back(), 0);
}

TEST_F(Surfaces, WritingBesideWhatIsReadInterruptsNothingAndSendsNothingElse) {
  const BitmapPtr target = New(64, 16), atlas = New(64, 16);
  const std::vector<uint32_t> red(64, 0xFFFF0000u), blue(64, 0xFF0000FFu);
  atlas->SetPixels({0, 0, 8, 8}, red.data(), 32);
  target->DrawObject({0, 0, 8, 8}, *atlas, {0, 0, 8, 8});
  atlas->SetPixels({8, 0, 8, 8}, blue.data(), 32);
  target->DrawObject({8, 0, 8, 8}, *atlas, {8, 0, 8, 8});
  EXPECT_EQ(PixelOf(*target, 4, 4), 0xFFFF0000u);
  EXPECT_EQ(PixelOf(*target, 12, 4), 0xFF0000FFu);
  EXPECT_EQ(draws_, 1);
  EXPECT_EQ(sent_, (std::vector<std::array<int, 4>>{{0, 0, 8, 8}, {8, 0, 8, 8}}));
}

// Some drivers give the next object the name of the one that was deleted last.
TEST_F(Surfaces, ANameMayComeBackAtOnce) {
  static GLuint name;
  name = 0;
  Replace("glGenTextures", [](GLsizei count, GLuint* names) {
    Real<PFNGLGENTEXTURESPROC>("glGenTextures")(count, names);
    if (name != 0) *names = name;
  });
  Replace("glGenFramebuffers", [](GLsizei count, GLuint* names) {
    Real<PFNGLGENFRAMEBUFFERSPROC>("glGenFramebuffers")(count, names);
    if (name != 0) *names = name;
  });
  graphics_.reset();
  graphics_ = NewContext();
  name = 1000;
  for (const uint32_t color : {0xFF112233u, 0xFF445566u}) {
    const BitmapPtr bitmap = New(200, 200);
    ASSERT_NE(bitmap, nullptr);
    bitmap->Clear(VuColor{color});
    EXPECT_EQ(PixelOf(*bitmap, 199, 0), color);
  }
  graphics_.reset();
}

TEST_F(Surfaces, AreHandedToAnotherThreadByFlush) {
  const BitmapPtr bitmap = New(4, 4);
  bitmap->DrawRect({0, 0, 4, 4}, white);
  graphics_->Flush();
  EXPECT_EQ(draws_, 1);
  std::thread([&] {
    bitmap->Clear(VuColor{0xFF123456});
    graphics_->Flush();
  }).join();
  EXPECT_EQ(PixelOf(*bitmap, 1, 1), 0xFF123456u);
}

TEST_F(Surfaces, DropTheEventsThatNobodyElseHandles) {
  for (const bool alone : {true, false}) {
    graphics_.reset();
    SDL_InitSubSystem(alone ? 0 : SDL_INIT_EVENTS);
    graphics_ = NewContext();
    const BitmapPtr screen = NewScreen(*graphics_, 8, 8);
    screen->SetName("Title");
    EXPECT_STREQ(SDL_GetWindowTitle(SDL_GL_GetCurrentWindow()), "Title");
    SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT);
    SDL_Event events[4] = {};
    const Uint32 types[] = {SDL_MOUSEBUTTONDOWN, SDL_KEYDOWN, SDL_WINDOWEVENT, SDL_USEREVENT};
    for (int i = 0; i < 4; ++i) {
      events[i].type = types[i];
      events[i].window.windowID = SDL_GetWindowID(SDL_GL_GetCurrentWindow());
    }
    SDL_PeepEvents(events, 4, SDL_ADDEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT);
    for (int i = 0; i < 60; ++i) screen->SwapBuffers();
    EXPECT_EQ(SDL_PeepEvents(events, 4, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT),
              alone ? 1 : 4);
  }
  SDL_QuitSubSystem(SDL_INIT_EVENTS);
}

TEST_F(Surfaces, LeaveTheApplicationItsSdl) {
  graphics_.reset();
  const auto before = std::signal(SIGINT, SIG_DFL);  // SDL handles no signal that is ignored.
  graphics_ = NewContext();
  EXPECT_EQ(std::signal(SIGINT, before), SIG_DFL);
  EXPECT_EQ(SDL_GetHint(SDL_HINT_NO_SIGNAL_HANDLERS), nullptr);
  ASSERT_EQ(SDL_InitSubSystem(SDL_INIT_VIDEO), 0);
  SDL_Window* const window = SDL_CreateWindow("own", 0, 0, 32, 32, SDL_WINDOW_OPENGL);
  SDL_GLContext const context = SDL_GL_CreateContext(window);
  ASSERT_NE(context, nullptr);
  EXPECT_EQ(PixelOf(*New(4, 4), 1, 1), 0u);
  NewScreen(*graphics_, 8, 8)->SwapBuffers();
  graphics_.reset();
  EXPECT_EQ(SDL_GL_GetCurrentContext(), context);
  SDL_GL_DeleteContext(context);
  SDL_DestroyWindow(window);
  SDL_QuitSubSystem(SDL_INIT_VIDEO);
  EXPECT_EQ(SDL_WasInit(SDL_INIT_VIDEO), 0u);
}

}  // namespace
}  // namespace ZIRK::backends
