#pragma once

#include <zirk/vucolor.h>

#include <cstdint>

namespace ZIRK::backends {

/// Returns the product of two channels, rounded to nearest. Their values 0 to 255 represent 0 to 1.
constexpr uint32_t MultiplyChannel(uint32_t a, uint32_t b) {
  const uint32_t t = a * b + 128;
  return (t + (t >> 8)) >> 8;
}

/// Multiplies each channel of `pixel` by `factor`.
constexpr uint32_t ScalePixel(uint32_t pixel, uint32_t factor) {
  uint32_t result = 0;
  for (int shift = 0; shift < 32; shift += 8)
    result |= MultiplyChannel(pixel >> shift & 255, factor) << shift;
  return result;
}

constexpr bool IsOpaque(uint32_t pixel) {
  return pixel >> 24 == 255;
}

constexpr uint32_t Premultiply(VuColor color) {
  const uint32_t a = color.argb >> 24;
  if (a == 255) return color.argb;
  return a << 24 | (ScalePixel(color.argb, a) & 0x00FFFFFFu);
}

/// Returns source + destination * (1 - source alpha) for premultiplied pixels, clamped.
constexpr uint32_t BlendOver(uint32_t src, uint32_t dst) {
  const uint32_t low = 0x00FF00FFu, inverse = 255 - (src >> 24);
  const auto scaled = [=](uint32_t pair) {
    const uint32_t t = pair * inverse + 0x00800080u;
    return (t + (t >> 8 & low)) >> 8 & low;
  };
  const auto clamped = [=](uint32_t sum) { return (sum | (sum >> 8 & low) * 255) & low; };
  return clamped((src & low) + scaled(dst & low)) |
         clamped((src >> 8 & low) + scaled(dst >> 8 & low)) << 8;
}

}  // namespace ZIRK::backends
