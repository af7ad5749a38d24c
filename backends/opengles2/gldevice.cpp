#include "opengles2/gldevice.h"

#include <dlfcn.h>
#include <zirk/impl/log.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

namespace ZIRK::backends {

namespace {

// None of these has a destructor that would run at exit.
std::recursive_mutex deviceMutex;
GlDevice* device = nullptr;
bool exiting = false;

// The string that Fail() writes to; null for the log.
thread_local std::string* refusal = nullptr;

/// The names of renderers of Mesa and others that draw by the processor.
constexpr const char* kSoftwareRenderers[] = {"llvmpipe", "softpipe", "swrast",
                                              "Software Rasterizer", "SwiftShader"};

/// Version and vendor of EGL; empty if the current context is not EGL's. SDL cannot find this out:
/// GLX returns addresses even for functions that do not exist.
std::string DescribeEgl() {
  constexpr int32_t kVendor = 0x3053, kVersion = 0x3054;
  void* const library = dlopen("libEGL.so.1", RTLD_LAZY | RTLD_NOLOAD);
  if (!library) return "";
  const auto getDisplay = reinterpret_cast<void* (*)()>(dlsym(library, "eglGetCurrentDisplay"));
  const auto query =
      reinterpret_cast<const char* (*)(void*, int32_t)>(dlsym(library, "eglQueryString"));
  void* const display = getDisplay && query ? getDisplay() : nullptr;
  const char* const version = display ? query(display, kVersion) : nullptr;
  const char* const vendor = display ? query(display, kVendor) : nullptr;
  std::string text = version && vendor ? "EGL " + std::string(version) + " (" + vendor + ")" : "";
  dlclose(library);
  return text;
}

/// The refresh rate, with the separator before it; empty if it is unknown.
std::string DescribeRefresh(const SDL_DisplayMode& mode) {
  return mode.refresh_rate > 0 ? ", " + std::to_string(mode.refresh_rate) + " Hz" : "";
}

/// Sets a hint of SDL, and restores it.
class TemporaryHint {
 public:
  TemporaryHint(const char* name, const char* value) : name_(name) {
    if (const char* before = Sdl().GetHint(name)) before_ = before;
    Sdl().SetHint(name, value);
  }
  ~TemporaryHint() { Sdl().SetHint(name_, before_.empty() ? nullptr : before_.c_str()); }
  TemporaryHint(const TemporaryHint&) = delete;
  TemporaryHint& operator=(const TemporaryHint&) = delete;

