#pragma once

#include <zirk/export.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace ZIRK {

/// A free or placed rectangle, in pixels. A result of height 0 means that nothing was placed.
struct BinRect {
  int32_t x;       ///< Column of the left edge, from the left edge of the bin.
  int32_t y;       ///< Row of the top edge, from the top edge of the bin.
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

/// Places rectangles into a bin, in pixels. Plug-ins call the operations by their position, so
/// their order is fixed.
///
/// **Threads**: one at a time.
class ZIRK_API BinPack {
 public:
  /// An empty bin of `width` x `height` pixels.
  BinPack(int width, int height) : binWidth(width), binHeight(height) {}
  virtual ~BinPack();  // slots 1 and 2
  BinPack(const BinPack&) = delete;
  BinPack& operator=(const BinPack&) = delete;

  /// Places as many of `rects` as fit, the best fit first, and removes those from it. Leaves `dst`
  /// empty; only the implementation knows the places.
  virtual void Insert(std::vector<BinSize>& rects, std::vector<BinRect>& dst) = 0;
  /// Places a rectangle of `width` x `height` pixels and returns its place; all zeros if there is
  /// no room.
  virtual BinRect Insert(int width, int height) = 0;
  /// Width and height of the smallest bin that holds all placed rectangles: their largest right and
  /// bottom edge. (0, 0) if nothing is placed.
  [[nodiscard]] virtual std::pair<int, int> GetUsedSize() = 0;
  /// Grows the bin to `width` x `height` pixels; a side that would shrink stays as it is.
  virtual void Resize(int width, int height) = 0;

  int32_t binWidth;   ///< Width of the bin in pixels. Resize() changes it.
  int32_t binHeight;  ///< Height of the bin in pixels. Resize() changes it.
};

}  // namespace ZIRK
