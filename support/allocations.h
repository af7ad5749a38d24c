#pragma once

namespace ZIRK::support {

/// How often the process has asked operator new for memory.
int Allocations();

/// While it exists, operator new grants the library and its plug-ins `count` requests on this
/// thread, and refuses all further ones.
class ScarceMemory {
 public:
  explicit ScarceMemory(int count);
  ~ScarceMemory();
  ScarceMemory(const ScarceMemory&) = delete;
  ScarceMemory& operator=(const ScarceMemory&) = delete;

  /// Whether a request has been refused.
  bool HasRunOut() const;
};

}  // namespace ZIRK::support
