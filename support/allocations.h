#pragma once

namespace ZIRK::support {

/// The number of calls to operator new in the process so far.
int Allocations();

/// While it exists, operator new grants the library and its plug-ins `count` requests on this
/// thread and refuses all others.
class ScarceMemory {
 public:
  explicit ScarceMemory(int count);
  ~ScarceMemory();
  ScarceMemory(const ScarceMemory&) = delete;
  ScarceMemory& operator=(const ScarceMemory&) = delete;

  /// Whether a request was refused.
  bool HasRunOut() const;
};

}  // namespace ZIRK::support
