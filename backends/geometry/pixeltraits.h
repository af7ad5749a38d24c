#pragma once

#include <zirk/vuenums.h>

#include <cstdint>
#include <type_traits>

#include "geometry/pixelformat.h"

namespace ZIRK::backends {

/// Conversions between a pixel of a format and premultiplied ARGB8888. Narrow channels are widened
/// by repeating their bits, and narrowed by dropping the low ones, as Pixman does.
template <VuPixelFormat kFormat>
struct PixelTraits {
  static constexpr PixelLayout kLayout = PixelLayoutOf(kFormat);
  /// The type of a stored pixel.
  using Stored = std::conditional_t<kLayout.bytes == 4, uint32_t,
                                    std::conditional_t<kLayout.bytes == 2, uint16_t, uint8_t>>;

  /// Converts a stored pixel to premultiplied ARGB8888.
  static constexpr uint32_t Unpack(Stored p) {
    if constexpr (!kLayout.HasColor()) {
      return p * 0x01010101u;
    } else if constexpr (kLayout.bytes == 4) {
      return p | kLayout.unusedBits;
    } else if constexpr (kLayout.alpha.bits == 4) {
      // One multiplication repeats the four bits of all channels.
      const uint32_t spread = (p & kLayout.alpha.Mask()) << (24 - kLayout.alpha.shift) |
                              (p & kLayout.red.Mask()) << (16 - kLayout.red.shift) |
                              (p & kLayout.green.Mask()) << (8 - kLayout.green.shift) |
                              (p & kLayout.blue.Mask());
      return spread * 17;
    } else {
      return WidenAlpha(p) | WidenChannel(p, kLayout.red) << 16 |
             WidenChannel(p, kLayout.green) << 8 | WidenChannel(p, kLayout.blue);
    }
  }

  /// Converts premultiplied ARGB8888 to a stored pixel.
  static constexpr Stored Pack(uint32_t p) {
    if constexpr (kLayout.bytes == 4) return p | kLayout.unusedBits;
    return static_cast<Stored>(
        NarrowChannel(p, 24, kLayout.alpha) | NarrowChannel(p, 16, kLayout.red) |
        NarrowChannel(p, 8, kLayout.green) | NarrowChannel(p, 0, kLayout.blue));
  }

 private:
  /// Returns the alpha of `p`, which has at most one bit, at its position in ARGB8888.
  static constexpr uint32_t WidenAlpha(Stored p) {
    if constexpr (!kLayout.HasAlpha()) return 0xFF000000u;
    return p & kLayout.alpha.Mask() ? 0xFF000000u : 0u;
  }
  /// Widens a channel of `p` to eight bits.
  static constexpr uint32_t WidenChannel(Stored p, PixelChannel channel) {
    const uint32_t value = p >> channel.shift & ((1u << channel.bits) - 1);
    return value << (8 - channel.bits) | value >> (2 * channel.bits - 8);
  }
  /// Narrows the channel at bit `from` of ARGB8888 and moves it to the position of `channel`.
  static constexpr uint32_t NarrowChannel(uint32_t p, int from, PixelChannel channel) {
    if (channel.bits == 0) return 0;
    return p >> (from + 8 - channel.bits - channel.shift) & channel.Mask();
  }
};

/// Calls `f` with the PixelTraits of `format`.
template <typename F>
decltype(auto) WithPixelTraits(VuPixelFormat format, F&& f) {
  switch (format) {
    case VuPixelFormat::ARGB8888:
      break;
    case VuPixelFormat::XRGB8888:
      return f(PixelTraits<VuPixelFormat::XRGB8888>());
    case VuPixelFormat::RGB565:
      return f(PixelTraits<VuPixelFormat::RGB565>());
    case VuPixelFormat::ARGB4444:
      return f(PixelTraits<VuPixelFormat::ARGB4444>());
    case VuPixelFormat::ARGB1555:
      return f(PixelTraits<VuPixelFormat::ARGB1555>());
    case VuPixelFormat::A8:
      return f(PixelTraits<VuPixelFormat::A8>());
  }
  return f(PixelTraits<VuPixelFormat::ARGB8888>());
}

/// Converts `count` pixels of a row of `format`, starting at pixel `x`, to ARGB8888.
inline void UnpackRow(VuPixelFormat format, const uint8_t* row, int x, int count, uint32_t* out) {
  WithPixelTraits(format, [=](auto traits) {
    using Traits = decltype(traits);
    const auto* in = reinterpret_cast<const typename Traits::Stored*>(row) + x;
    for (int i = 0; i < count; ++i) out[i] = Traits::Unpack(in[i]);
  });
}

/// Performs the reverse conversion.
inline void PackRow(VuPixelFormat format, const uint32_t* in, int count, uint8_t* row, int x) {
  WithPixelTraits(format, [=](auto traits) {
    using Traits = decltype(traits);
    auto* out = reinterpret_cast<typename Traits::Stored*>(row) + x;
    for (int i = 0; i < count; ++i) out[i] = Traits::Pack(in[i]);
  });
}

}  // namespace ZIRK::backends
