#pragma once

#include <memory>
#include <string>
#include <thread>

namespace ZIRK::backends {

class FramebufferIo;

/// Waits for a display's vertical sync, where its driver can do so.
///
/// Some drivers never return from the wait. So it is made on a thread of its own, which is left
/// behind if it is not back in time. That, or an error, ends the waiting for good.
class VsyncWait {
 public:
  /// Tries a wait on the device in `path`.
  VsyncWait(std::shared_ptr<FramebufferIo> io, const std::string& path);
  ~VsyncWait();
  VsyncWait(const VsyncWait&) = delete;
  VsyncWait& operator=(const VsyncWait&) = delete;

  /// Returns at the next vertical sync, after a fifth of a second at the latest, and at once where
  /// there is no waiting for it.
  void Wait();

 private:
  struct Worker;

  void Start(std::shared_ptr<FramebufferIo> io, const std::string& path);

  std::shared_ptr<Worker> worker_;  ///< Null where there is no waiting.
  std::thread thread_;
};

}  // namespace ZIRK::backends
