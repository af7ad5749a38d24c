#pragma once

#include <zirk/vubitmapinfo.h>
#include <zirk/vurect.h>

#include <cstdint>
#include <vector>

namespace ZIRK::trace {

/// The pixels of a surface when it was locked, used to find what the program wrote.
class LockedPixels {
 public:
  /// Copies the pixels unless they are known. Call it when the surface is locked for writing.
  void Begin(const VuBitmapInfo& info);
  /// Returns whether End() can find the changed part.
  bool HasBegun() const { return hasBegun_; }
  /// Returns the smallest part that contains all changes, empty if nothing changed. Call it while
  /// the surface is still locked.
  VuRect End(const VuBitmapInfo& info);
  /// Call it when the pixels may change in another way.
  void Forget() { isKnown_ = false; }

 private:
  std::vector<uint8_t> pixels_;  ///< Without gaps.
  int locks_ = 0;
  bool hasBegun_ = false;
  bool isKnown_ = false;  ///< Whether `pixels_` are still those of the surface.
};

}  // namespace ZIRK::trace
