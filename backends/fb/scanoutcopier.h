#pragma once

#include <zirk/vuenums.h>

#include <cstddef>
#include <cstdint>

#include "fb/rowconverter.h"
#include "geometry/box.h"

namespace ZIRK::backends {

/// The clockwise rotation of a picture on the display.
enum class Rotation { None, Quarter, Half, ThreeQuarters };

/// Whether width and height are exchanged.
constexpr bool IsSideways(Rotation rotation) {
  return rotation == Rotation::Quarter || rotation == Rotation::ThreeQuarters;
}

/// Writes parts of a picture to the memory that a display is scanned out from: converted to its
/// layout, and turned. The memory is written from left to right, and never read.
class ScanoutCopier {
 public:
  /// For a display of `width` x `height` pixels.
  ScanoutCopier(const DeviceLayout& layout, int width, int height, Rotation rotation);

  /// Size in pixels of the picture that fills the display, before the rotation.
  int Width() const { return width_; }
  int Height() const { return height_; }

  /// Sets the picture that the next calls show `damage` of, with rows `pitch` bytes apart, a
  /// multiple of four. False if the format does not exist or memory runs out.
  bool SetSource(const uint8_t* pixels, int pitch, VuPixelFormat format, const Box& damage);

  /// Writes `box` of the picture. `memory` is the display's first pixel; rows are `pitch` bytes
  /// apart.
  void Copy(const Box& box, uint8_t* memory, size_t pitch);

  /// Where `box` of the picture is on the display.
  Box OnDisplay(const Box& box) const;

  /// Updates the hidden one of two pages, which lacks `damage` and what the last call wrote to the
  /// other page.
  void CopyToHidden(const Box& damage, uint8_t* memory, size_t pitch);
  /// Call it when there is only one page from now on.
  void ForgetHidden() { lastDamage_ = {}; }

 private:
  template <typename Pixel>
  void CopyTurned(const Box& box, uint8_t* memory, size_t pitch);
  template <typename Pixel>
  void CopySideways(const RowConverter::Block& block, const Box& part, uint8_t* memory,
                    size_t pitch) const;
  template <typename Pixel>
  void CopyReversed(const RowConverter::Block& block, const Box& part, uint8_t* memory,
                    size_t pitch) const;

  const unsigned bytesPerPixel_;
  const Rotation rotation_;
  const int width_;
  const int height_;
  RowConverter converter_;
  Box lastDamage_;
};

}  // namespace ZIRK::backends
