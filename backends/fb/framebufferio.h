#pragma once

#include <cstddef>
#include <memory>

namespace ZIRK::backends {

/// The system calls that a framebuffer device needs. Tests put a device of their own in its place.
/// Failures leave their reason in `errno`. Any thread may call.
class FramebufferIo {
 public:
  virtual ~FramebufferIo() = default;

  /// A descriptor, or -1.
  virtual int Open(const char* path) = 0;
  virtual void Close(int fd) = 0;
  /// An ioctl of the kernel's framebuffer interface.
  virtual bool Control(int fd, unsigned long request, void* argument) = 0;
  /// The device's memory from its start, for reading and writing; null if it cannot be mapped.
  virtual void* Map(int fd, size_t length) = 0;
  virtual void Unmap(void* memory, size_t length) = 0;
};

/// The machine's own.
std::shared_ptr<FramebufferIo> SystemFramebufferIo();

}  // namespace ZIRK::backends
