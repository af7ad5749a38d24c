#include "directfb/trialstart.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

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

/// Reads until the other side is closed.
DFBResult Listen(int in) {
  DFBResult result = DFB_DEAD;
  for (;;) {
    pollfd waiting = {in, POLLIN, 0};
    const int ready = poll(&waiting, 1, kPatienceMs);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return DFB_TIMEOUT;
    const ssize_t count = read(in, &result, sizeof result);
    if (count < 0 && errno == EINTR) continue;
    if (count != static_cast<ssize_t>(sizeof result)) return result;
  }
}

}  // namespace

DFBResult TryToStartDirectFb(bool aloud) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return DFB_LIMITEXCEEDED;
  const pid_t child = fork();
  if (child == 0) Try(ends[1], aloud);
  close(ends[1]);
  const DFBResult result = child < 0 ? DFB_LIMITEXCEEDED : Listen(ends[0]);
  close(ends[0]);
  if (child < 0) return result;
  if (result == DFB_TIMEOUT) kill(child, SIGKILL);
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  return result;
}

}  // namespace ZIRK::backends
