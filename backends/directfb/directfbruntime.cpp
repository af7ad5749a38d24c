#include "directfb/directfbruntime.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zirk/impl/log.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <thread>
#include <type_traits>

namespace ZIRK::backends {

namespace {

std::mutex mutex;
static_assert(std::is_trivially_destructible_v<std::mutex>);

constexpr std::chrono::milliseconds kLastFrame{100};

IDirectFB* running = nullptr;
bool ended = false;

/// Whether `DFBARGS` sets `option` to any value.
bool UserSets(std::string_view option) {
  const char* const args = std::getenv("DFBARGS");
  for (std::string_view rest = args ? args : ""; !rest.empty();) {
    std::string_view word = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(word.size() + 1, rest.size()));
    if (word.substr(0, 3) == "no-") word.remove_prefix(3);
    if (word.substr(0, word.find('=')) == option) return true;
  }
  return false;
}

/// Starts DirectFB with this plug-in's options, except those that `DFBARGS` already sets.
DFBResult CreateDirectFb(IDirectFB** directFb) {
  // Without these arguments DirectFB would take those of the process.
  char name[] = "zirk";
  char* arguments[] = {name, nullptr};
  char** argv = arguments;
  int argc = 1;
  const DFBResult ready = DirectFBInit(&argc, &argv);
  if (ready != DFB_OK) return ready;
  constexpr struct {
    const char* name;
    const char* setting;
  } kOptions[] = {{"quiet", "quiet"},
                  {"banner", "no-banner"},
                  {"sighandler", "no-sighandler"},
                  {"core-sighandler", "no-core-sighandler"},
                  // The application's threads handle signals.
                  {"thread-block-signals", "thread-block-signals"},
                  // This check would end DirectFB before the last surfaces are deleted.
                  {"deinit-check", "no-deinit-check"}};
  for (const auto& option : kOptions)
    if (!UserSets(option.name)) DirectFBSetOption(option.setting, nullptr);
  return DirectFBCreate(directFb);
}

/// The time that a probe may take. A display may need some of it to change its mode.
constexpr int kProbeTimeoutMs = 10000;

void SilenceOutput() {
  const int nowhere = open("/dev/null", O_WRONLY);
  if (nowhere < 0) return;
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
}

/// The child process: starts DirectFB, writes the result to `out`, and exits.
[[noreturn]] void RunProbe(int out, bool aloud) {
  // DirectFB may call exit(), but the exit handlers belong to the parent process.
  std::atexit([] { _exit(EXIT_FAILURE); });
  for (const int fault : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL}) std::signal(fault, SIG_DFL);
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  if (!aloud) SilenceOutput();
  IDirectFB* directFb = nullptr;
  const DFBResult result = CreateDirectFb(&directFb);
  const bool written = write(out, &result, sizeof result) == static_cast<ssize_t>(sizeof result);
  // Releases the display.
  if (directFb) directFb->Release(directFb);
  _exit(written ? EXIT_SUCCESS : EXIT_FAILURE);
}

/// The result that the child wrote, if any, and whether it then failed to exit in time.
struct ProbeResult {
  std::optional<DFBResult> result;
  bool timedOut;
};

/// Reads until the child closes its end of the pipe.
ProbeResult ReadProbe(int in) {
  std::optional<DFBResult> last;
  for (;;) {
    pollfd waiting = {in, POLLIN, 0};
    const int ready = poll(&waiting, 1, kProbeTimeoutMs);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return {last, true};
    DFBResult result = DFB_OK;
    const ssize_t count = read(in, &result, sizeof result);
    if (count < 0 && errno == EINTR) continue;
    if (count != static_cast<ssize_t>(sizeof result)) return {last, false};
    last = result;
  }
}

/// One probe in one child process.
DFBResult ProbeOnce(bool aloud) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return DFB_LIMITEXCEEDED;
  const pid_t child = fork();
  if (child == 0) RunProbe(ends[1], aloud);
  close(ends[1]);
  const ProbeResult probe = child < 0 ? ProbeResult{DFB_LIMITEXCEEDED, false} : ReadProbe(ends[0]);
  close(ends[0]);
  if (probe.timedOut) kill(child, SIGKILL);
  while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  return probe.result.value_or(probe.timedOut ? DFB_TIMEOUT : DFB_DEAD);
}

