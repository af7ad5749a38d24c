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
class GlPage;

/// While it exists, errors of this thread when a device or a window is opened are stored in its
/// text instead of being logged.
class GlRefusal {
 public:
  explicit GlRefusal(std::string& reason);
  ~GlRefusal();
  GlRefusal(const GlRefusal&) = delete;
  GlRefusal& operator=(const GlRefusal&) = delete;
};

/// The OpenGL context that the whole plug-in shares, and the windows that it draws to.
///
/// It lives as long as a graphics context or a surface holds it. Surfaces may therefore outlive the
/// graphics context that made them, and may be drawn onto those of another one. After the OpenGL
/// context is lost, or while the process exits, no operation has an effect; surfaces can only be
/// deleted.
class GlDevice : public std::enable_shared_from_this<GlDevice> {
 public:
  /// The existing device, or a new one. Null, after one error line, if it does not start.
  static std::shared_ptr<GlDevice> Acquire();
  ~GlDevice();
  GlDevice(const GlDevice&) = delete;
  GlDevice& operator=(const GlDevice&) = delete;

  const GlFunctions& Gl() const { return gl_; }
  /// The drawing that was not sent yet.
  GlBatch& Batch() { return batch_; }
  int MaxTextureSize() const { return maxTextureSize_; }
  /// Whether textures can have one channel.
  bool HasOneChannel() const { return hasOneChannel_; }
  /// The layers, owned by the screens; the link here lets them find each other.
  std::weak_ptr<GlLayers>& Layers() { return layers_; }
  /// The pages, owned by the textures on them. Some links may have expired.
  std::vector<std::weak_ptr<GlPage>>& Pages() { return pages_; }
  const std::vector<std::weak_ptr<GlPage>>& Pages() const { return pages_; }
  bool IsLost() const { return !context_; }
  /// Whether nothing else in the process uses SDL.
  bool HasSdlAlone() const;

  /// Where the windows of SDL's driver appear.
  enum class Reach {
    Nothing,      ///< Off-screen.
    Display,      ///< On a display that the process uses exclusively.
    WindowSystem  ///< On a desktop, which owns the displays.
  };
  Reach WindowsReach() const;
  /// Whether the environment or the application chose SDL's driver.
  bool IsDriverChosen() const { return driverWasChosen_; }
  /// Whether OpenGL draws by a GPU rather than by the processor.
  bool HasGpu() const;
  /// For messages: the version of OpenGL, SDL's driver, EGL, and the name of the renderer.
  std::string Description() const;

  /// The size of display `index` in pixels; nullopt if there is no such display.
  std::optional<ImageSize> DisplaySize(int index) const;

  /// Opens a window whose framebuffer has that size, if the display allows it. Null after one error
  /// line.
  SDL_Window* OpenWindow(int width, int height, int display);
  void CloseWindow(SDL_Window* window);

  /// Makes the context current with `window`, or with any window if that is null. False if the
  /// context is lost; an error line says so once.
  bool MakeCurrent(SDL_Window* window = nullptr);

  /// Sets the number of display frames per frame of the current window.
  void SetSwapInterval(int interval);

  /// Sends all drawing and detaches the context, so that another thread may use it.
  void FlushAndDetach();
  /// Detaches the context from this thread, so that another one may use it.
  void DetachContext();

  /// Whether OpenGL has reported no error since the last call; if it has, an error line gives the
  /// error and `where`.
  bool Check(const char* where);

 private:
  friend class GlScope;

  GlDevice() : batch_(*this) {}

  bool Start();
  bool StartVideo();
  bool StartDriver(std::string& why);
  bool StartFirstDriver(std::string& why);
  bool SetAttributes();
  SDL_GLContext CreateContext();
  bool StartContext();
  void LogDisplays() const;
  SDL_Window* CreateWindow(int width, int height, int display, bool hidden);
  bool OpenHiddenWindow();
  static double PixelsPerPoint(SDL_Window* window);
  static void FitToPixels(SDL_Window* window, int width, int height);
  void Destroy(SDL_Window* window);
  static bool Fail(const char* what, const char* why);
  void Lose(const char* why);
  void Shutdown();

  GlFunctions gl_;
  GlBatch batch_;
  SDL_GLContext context_ = nullptr;
  /// The window that the context is current with while there is no other. It is never shown.
  SDL_Window* hiddenWindow_ = nullptr;
  SDL_Window* current_ = nullptr;  ///< The window that the context is current with.
  std::vector<SDL_Window*> windows_;
  std::weak_ptr<GlLayers> layers_;
  std::vector<std::weak_ptr<GlPage>> pages_;
  bool sdlWasIdle_ = false;
  bool driverWasChosen_ = false;
  bool videoStarted_ = false;
  bool libraryLoaded_ = false;
  bool loaded_ = false;  ///< Whether the functions can be called.
  int maxTextureSize_ = 0;
  bool hasOneChannel_ = false;
  std::string renderer_, version_;
  std::string egl_;  ///< Version and vendor of EGL; empty if the context is not EGL's.
  /// The window whose interval was set last, the requested interval, and what SDL then reported.
  struct {
    SDL_Window* window = nullptr;
    int asked = 0;
    int got = 0;
  } interval_;
};

/// Remembers the context that is current, unless it is `ours`, and makes it current again.
class OthersContext {
 public:
  explicit OthersContext(SDL_GLContext ours = nullptr) {
    SDL_GLContext const current = Sdl().GetCurrentContext();
    if (!current || current == ours) return;
    context_ = current;
    window_ = Sdl().GetCurrentWindow();
  }
  ~OthersContext();
  OthersContext(const OthersContext&) = delete;
  OthersContext& operator=(const OthersContext&) = delete;

 private:
  SDL_GLContext context_ = nullptr;
  SDL_Window* window_ = nullptr;
};

/// Makes the device's context current while it exists; every call to OpenGL needs one. Its end
/// makes the application's own context current again, if this thread had one.
class GlScope {
 public:
  explicit GlScope(GlDevice& owner, SDL_Window* window = nullptr);

  /// Whether OpenGL can be called.
  explicit operator bool() const { return usable_; }

 private:
  const OthersContext others_;
  bool usable_;
};

}  // namespace ZIRK::backends
