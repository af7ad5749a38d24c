#include "directfb/trialstart.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <optional>

#include "directfb/start.h"

namespace ZIRK::backends {

namespace {

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

}  // namespace

DFBResult TryToStartDirectFb(bool aloud) {
  const DFBResult result = TryOnce(aloud);
  // The child of a process with threads may wait for what one of them held at the fork.
  return result == DFB_TIMEOUT ? TryOnce(aloud) : result;
}

}  // namespace ZIRK::backends
