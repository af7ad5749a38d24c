#pragma once

#include <cstddef>
#include <memory>
#include <new>

// Temporary memory for drawing. The operations of a surface throw no exceptions, so renderers
// allocate with these functions, or catch std::bad_alloc if a library throws it. If memory runs
// out, the operation ends.

namespace ZIRK::backends {

/// Logs that memory to draw with ran out. Returns false.
bool ReportNoMemory();

/// Allocates `count` values, not initialised. Logs an error and returns null if memory runs out.
template <class T>
std::unique_ptr<T[]> AllocateToDraw(size_t count) {
  std::unique_ptr<T[]> memory(new (std::nothrow) T[count]);
  if (!memory) ReportNoMemory();
  return memory;
}

/// Memory that is reused from one operation to the next.
template <class T>
class WorkMemory {
 public:
  /// Makes room for `count` values, which are not initialised. Logs an error and returns false if
  /// memory runs out.
  bool Reserve(size_t count) {
    if (count <= size_) return true;
    memory_ = AllocateToDraw<T>(count);
    size_ = memory_ ? count : 0;
    return memory_ != nullptr;
  }
  T* Data() { return memory_.get(); }
  const T* Data() const { return memory_.get(); }

 private:
  std::unique_ptr<T[]> memory_;
  size_t size_ = 0;
};

}  // namespace ZIRK::backends