/// Starts DirectFB in a child process and ends it there. If a start fails, DirectFB 1.7 usually
/// crashes the process: it frees memory that one of its own threads still uses. Wrong options end
/// the process too. DirectFB's messages are discarded unless `aloud`.
///
/// Returns the result of that start; DFB_DEAD if the child ends without one, and DFB_TIMEOUT if two
/// children in turn do not end.
DFBResult ProbeStart(bool aloud) {
  const DFBResult result = ProbeOnce(aloud);
  // The child of a process with threads may wait for a lock that one of them held at the fork.
  return result == DFB_TIMEOUT ? ProbeOnce(aloud) : result;
}

constexpr struct {
  VuPixelFormat ours;
  DFBSurfacePixelFormat theirs;
} kFormats[] = {{VuPixelFormat::ARGB8888, DSPF_ARGB},     {VuPixelFormat::XRGB8888, DSPF_RGB32},
                {VuPixelFormat::RGB565, DSPF_RGB16},      {VuPixelFormat::ARGB4444, DSPF_ARGB4444},
                {VuPixelFormat::ARGB1555, DSPF_ARGB1555}, {VuPixelFormat::A8, DSPF_A8}};

}  // namespace

bool HasDirectFbEnded() {
  return ended;
}

std::mutex& DirectFbMutex() {
  return mutex;
}

IDirectFB* StartDirectFb() {
  const std::lock_guard lock(mutex);
  if (running) return running;
  DFBResult result = ProbeStart(UserSets("quiet"));
  if (result == DFB_OK) result = CreateDirectFb(&running);
  if (result == DFB_OK) {
    // Runs before the destructors of all static objects that exist now.
    std::atexit([] {
      const std::lock_guard last(mutex);
      ended = true;
      // DirectFB shows the last frame later, on its own thread, and may then read memory that the
      // exit has freed. It offers no way to wait for that, so this waits for a fixed time.
      std::this_thread::sleep_for(kLastFrame);
    });
    return running;
  }
  running = nullptr;
  ZIRK_LOG_ERROR("DirectFB cannot be started: %s",
                 result == DFB_DEAD ? "it ends the process" : DirectFBErrorString(result));
  return nullptr;
}

void WaitForDirectFb() {
  const std::lock_guard lock(mutex);
  if (running && !ended) running->WaitIdle(running);
}

DFBSurfacePixelFormat ToDirectFb(VuPixelFormat format) {
  for (const auto& row : kFormats)
    if (row.ours == format) return row.theirs;
  return DSPF_UNKNOWN;
}

std::optional<VuPixelFormat> FromDirectFb(DFBSurfacePixelFormat format) {
  for (const auto& row : kFormats)
    if (row.theirs == format) return row.ours;
  return std::nullopt;
}

void ReleaseSurface::operator()(IDirectFBSurface* surface) const {
  const std::lock_guard lock(DirectFbMutex());
  if (!HasDirectFbEnded()) surface->Release(surface);
}

DirectFbSurfacePtr CreateDirectFbSurface(IDirectFB& directFb, int width, int height,
                                         VuPixelFormat format) {
  DFBSurfaceDescription description = {};
  description.flags = static_cast<DFBSurfaceDescriptionFlags>(DSDESC_CAPS | DSDESC_WIDTH |
                                                              DSDESC_HEIGHT | DSDESC_PIXELFORMAT);
  description.caps = DSCAPS_PREMULTIPLIED;
  description.width = width;
  description.height = height;
  description.pixelformat = ToDirectFb(format);
  IDirectFBSurface* surface = nullptr;
  const std::lock_guard lock(DirectFbMutex());
  const DFBResult result = directFb.CreateSurface(&directFb, &description, &surface);
  return DirectFbSurfacePtr(IsGood(result, "create a surface") ? surface : nullptr);
}

bool IsGood(DFBResult result, const char* what) {
  if (result == DFB_OK) return true;
  ZIRK_LOG_ERROR("DirectFB cannot %s: %s", what, DirectFBErrorString(result));
  return false;
}

}  // namespace ZIRK::backends
