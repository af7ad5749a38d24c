#pragma once

#include <zirk/export.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace ZIRK {

/// A free or placed rectangle. A result whose height is 0 says that nothing was placed.
struct BinRect {
  int32_t x;       ///< Column of the left edge, in pixels from that of the bin.
  int32_t y;       ///< Row of the top edge, in pixels from that of the bin.
  int32_t width;   ///< Pixels.
  int32_t height;  ///< Pixels.
};

/// Whether origin and extent are equal.
constexpr bool operator==(BinRect a, BinRect b) {
  return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}
/// Whether origin or extent differs.
constexpr bool operator!=(BinRect a, BinRect b) {
  return !(a == b);
}

/// The extent of a rectangle to place.
struct BinSize {
  int32_t width;   ///< Pixels.
  int32_t height;  ///< Pixels.
};

/// Places rectangles into a bin, in pixels. Not thread-safe. The order of the operations is fixed.
class ZIRK_API BinPack {
 public:
  /// An empty bin of that size.
  BinPack(int width, int height) : binWidth(width), binHeight(height) {}
  virtual ~BinPack();  // slots 1 and 2
  BinPack(const BinPack&) = delete;
  BinPack& operator=(const BinPack&) = delete;

  /// Places as many of `rects` as fit, the best fitting first, and removes these from it. `dst` is
  /// left empty: where they went shows only in the implementation.
  virtual void Insert(std::vector<BinSize>& rects, std::vector<BinRect>& dst) = 0;
  /// All zeros if there is no room.
  virtual BinRect Insert(int width, int height) = 0;
  /// Width and height of the smallest bin that holds all placed rectangles: their largest right and
  /// bottom edge. (0, 0) without any.
  virtual std::pair<int, int> GetUsedSize() = 0;
  /// Grows the bin; a side that would shrink stays as it is.
  virtual void Resize(int width, int height) = 0;

  int32_t binWidth;   ///< Pixels. Resize() changes it.
  int32_t binHeight;  ///< Pixels. Resize() changes it.
};

}  // namespace ZIRK
