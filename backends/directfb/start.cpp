#include "directfb/start.h"

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

std::mutex turn;
static_assert(std::is_trivially_destructible_v<std::mutex>);

constexpr std::chrono::milliseconds kLastFrame{100};

IDirectFB* running = nullptr;
bool ended = false;

/// Whether `DFBARGS` sets `option`, one way or the other.
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

/// Starts DirectFB with the options of ours, of which none is set that `DFBARGS` has its own mind
/// about.
DFBResult CreateDirectFb(IDirectFB** directFb) {
  // Without arguments of ours DirectFB would take those of the process.
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
                  // Signals are the application's threads' to handle.
                  {"thread-block-signals", "thread-block-signals"},
                  // It would end DirectFB before the last surfaces are deleted.
                  {"deinit-check", "no-deinit-check"}};
  for (const auto& option : kOptions)
    if (!UserSets(option.name)) DirectFBSetOption(option.setting, nullptr);
  return DirectFBCreate(directFb);
}

// A display may take a while to change its mode.
constexpr int kPatienceMs = 10000;

void Silence() {
  const int nowhere = open("/dev/null", O_WRONLY);
  if (nowhere < 0) return;
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
}

/// The child: says on `out` how the start went, and comes to an end.
[[noreturn]] void Try(int out, bool aloud) {
  // DirectFB may call exit(), which is for the parent's process to do.
  std::atexit([] { _exit(EXIT_FAILURE); });
  for (const int fault : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL}) std::signal(fault, SIG_DFL);
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
  if (!aloud) Silence();
  IDirectFB* directFb = nullptr;
  const DFBResult result = CreateDirectFb(&directFb);
  const bool said = write(out, &result, sizeof result) == static_cast<ssize_t>(sizeof result);
  // Gives the display back.
  if (directFb) directFb->Release(directFb);
  _exit(said ? EXIT_SUCCESS : EXIT_FAILURE);
}

/// What the child has said, if anything, and whether it was then waited for in vain.
struct Answer {
  std::optional<DFBResult> result;
  bool timedOut;
};

/// Reads until the other side is closed.
Answer Listen(int in) {
  std::optional<DFBResult> said;
  for (;;) {
    pollfd waiting = {in, POLLIN, 0};
    const int ready = poll(&waiting, 1, kPatienceMs);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return {said, true};
    DFBResult result = DFB_OK;
    const ssize_t count = read(in, &result, sizeof result);
    if (count < 0 && errno == EINTR) continue;
    if (count != static_cast<ssize_t>(sizeof result)) return {said, false};
    said = result;
  }
}

DFBResult TryOnce(bool aloud) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return DFB_LIMITEXCEEDED;
  const pid_t child = fork();
  if (child == 0) Try(ends[1], aloud);
  close(ends[1]);
  const Answer answer = child < 0 ? Answer{DFB_LIMITEXCEEDED, false} : Listen(ends[0]);
  close(ends[0]);
  if (answer.timedOut) kill(child, SIGKILL);
  while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  return answer.result.value_or(answer.timedOut ? DFB_TIMEOUT : DFB_DEAD);
}

/// Starts DirectFB for a trial in a child process, and ends it there. Where a start fails, DirectFB
/// 1.7 more often than not takes the process with it: it lets go of what a thread of its own still
/// uses. Bad options end the process, too. What DirectFB says goes unheard, unless `aloud`.
///
/// Returns what the start came to; DFB_DEAD if the child came to an end before it could say, and
/// DFB_TIMEOUT if twice it did not come to any.
DFBResult TryToStartDirectFb(bool aloud) {
  const DFBResult result = TryOnce(aloud);
  // The child of a process with threads may wait for what one of them held at the fork.
  return result == DFB_TIMEOUT ? TryOnce(aloud) : result;
}

}  // namespace

bool HasDirectFbEnded() {
  return ended;
}

std::mutex& DirectFbTurn() {
  return turn;
}

IDirectFB* StartDirectFb() {
  const std::lock_guard lock(turn);
  if (running) return running;
  DFBResult result = TryToStartDirectFb(UserSets("quiet"));
  if (result == DFB_OK) result = CreateDirectFb(&running);
  if (result == DFB_OK) {
    // Comes before the end of whatever has been set up until now.
    std::atexit([] {
      const std::lock_guard last(turn);
      ended = true;
      // DirectFB shows a frame some time after it was told to, on a thread of its own, and then
      // reads what it has freed by the end of the process. There is nothing to wait for but time.
      std::this_thread::sleep_for(kLastFrame);
    });
    return running;
  }
  running = nullptr;
  ZIRK_LOG_ERROR("DirectFB cannot be started: %s",
                 result == DFB_DEAD ? "it breaks off" : DirectFBErrorString(result));
  return nullptr;
}

void WaitForDirectFb() {
  const std::lock_guard lock(turn);
  if (running && !ended) running->WaitIdle(running);
}

}  // namespace ZIRK::backends
