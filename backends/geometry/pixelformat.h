#pragma once

#include <zirk/vuenums.h>

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace ZIRK::backends {

/// The position of a channel in a pixel, in bits. No bits: the format does not have the channel.
struct PixelChannel {
  int shift = 0;
  int bits = 0;

  /// The channel's bits in the pixel, all set.
  constexpr uint32_t Mask() const { return ((1u << bits) - 1) << shift; }
};

/// How a format stores a pixel, as a number in the machine's byte order.
struct PixelLayout {
  VuPixelFormat format;
  int bytes;
  PixelChannel alpha, red, green, blue;
  /// The bits of no channel. They are always set, so that XRGB8888 can be read as ARGB8888.
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

  /// Pixels of a format without alpha are opaque.
  constexpr bool HasAlpha() const { return alpha.bits != 0; }
  /// A pixel of a format without colour stands for white of its alpha.
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

/// Whether the layout of each format is found by the format's number.
constexpr bool IsInOrder() {
  for (size_t i = 0; i < std::size(kPixelLayouts); ++i)
    if (kPixelLayouts[i].format != static_cast<VuPixelFormat>(i)) return false;
  return true;
}
static_assert(IsInOrder());

/// Whether there is such a format.
constexpr bool IsPixelFormat(VuPixelFormat format) {
  return static_cast<uint32_t>(format) < std::size(kPixelLayouts);
}

/// Expects a format that exists.
constexpr const PixelLayout& PixelLayoutOf(VuPixelFormat format) {
  return kPixelLayouts[static_cast<uint32_t>(format)];
}

/// 0 for a format that does not exist.
constexpr int BytesPerPixel(VuPixelFormat format) {
  return IsPixelFormat(format) ? PixelLayoutOf(format).bytes : 0;
}

}  // namespace ZIRK::backends
