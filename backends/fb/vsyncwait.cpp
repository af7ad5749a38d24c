#include "fb/vsyncwait.h"

#include <dlfcn.h>
#include <linux/fb.h>
#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <zirk/impl/log.h>

#include <cerrno>
#include <chrono>
#include <future>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace ZIRK::backends {

namespace {

/// A display of ten frames a second is slower than any in use.
constexpr std::chrono::milliseconds kLongestFrame{100};

constexpr int kLongWaitsAllowed = 2;

bool WaitOnce(FramebufferIo& io, int fd) {
  uint32_t display = 0;
  return io.Control(fd, FBIO_WAITFORVSYNC, &display) || errno == EINTR;
}

/// Keeps the plug-in in memory for good, for a thread that may come back into it at any time.
void StayLoaded() {
  Dl_info self{};
  if (dladdr(reinterpret_cast<const void*>(&StayLoaded), &self) == 0) return;
  dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

/// A thread that no signal of the application's is delivered to; none if the system has no more.
std::thread StartQuietThread(std::packaged_task<bool()> task) {
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  std::thread thread;
  try {
    thread = std::thread(std::move(task));
  } catch (const std::system_error& error) {
    ZIRK_LOG_WARNING("no thread to try the wait for vertical sync on: %s", error.what());
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return thread;
}

/// Whether the first wait comes back, and without an error. The thread has a descriptor of its
/// own, which it may keep for longer than the device is in use.
bool ComesBack(const std::shared_ptr<FramebufferIo>& io, const char* path) {
  std::packaged_task<bool()> task([io, path = std::string(path)] {
    const int fd = io->Open(path.c_str());
    if (fd < 0) return false;
    const bool waited = WaitOnce(*io, fd);
    io->Close(fd);
    return waited;
  });
  std::future<bool> result = task.get_future();
  std::thread thread = StartQuietThread(std::move(task));
  if (!thread.joinable()) return false;
  if (result.wait_for(2 * kLongestFrame) == std::future_status::ready) {
    thread.join();
    return result.get();
  }
  StayLoaded();
  thread.detach();
  ZIRK_LOG_WARNING("%s: the wait for vertical sync does not return: doing without it", path);
  return false;
}

}  // namespace

VsyncWait::VsyncWait(std::shared_ptr<FramebufferIo> io, int fd, const char* path)
    : io_(std::move(io)), fd_(fd), supported_(ComesBack(io_, path)) {}

void VsyncWait::Wait() {
  if (!supported_) return;
  const auto start = std::chrono::steady_clock::now();
  const bool waited = WaitOnce(*io_, fd_);
  const bool wasLong = std::chrono::steady_clock::now() - start > kLongestFrame;
  longWaits_ = wasLong ? longWaits_ + 1 : 0;
  supported_ = waited && longWaits_ <= kLongWaitsAllowed;
}

}  // namespace ZIRK::backends
