#pragma once

#include <zirk/vubitmapinfo.h>
#include <zirk/vurect.h>

#include <cstdint>
#include <vector>

namespace ZIRK::trace {

/// The pixels of a surface as they were when it was locked, to find what the program wrote.
class LockedPixels {
 public:
  /// To be called when the surface is locked for writing. Copies its pixels, unless they are known.
  void Begin(const VuBitmapInfo& info);
  /// Whether there is a part to be found.
  bool HasBegun() const { return hasBegun_; }
  /// Gives the smallest part with all that changed, empty if nothing did. To be called while the
  /// surface is still locked.
  VuRect End(const VuBitmapInfo& info);
  /// To be called when the pixels may change otherwise.
  void Forget() { isKnown_ = false; }

 private:
  std::vector<uint8_t> pixels_;  ///< Without gaps.
  int locks_ = 0;
  bool hasBegun_ = false;
  bool isKnown_ = false;  ///< Whether they are still those of the surface.
};

}  // namespace ZIRK::trace
