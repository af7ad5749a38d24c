#pragma once

#include <zirk/vuenums.h>

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace ZIRK::backends {

/// The position of a channel in a pixel, in bits. A channel that the format lacks has 0 bits.
struct PixelChannel {
  int shift = 0;
  int bits = 0;

  /// Returns a pixel with all bits of the channel set.
  constexpr uint32_t Mask() const { return ((1u << bits) - 1) << shift; }
};

/// The layout of a pixel, which is stored as a number in the machine's byte order.
struct PixelLayout {
  VuPixelFormat format;
  int bytes;
  PixelChannel alpha, red, green, blue;
  /// The bits that belong to no channel. They are always set, so that XRGB8888 can be read as
  /// ARGB8888.
  uint32_t unusedBits;

  constexpr PixelLayout(VuPixelFormat format_, int bytes_, PixelChannel alpha_, PixelChannel red_,
                        PixelChannel green_, PixelChannel blue_)
      : format(format_),
        bytes(bytes_),
        alpha(alpha_),
        red(red_),
        green(green_),
        blue(blue_),
        unusedBits((0xFFFFFFFFu >> (32 - 8 * bytes_)) &
                   ~(alpha_.Mask() | red_.Mask() | green_.Mask() | blue_.Mask())) {}

  /// Returns whether the format has alpha. Pixels without it are opaque.
  constexpr bool HasAlpha() const { return alpha.bits != 0; }
  /// Returns whether the format has colour. Pixels without it are white with their alpha.
  constexpr bool HasColor() const { return green.bits != 0; }
};

/// The layout of every format, in the order of VuPixelFormat.
inline constexpr PixelLayout kPixelLayouts[] = {
    // format, bytes, alpha, red, green, blue
    {VuPixelFormat::ARGB8888, 4, {24, 8}, {16, 8}, {8, 8}, {0, 8}},
    {VuPixelFormat::XRGB8888, 4, {}, {16, 8}, {8, 8}, {0, 8}},
    {VuPixelFormat::RGB565, 2, {}, {11, 5}, {5, 6}, {0, 5}},
    {VuPixelFormat::ARGB4444, 2, {12, 4}, {8, 4}, {4, 4}, {0, 4}},
    {VuPixelFormat::ARGB1555, 2, {15, 1}, {10, 5}, {5, 5}, {0, 5}},
    {VuPixelFormat::A8, 1, {0, 8}, {}, {}, {}},
};

/// Returns whether each format's number is the index of its layout.
constexpr bool IsInOrder() {
  for (size_t i = 0; i < std::size(kPixelLayouts); ++i)
    if (kPixelLayouts[i].format != static_cast<VuPixelFormat>(i)) return false;
  return true;
}
static_assert(IsInOrder());

/// Returns whether the format is valid.
constexpr bool IsPixelFormat(VuPixelFormat format) {
  return static_cast<uint32_t>(format) < std::size(kPixelLayouts);
}

/// Returns the layout of a valid format.
constexpr const PixelLayout& PixelLayoutOf(VuPixelFormat format) {
  return kPixelLayouts[static_cast<uint32_t>(format)];
}

/// Returns the size of a pixel, or 0 if the format is invalid.
constexpr int BytesPerPixel(VuPixelFormat format) {
  return IsPixelFormat(format) ? PixelLayoutOf(format).bytes : 0;
}

}  // namespace ZIRK::backends
