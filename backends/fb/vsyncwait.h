#pragma once

#include <memory>

#include "fb/framebufferio.h"

namespace ZIRK::backends {

/// Waits for a display's vertical sync, where its driver can do so.
///
/// Some drivers never return from the wait. So the first one is made on a thread of its own, which
/// is left behind if it is not back in time; the waits after that are made directly. The first
/// error ends the waiting for good, and so do three waits in a row that are longer than any
/// display's frame: one alone may only mean that the process was not running.
class VsyncWait {
 public:
  /// `fd` stays open as long as the object lives; `path` names the device to try the wait on.
  VsyncWait(std::shared_ptr<FramebufferIo> io, int fd, const char* path);

  /// Returns at the next vertical sync, or at once where there is no waiting for it.
  void Wait();

  bool IsSupported() const { return supported_; }

 private:
  std::shared_ptr<FramebufferIo> io_;
  const int fd_;
  bool supported_;
  int longWaits_ = 0;  ///< In a row.
};

}  // namespace ZIRK::backends