 private:
  const char* const name_;
  std::string before_;
};

bool DriverIs(const char* name) {
  const char* const driver = Sdl().GetCurrentVideoDriver();
  return driver && std::strcmp(driver, name) == 0;
}

}  // namespace

GlRefusal::GlRefusal(std::string& reason) {
  refusal = &reason;
}

GlRefusal::~GlRefusal() {
  refusal = nullptr;
}

std::shared_ptr<GlDevice> GlDevice::Acquire() {
  const std::lock_guard<std::recursive_mutex> lock(deviceMutex);
  if (device && !device->IsLost())
    if (auto shared = device->weak_from_this().lock()) return shared;
  if (exiting) {
    Fail("no context", "the process is exiting");
    return nullptr;
  }
  std::shared_ptr<GlDevice> created(new GlDevice);
  if (!created->Start()) {
    created->Shutdown();
    return nullptr;
  }
  device = created.get();
  // The driver has static objects with destructors. These run after this handler, and before the
  // destructors of the application's static objects, which may own surfaces.
  static const bool registered = std::atexit([] {
                                   const std::lock_guard<std::recursive_mutex> atExit(deviceMutex);
                                   exiting = true;
                                   if (device) device->Shutdown();
                                 }) == 0;
  static_cast<void>(registered);
  return created;
}

GlDevice::~GlDevice() {
  const std::lock_guard<std::recursive_mutex> lock(deviceMutex);
  if (device == this) device = nullptr;
  Shutdown();
}

bool GlDevice::Fail(const char* what, const char* why) {
  if (refusal)
    *refusal = std::string("OpenGL ES 2: ") + what + ": " + why;
  else
    ZIRK_LOG_ERROR("OpenGL ES 2: %s: %s", what, why);
  return false;
}

bool GlDevice::Start() {
  if (const char* missing = Sdl().Missing()) return Fail("no SDL", missing);
  if (!StartVideo() || !StartContext()) return false;
  LogDisplays();
  return true;
}

bool GlDevice::StartVideo() {
  // Signals and the screen saver are the application's to handle.
  const TemporaryHint signals(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
  const TemporaryHint screenSaver(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
  sdlWasIdle_ = Sdl().WasInit(0) == 0;
  const char* const named = Sdl().GetHint(SDL_HINT_VIDEODRIVER);
  driverWasChosen_ = (named && *named) || Sdl().WasInit(SDL_INIT_VIDEO);
  std::string why;
  if (driverWasChosen_)
    StartDriver(why);
  else
    StartFirstDriver(why);
  return videoStarted_ || Fail("no video", why.c_str());
}

bool GlDevice::StartDriver(std::string& why) {
  videoStarted_ = Sdl().InitSubSystem(SDL_INIT_VIDEO) == 0;
  if (!videoStarted_) why += (why.empty() ? "" : ", ") + std::string(Sdl().GetError());
  return videoStarted_;
}

/// Tries SDL's drivers in SDL's order. SDL itself would try Wayland even without a compositor,
/// which its library reports on the console, and not every version would try the off-screen driver.
bool GlDevice::StartFirstDriver(std::string& why) {
  const bool mayHaveWayland = std::getenv("WAYLAND_DISPLAY") || std::getenv("XDG_RUNTIME_DIR");
  for (int i = 0; i < Sdl().GetNumVideoDrivers(); ++i) {
    const std::string_view name = Sdl().GetVideoDriver(i);
    // The last two neither show nor draw anything.
    if ((name == "wayland" && !mayHaveWayland) || name == "dummy" || name == "evdev") continue;
    const TemporaryHint driver(SDL_HINT_VIDEODRIVER, name.data());
    if (StartDriver(why)) return true;
  }
  return false;
}

bool GlDevice::HasSdlAlone() const {
  return sdlWasIdle_ && !(Sdl().WasInit(0) & ~Uint32{SDL_INIT_VIDEO | SDL_INIT_EVENTS});
}

bool GlDevice::SetAttributes() {
  // On X11, applications expect an opaque window; elsewhere alpha is kept.
  const int alphaBits = DriverIs("x11") ? 0 : 8;
  const struct {
    SDL_GLattr name;
    int value;
  } attributes[] = {
      {SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_ES},
      {SDL_GL_CONTEXT_MAJOR_VERSION, 2},
      {SDL_GL_CONTEXT_MINOR_VERSION, 0},
      {SDL_GL_SHARE_WITH_CURRENT_CONTEXT, 0},
      {SDL_GL_RED_SIZE, 8},
      {SDL_GL_GREEN_SIZE, 8},
      {SDL_GL_BLUE_SIZE, 8},
      {SDL_GL_ALPHA_SIZE, alphaBits},
      {SDL_GL_DEPTH_SIZE, 0},
      {SDL_GL_STENCIL_SIZE, 0},
      {SDL_GL_DOUBLEBUFFER, 1},
  };
  for (const auto& attribute : attributes)
    if (Sdl().SetAttribute(attribute.name, attribute.value) != 0)
      return Fail("no such attribute", Sdl().GetError());
  return true;
}

/// Creates a context that reports its loss, if the driver has such contexts.
SDL_GLContext GlDevice::CreateContext() {
  for (const int reports :
       {SDL_GL_CONTEXT_RESET_LOSE_CONTEXT, SDL_GL_CONTEXT_RESET_NO_NOTIFICATION}) {
    if (Sdl().SetAttribute(SDL_GL_CONTEXT_RESET_NOTIFICATION, reports) != 0) continue;
    if (SDL_GLContext context = Sdl().CreateContext(hiddenWindow_)) return context;
  }
  return nullptr;
}

bool GlDevice::StartContext() {
  if (!SetAttributes()) return false;
  SdlCalls& sdl = Sdl();
  // Adds a reference to those that open windows hold.
  if (sdl.LoadLibrary(nullptr) != 0) return Fail("no library", Sdl().GetError());
  libraryLoaded_ = true;
  if (!OpenHiddenWindow()) return Fail("no window", Sdl().GetError());
  const OthersContext others;
  context_ = CreateContext();
  if (!context_) return Fail("no context", Sdl().GetError());
  if (!MakeCurrent(hiddenWindow_)) return false;
  if (const char* missing = gl_.Load(sdl.GetProcAddress)) return Fail("no function", missing);
  loaded_ = true;
  GLint range[2] = {0, 0}, precision = 0;
  gl_.GetShaderPrecisionFormat(GL_FRAGMENT_SHADER, GL_HIGH_FLOAT, range, &precision);
  // Fewer bits are not enough for positions in a texture of 2048 pixels.
  if (precision < 16) return Fail("no use", "the fragment stage has no highp");
  gl_.LoadExtensions(sdl.GetProcAddress);
  gl_.GetIntegerv(GL_MAX_TEXTURE_SIZE, &maxTextureSize_);
  hasOneChannel_ = DrawsOnOneChannel(gl_);
  if (const auto* renderer = reinterpret_cast<const char*>(gl_.GetString(GL_RENDERER)))
    renderer_ = renderer;
  if (const auto* version = reinterpret_cast<const char*>(gl_.GetString(GL_VERSION)))
    version_ = version;
  egl_ = DescribeEgl();
  return batch_.Start();
}

SDL_Window* GlDevice::CreateWindow(int width, int height, int display, bool hidden) {
  // Keeps the effects of the desktop.
  const TemporaryHint compositor(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
  const Uint32 flags = SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI |
                       (hidden ? SDL_WINDOW_HIDDEN : SDL_WINDOW_SHOWN);
  const auto position = static_cast<int>(
      SDL_WINDOWPOS_CENTERED_DISPLAY(display < Sdl().GetNumVideoDisplays() ? display : 0));
  return Sdl().CreateWindow("ZIRK", position, position, width, height, flags);
}

bool GlDevice::OpenHiddenWindow() {
  // Wayland's scales are multiples of 1/120, so this size gives the exact density.
  constexpr int kSize = 120;
  hiddenWindow_ = CreateWindow(kSize, kSize, 0, true);
  return hiddenWindow_ != nullptr;
}

/// SDL counts in points, which are several pixels each on displays of high density.
double GlDevice::PixelsPerPoint(SDL_Window* window) {
  int points = 0, pixels = 0, unused = 0;
  Sdl().GetWindowSize(window, &points, &unused);
  Sdl().GetDrawableSize(window, &pixels, &unused);
  return points > 0 && pixels > points ? double(pixels) / points : 1;
}

/// Shrinks the window until its framebuffer has `width` x `height` pixels.
void GlDevice::FitToPixels(SDL_Window* window, int width, int height) {
  const double density = PixelsPerPoint(window);
  if (density == 1) return;
  // The density is computed from whole numbers, so it may be slightly wrong.
  const auto toPoints = [=](int size) {
    return static_cast<int>(std::ceil(size / density - 0.25));
  };
  Sdl().SetWindowSize(window, toPoints(width), toPoints(height));
}

GlDevice::Reach GlDevice::WindowsReach() const {
  if (DriverIs("offscreen")) return Reach::Nothing;
  return DriverIs("KMSDRM") ? Reach::Display : Reach::WindowSystem;
}

bool GlDevice::HasGpu() const {
  return std::none_of(std::begin(kSoftwareRenderers), std::end(kSoftwareRenderers),
                      [&](const char* name) { return renderer_.find(name) != std::string::npos; });
}

std::string GlDevice::Description() const {
  const char* const driver = Sdl().GetCurrentVideoDriver();
  return version_ + " by SDL's " + (driver ? driver : "video") + (egl_.empty() ? "" : ", ") + egl_ +
         " and " + renderer_;
}

std::optional<ImageSize> GlDevice::DisplaySize(int index) const {
  // SDL's off-screen driver reports a display that does not exist.
  if (IsLost() || WindowsReach() == Reach::Nothing) return std::nullopt;
  SDL_DisplayMode mode = {};
  if (Sdl().GetDesktopDisplayMode(index, &mode) != 0 || mode.w <= 0 || mode.h <= 0)
    return std::nullopt;
  const double density = PixelsPerPoint(hiddenWindow_ ? hiddenWindow_ : windows_.front());
  return ImageSize{static_cast<int>(std::lround(mode.w * density)),
                   static_cast<int>(std::lround(mode.h * density))};
}

void GlDevice::LogDisplays() const {
  for (int i = 0; i < Sdl().GetNumVideoDisplays(); ++i) {
    SDL_DisplayMode mode = {};
    const std::optional<ImageSize> size = DisplaySize(i);
    if (!size || Sdl().GetDesktopDisplayMode(i, &mode) != 0) continue;
    ZIRK_LOG_DEBUG("display %d: %d x %d%s, %u bits, SDL's %s", i, size->width, size->height,
                   DescribeRefresh(mode).c_str(), SDL_BYTESPERPIXEL(mode.format) * 8,
                   Sdl().GetCurrentVideoDriver());
  }
}

SDL_Window* GlDevice::OpenWindow(int width, int height, int display) {
  const OthersContext others(context_);
  batch_.Flush();
  if (IsLost()) {
    Fail("no window", "the context is lost");
    return nullptr;
  }
  // From here on nothing throws.
  windows_.reserve(windows_.size() + 1);
  SDL_Window* const window = CreateWindow(width, height, display, false);
  if (!window) {
    Fail("no window", Sdl().GetError());
    return nullptr;
  }
  windows_.push_back(window);
  FitToPixels(window, width, height);
  SDL_DisplayMode mode = {};
  Sdl().GetDesktopDisplayMode(display, &mode);
  ZIRK_LOG_INFO("screen %d: %d x %d%s, %s", display, width, height, DescribeRefresh(mode).c_str(),
                Description().c_str());
  // Only now: without a window system, OpenGL ends with the last window.
  if (hiddenWindow_) Destroy(hiddenWindow_);
  hiddenWindow_ = nullptr;
  if (MakeCurrent(window)) return window;
  CloseWindow(window);
  return nullptr;
}

/// Detaches the context first: some drivers detach it when any window is deleted, and SDL still
/// reports it as current.
void GlDevice::Destroy(SDL_Window* window) {
  DetachContext();
  current_ = nullptr;
  Sdl().DestroyWindow(window);
}

void GlDevice::CloseWindow(SDL_Window* window) {
  const auto at = std::find(windows_.begin(), windows_.end(), window);
  // A device that was shut down has no windows.
  if (at == windows_.end()) return;
  const OthersContext others(context_);
  windows_.erase(at);
  if (interval_.window == window) interval_.window = nullptr;
  const bool hasOther = !windows_.empty() || hiddenWindow_ || OpenHiddenWindow();
  Destroy(window);
  if (!hasOther) {
    Lose("no window is left");
    return;
  }
  // Mesa keeps the buffers of a window until its context is made current with another one.
  if (MakeCurrent()) DetachContext();
}

bool GlDevice::MakeCurrent(SDL_Window* window) {
  if (IsLost()) return false;
  if (!window) window = current_ ? current_ : hiddenWindow_ ? hiddenWindow_ : windows_.front();
  if (current_ == window && Sdl().GetCurrentContext() == context_) return true;
  if (Sdl().MakeCurrent(window, context_) != 0) {
    const char* const why = Sdl().GetError();
    // Nothing else tells a lost context from one that is current in another thread.
    if (!std::strstr(why, "CONTEXT_LOST")) return Fail("no current context in this thread", why);
    Lose(why);
    return false;
  }
  current_ = window;
  batch_.WindowChanged();
  return true;
}

/// With some drivers each window has its own interval. With others all windows share one, which the
/// application may have set for its own windows.
void GlDevice::SetSwapInterval(int interval) {
  if (interval_.window == current_ && interval_.asked == interval &&
      Sdl().GetSwapInterval() == interval_.got)
    return;
  Sdl().SetSwapInterval(interval);
  interval_ = {current_, interval, Sdl().GetSwapInterval()};
}

void GlDevice::FlushAndDetach() {
  batch_.Flush();
  {
    const GlScope scope(*this);
    if (!scope) return;
    gl_.Flush();
    Check("drawing");
  }
  DetachContext();
}

void GlDevice::DetachContext() {
  if (IsLost() || Sdl().GetCurrentContext() != context_) return;
  Sdl().MakeCurrent(nullptr, nullptr);
  current_ = nullptr;
}

bool GlDevice::Check(const char* where) {
  const GLenum first = gl_.TakeError();
  if (gl_.GetGraphicsResetStatus && gl_.GetGraphicsResetStatus() != GL_NO_ERROR) {
    Lose(where);
    return false;
  }
  if (first == GL_NO_ERROR) return true;
  if (first == GL_OUT_OF_MEMORY) return Fail(where, "out of memory");
  ZIRK_LOG_ERROR("OpenGL ES 2: %s: error 0x%04x", where, first);
  return false;
}

void GlDevice::Lose(const char* why) {
  Fail("the context is lost", why);
  // OpenGL's objects are deleted with the context. There may be no window to delete them one by
  // one.
  loaded_ = false;
  Shutdown();
}

void GlDevice::Shutdown() {
  if (context_) {
    const OthersContext others(context_);
    if (loaded_ && MakeCurrent()) batch_.Stop();
    Sdl().DeleteContext(context_);
    context_ = nullptr;
  }
  current_ = nullptr;
  for (SDL_Window* window : windows_) Sdl().DestroyWindow(window);
  windows_.clear();
  if (hiddenWindow_) Sdl().DestroyWindow(hiddenWindow_);
  hiddenWindow_ = nullptr;
  if (libraryLoaded_) Sdl().UnloadLibrary();
  libraryLoaded_ = false;
  if (videoStarted_) Sdl().QuitSubSystem(SDL_INIT_VIDEO);
  videoStarted_ = false;
}

OthersContext::~OthersContext() {
  if (context_) Sdl().MakeCurrent(window_, context_);
}

GlScope::GlScope(GlDevice& owner, SDL_Window* window) : others_(owner.context_) {
  usable_ = owner.MakeCurrent(window);
}

}  // namespace ZIRK::backends
