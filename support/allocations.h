#pragma once

namespace ZIRK::support {

/// How often the process has asked operator new for memory.
int Allocations();

/// While it lives, operator new grants this thread `count` requests of the library and its
/// plug-ins, and refuses all others of theirs.
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
