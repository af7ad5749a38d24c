#pragma once

#include <zirk/vuenums.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "images/image.h"

namespace ZIRK::backends {

/// One side of a picture and the length to which it is scaled.
struct AxisFit {
  int length;  ///< Original length in pixels.
  int shrink;  ///< The number of original pixels in each pixel that is read.
  int wanted;
};

/// For each pixel along an axis, the original pixels that contribute to it, and their shares.
///
/// Shares of a pixel are never negative and add up to exactly kWhole: a flat colour stays
/// unchanged, nothing rings, and no colour channel exceeds its alpha.
class AxisFilter {
 public:
  static constexpr uint32_t kWhole = 65536;

  struct Taps {
    int first;
    int count;
    const uint32_t* shares;
  };

  AxisFilter(AxisFit fit, VuScaleMode mode);

  Taps At(int i) const {
    const Span& span = spans_[static_cast<size_t>(i)];
    return {span.first, span.count, &shares_[span.shares]};
  }

 private:
  struct Span {
    int first;
    int count;
    size_t shares;
  };

  void AddNearest(AxisFit fit, int i);
  void AddLinear(AxisFit fit, int i);
  void AddArea(AxisFit fit, int i);
  void Begin(int first);
  void Add(uint32_t share);

  std::vector<Span> spans_;
  std::vector<uint32_t> shares_;
};

/// Scales a picture that arrives row by row, and fills `target` with it. Keeps only a few rows.
/// `nextRow` is called for every row; it returns false to stop. With Bilinear, an enlarged picture
/// is interpolated, and a reduced one is averaged over the area that each pixel covers.
bool Resample(AxisFit horizontal, AxisFit vertical, VuScaleMode mode,
              const std::function<bool(uint32_t*)>& nextRow, const PixelRows& target);

}  // namespace ZIRK::backends
