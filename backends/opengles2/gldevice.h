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

/// While it exists, the reason why a device or a window does not open goes into its text instead
/// of the log, on this thread.
class GlRefusal {
 public:
  explicit GlRefusal(std::string& reason);
  ~GlRefusal();
  GlRefusal(const GlRefusal&) = delete;
  GlRefusal& operator=(const GlRefusal&) = delete;
};

/// OpenGL as all of this plug-in shares it: one OpenGL context, and the windows that it draws to.
///
/// It lives as long as any graphics context or surface holds it. So surfaces may outlive the
/// graphics context that made them, and may be drawn on those of another. Once the OpenGL context
/// is lost or the process exits, no operation has an effect; surfaces can only be deleted.
class GlDevice : public std::enable_shared_from_this<GlDevice> {
 public:
  /// The existing device, or a new one. Null, after one error line, if it does not start.
  static std::shared_ptr<GlDevice> Acquire();
  ~GlDevice();
  GlDevice(const GlDevice&) = delete;
  GlDevice& operator=(const GlDevice&) = delete;

  const GlFunctions& Gl() const { return gl_; }
  /// The quadrilaterals that are not drawn yet.
  GlBatch& Batch() { return batch_; }
  int MaxTextureSize() const { return maxTextureSize_; }
  /// Whether textures can have one channel.
  bool HasOneChannel() const { return hasOneChannel_; }
  /// Owned by the screens, and kept here so that they find each other.
  std::weak_ptr<GlLayers>& Layers() { return layers_; }
  /// Owned by the textures in them. Some may be gone.
  std::vector<std::weak_ptr<GlPage>>& Pages() { return pages_; }
  const std::vector<std::weak_ptr<GlPage>>& Pages() const { return pages_; }
  bool IsLost() const { return !context_; }
  /// Whether SDL knows of no other user in the process.
  bool HasSdlAlone() const;

  /// What the windows of SDL's driver are seen on.
  enum class Reach {
    Nothing,      ///< They are off-screen.
    Display,      ///< A display that the process has for itself.
    WindowSystem  ///< A desktop, which owns the displays.
  };
  Reach WindowsReach() const;
  /// Whether the environment or the application chose SDL's driver.
  bool IsDriverChosen() const { return driverWasChosen_; }
  /// Whether a GPU draws; else the processor does.
  bool HasGpu() const;
  /// For messages: the version of OpenGL, SDL's driver, EGL, and the name of the renderer.
  std::string Description() const;

  /// The size of display `index` in pixels; nullopt if there is no such display.
  std::optional<ImageSize> DisplaySize(int index) const;

  /// Opens a window with a framebuffer of that size, or the nearest that the display allows. Null
  /// after one error line.
  SDL_Window* OpenWindow(int width, int height, int display);
  void CloseWindow(SDL_Window* window);

  /// Makes the context current with `window`, or with any window if that is null. False if the
  /// context is lost; an error line says so once.
  bool MakeCurrent(SDL_Window* window = nullptr);

  /// Sets how many of the display's frames one frame of the current window lasts.
  void SetSwapInterval(int interval);

  /// Sends what has been drawn and detaches the context, so that another thread may use it.
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
  /// What the context is current with while there is no other window; never shown.
  SDL_Window* hiddenWindow_ = nullptr;
  SDL_Window* current_ = nullptr;  ///< The window that the context is current with.
  std::vector<SDL_Window*> windows_;
  std::weak_ptr<GlLayers> layers_;
  std::vector<std::weak_ptr<GlPage>> pages_;
  bool sdlWasIdle_ = false;
  bool driverWasChosen_ = false;
  bool videoStarted_ = false;
  bool libraryLoaded_ = false;
  bool loaded_ = false;  ///< The functions can be called.
  int maxTextureSize_ = 0;
  bool hasOneChannel_ = false;
  std::string renderer_, version_;
  std::string egl_;  ///< Its version and vendor; empty where the context is not one of EGL's.
  /// The window whose interval was set last, the interval asked for, and what SDL then reported.
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

/// Makes the device's context current while it exists; every call of OpenGL needs one. Afterwards
/// the application's own context, if it had one in this thread, is current again.
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
