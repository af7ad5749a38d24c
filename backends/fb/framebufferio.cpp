#include "fb/framebufferio.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace ZIRK::backends {

namespace {

/// C libraries do not agree about the type of a request.
template <typename Request>
Request RequestOf(int (*)(int, Request, ...));

class SystemIo : public FramebufferIo {
 public:
  int Open(const char* path) override { return open(path, O_RDWR | O_CLOEXEC); }
  void Close(int fd) override { close(fd); }
  bool Control(int fd, unsigned long request, void* argument) override {
    return ioctl(fd, static_cast<decltype(RequestOf(&ioctl))>(request), argument) == 0;
  }
  void* Map(int fd, size_t length) override {
    void* const memory = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    return memory == MAP_FAILED ? nullptr : memory;
  }
  void Unmap(void* memory, size_t length) override { munmap(memory, length); }
};

}  // namespace

std::shared_ptr<FramebufferIo> SystemFramebufferIo() {
  return std::make_shared<SystemIo>();
}

}  // namespace ZIRK::backends
