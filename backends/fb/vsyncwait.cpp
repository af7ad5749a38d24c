#include "fb/vsyncwait.h"

#include <dlfcn.h>
#include <linux/fb.h>
#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <zirk/impl/log.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

#include "fb/framebufferdevice.h"

namespace ZIRK::backends {

namespace {

/// Two frames of a display at 10 Hz, which is slower than any in use.
constexpr std::chrono::milliseconds kVsyncTimeout{200};

bool WaitOnce(FramebufferIo& io, int fd) {
  uint32_t display = 0;
  return io.Control(fd, FBIO_WAITFORVSYNC, &display) || errno == EINTR;
}

/// Keeps the plug-in loaded until the process ends: an abandoned thread may return into it.
void StayLoaded() {
  Dl_info self{};
  if (dladdr(reinterpret_cast<const void*>(&StayLoaded), &self) == 0) return;
  dlopen(self.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

/// Blocks the application's signals in threads that start while it exists.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

 private:
  sigset_t before_;
};

}  // namespace

/// The state that the two threads share. It lives until neither needs it.
struct VsyncWait::Worker {
  enum class State { Idle, Asked, Failed, Stopped };

  /// The body of the thread: waits on request, with its own descriptor.
  void Run() {
    const int fd = io->Open(path.c_str());
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
      changed.wait(lock, [this] { return state == State::Asked || state == State::Stopped; });
      if (state == State::Stopped) break;
      lock.unlock();
      const bool waited = fd >= 0 && WaitOnce(*io, fd);
      lock.lock();
      if (state == State::Asked) state = waited ? State::Idle : State::Failed;
      changed.notify_all();
    }
    if (fd >= 0) io->Close(fd);
  }

  /// Ends the thread, once its wait returns.
  void Stop() {
    const std::lock_guard<std::mutex> lock(mutex);
    state = State::Stopped;
    changed.notify_all();
  }

  const std::shared_ptr<FramebufferIo> io;
  const std::string path;
  std::mutex mutex;
  std::condition_variable changed;
  State state = State::Idle;
};

VsyncWait::VsyncWait(std::shared_ptr<FramebufferIo> io, const std::string& path) {
  try {
    Start(std::move(io), path);
  } catch (const std::exception& error) {
    ZIRK_LOG_WARNING("%s: no thread to wait for vertical sync on: %s", path.c_str(), error.what());
    worker_.reset();
  }
  Wait();
}

void VsyncWait::Start(std::shared_ptr<FramebufferIo> io, const std::string& path) {
  worker_.reset(new Worker{std::move(io), path, {}, {}});
  const SignalsBlocked blocked;
  thread_ = std::thread([worker = worker_] { worker->Run(); });
}

VsyncWait::~VsyncWait() {
  if (!worker_) return;
  worker_->Stop();
  thread_.join();
}

void VsyncWait::Wait() {
  if (!worker_) return;
  std::unique_lock<std::mutex> lock(worker_->mutex);
  worker_->state = Worker::State::Asked;
  worker_->changed.notify_all();
  const bool back = worker_->changed.wait_for(
      lock, kVsyncTimeout, [this] { return worker_->state != Worker::State::Asked; });
  if (back && worker_->state == Worker::State::Idle) return;
  lock.unlock();
  worker_->Stop();
  if (back) {
    thread_.join();
  } else {
    StayLoaded();
    thread_.detach();
    ZIRK_LOG_WARNING("%s: the wait for vertical sync does not return: continuing without it",
                     worker_->path.c_str());
  }
  worker_.reset();
}

}  // namespace ZIRK::backends
