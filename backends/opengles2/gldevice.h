#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "images/image.h"
#include "opengles2/glbatch.h"
#include "opengles2/glfunctions.h"

namespace ZIRK::backends {

class GlLayers;

/// OpenGL, as everything of this plug-in shares it: one context, and the windows that it draws to.
///
/// It lives as long as any graphics context or surface holds it, so surfaces may outlive the
/// context that made them, and may be drawn on those of another. After the context was lost, or
/// the process has begun to exit, nothing is done any more; surfaces are only deleted.
class GlDevice : public std::enable_shared_from_this<GlDevice> {
 public:
  /// The one there is, or a new one. Null, after one error line, if there can be none; where there
  /// is a `reason` to be filled, it is said there instead.
  static std::shared_ptr<GlDevice> Acquire(std::string* reason = nullptr);
  ~GlDevice();
  GlDevice(const GlDevice&) = delete;
  GlDevice& operator=(const GlDevice&) = delete;

  const GlFunctions& Gl() const { return gl_; }
  GlBatch& Pending() { return batch_; }
  int MaxTextureSize() const { return maxTextureSize_; }
  /// Whether textures may have one channel.
  bool HasOneChannel() const { return hasOneChannel_; }
  /// The screens' own, kept here for them to find each other.
  std::weak_ptr<GlLayers>& Layers() { return layers_; }
  bool IsLost() const { return !context_; }
  /// Whether nobody else in the process uses SDL, as far as SDL tells.
  bool HasSdlAlone() const;

  /// The size of display `index`, if there is one.
  std::optional<ImageSize> DisplaySize(int index) const;

  /// A window with its framebuffer. Null after one error line.
  SDL_Window* OpenWindow(int width, int height, int display);
  void CloseWindow(SDL_Window* window);

  /// Makes `window`, or with null any window, the one that is drawn to. False if the context is
  /// lost; an error line says so once.
  bool MakeCurrent(SDL_Window* window = nullptr);

  /// How many frames of the display one of the window that is drawn to lasts.
  void SetSwapInterval(int interval);

  /// Sends what has been drawn and detaches the context, so that another thread may use it.
  void FlushAndDetach();
  /// Detaches the context from this thread, so that another one may use it.
  void DetachContext();

  /// Whether OpenGL has reported no error since the last time; if it has, an error line says what
  /// went wrong at `where`.
  bool Check(const char* where);

 private:
  friend class GlScope;

  GlDevice() : batch_(*this) {}

  bool Start();
  bool StartVideo();
  bool SetAttributes();
  SDL_GLContext CreateContext();
  bool StartContext();
  SDL_Window* CreateWindow(int width, int height, int display, bool hidden);
  bool OpenHiddenWindow();
  void Destroy(SDL_Window* window);
  static bool Fail(const char* what, const char* why);
  void Lose(const char* why);
  void Shutdown();

  GlFunctions gl_;
  GlBatch batch_;
  SDL_GLContext context_ = nullptr;
  /// What the context is current with while there is no other window; never shown.
  SDL_Window* hiddenWindow_ = nullptr;
  SDL_Window* current_ = nullptr;
  std::vector<SDL_Window*> windows_;
  std::weak_ptr<GlLayers> layers_;
  bool sdlWasIdle_ = false;
  bool videoStarted_ = false;
  bool libraryLoaded_ = false;
  bool loaded_ = false;  ///< The functions can be called.
  int maxTextureSize_ = 0;
  bool hasOneChannel_ = false;
  /// The window whose interval was set last, what was asked for, and what SDL said then.
  struct {
    SDL_Window* window = nullptr;
    int asked = 0;
    int got = 0;
  } interval_;
};

/// Makes the context current again that is so now, if there is one and it is not `ours`.
class OthersContext {
 public:
  explicit OthersContext(SDL_GLContext ours = nullptr) {
    SDL_GLContext const current = SDL_GL_GetCurrentContext();
    if (!current || current == ours) return;
    context_ = current;
    window_ = SDL_GL_GetCurrentWindow();
  }
  ~OthersContext();
  OthersContext(const OthersContext&) = delete;
  OthersContext& operator=(const OthersContext&) = delete;

 private:
  SDL_GLContext context_ = nullptr;
  SDL_Window* window_ = nullptr;
};

/// Stands around everything that calls OpenGL: our context is current in it. Afterwards the
/// application's own, if it had one in this thread, is current again.
class GlScope {
 public:
  explicit GlScope(GlDevice& owner, SDL_Window* window = nullptr);

  explicit operator bool() const { return usable_; }

 private:
  const OthersContext others_;
  bool usable_;
};

}  // namespace ZIRK::backends
