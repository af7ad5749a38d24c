#pragma once

#include <memory>
#include <string>
#include <thread>

namespace ZIRK::backends {

class FramebufferIo;

/// Waits for a display's vertical sync, if its driver can do so.
///
/// Some drivers never return from the wait. It therefore runs on a thread of its own, which is
/// abandoned if it does not return in time. After that, or after an error, nothing waits any more.
class VsyncWait {
 public:
  /// Tries a wait on the device in `path`.
  VsyncWait(std::shared_ptr<FramebufferIo> io, const std::string& path);
  ~VsyncWait();
  VsyncWait(const VsyncWait&) = delete;
  VsyncWait& operator=(const VsyncWait&) = delete;

  /// Returns at the next vertical sync, or after a fifth of a second; at once if the driver cannot
  /// wait.
  void Wait();

 private:
  struct Worker;

  void Start(std::shared_ptr<FramebufferIo> io, const std::string& path);

  std::shared_ptr<Worker> worker_;  ///< Null if the driver cannot wait.
  std::thread thread_;
};

}  // namespace ZIRK::backends
