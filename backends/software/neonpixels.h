#pragma once

#include <arm_neon.h>

#include <cstddef>
#include <cstdint>

#include "inlining.h"

/// Arithmetic on eight pixels at a time by NEON, separated by channel. Products and rounding are
/// exactly those of vectors.h.

namespace ZIRK::backends {

namespace {

/// One channel of eight pixels.
using Channel = uint8x8_t;
/// Eight pixels: blue, green, red and alpha, the order of their bytes in memory.
using Pixels = uint8x8x4_t;
constexpr int kAlpha = 3;

ZIRK_INLINE Pixels Splat(uint32_t color) {
  const auto channel = [color](int shift) {
    return vdup_n_u8(static_cast<uint8_t>(color >> shift));
  };
  return {{channel(0), channel(8), channel(16), channel(24)}};
}

/// Divides products of two channels, and rounds.
ZIRK_INLINE Channel DivideBy255(uint16x8_t t) {
  // 1/256 + 1/65536 is close enough to 1/255 for all products.
  return vraddhn_u16(t, vrshrq_n_u16(t, 8));
}

ZIRK_INLINE Channel Multiply(Channel a, Channel b) {
  return DivideBy255(vmull_u8(a, b));
}

/// (a * u + b * v) / 255.
ZIRK_INLINE Channel Mix(Channel a, Channel u, Channel b, Channel v) {
  return DivideBy255(vmlal_u8(vmull_u8(a, u), b, v));
}

/// Pixels with the channels `f(0)` to `f(3)`.
template <typename F>
ZIRK_INLINE Pixels ByChannel(F&& f) {
  return {{f(0), f(1), f(2), f(3)}};
}

ZIRK_INLINE Pixels Multiply(const Pixels& p, const Pixels& q) {
  return ByChannel([&](int i) ZIRK_INLINE_LAMBDA { return Multiply(p.val[i], q.val[i]); });
}

/// Multiplies each channel of `p` with the factor of its pixel.
ZIRK_INLINE Pixels Scale(const Pixels& p, Channel factor) {
  return ByChannel([&](int i) ZIRK_INLINE_LAMBDA { return Multiply(p.val[i], factor); });
}

/// source + destination * inverse, clamped; `inverse` is 255 - source alpha.
ZIRK_INLINE Pixels BlendOver(const Pixels& s, const Pixels& d, Channel inverse) {
  return ByChannel(
      [&](int i) ZIRK_INLINE_LAMBDA { return vqadd_u8(s.val[i], Multiply(d.val[i], inverse)); });
}

/// color * coverage + destination * rest, rounded once.
ZIRK_INLINE Pixels BlendCovered(const Pixels& color, Channel coverage, const Pixels& d,
                                Channel rest) {
  return ByChannel([&](int i)
                       ZIRK_INLINE_LAMBDA { return Mix(color.val[i], coverage, d.val[i], rest); });
}

}  // namespace

}  // namespace ZIRK::backends
