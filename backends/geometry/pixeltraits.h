#pragma once

#include <zirk/vuenums.h>

#include <cstdint>

namespace ZIRK::backends {

/// One pixel of each format, as premultiplied ARGB8888 and back. Narrow channels are widened by
/// repeating their bits, and narrowed by dropping the low ones, as Pixman does.
template <VuPixelFormat kFormat>
struct PixelTraits;

template <>
struct PixelTraits<VuPixelFormat::ARGB8888> {
  using Stored = uint32_t;
  static constexpr uint32_t Widen(Stored p) { return p; }
  static constexpr Stored Narrow(uint32_t p) { return p; }
};

template <>
struct PixelTraits<VuPixelFormat::XRGB8888> {
  using Stored = uint32_t;
  static constexpr uint32_t Widen(Stored p) { return p | 0xFF000000u; }
  static constexpr Stored Narrow(uint32_t p) { return p | 0xFF000000u; }
};

template <>
struct PixelTraits<VuPixelFormat::RGB565> {
  using Stored = uint16_t;
  static constexpr uint32_t Widen(Stored p) {
    const uint32_t r = p >> 11 & 31u, g = p >> 5 & 63u, b = p & 31u;
    return 0xFF000000u | (r << 3 | r >> 2) << 16 | (g << 2 | g >> 4) << 8 | (b << 3 | b >> 2);
  }
  static constexpr Stored Narrow(uint32_t p) {
    return static_cast<Stored>((p >> 8 & 0xF800u) | (p >> 5 & 0x07E0u) | (p >> 3 & 0x001Fu));
  }
};

template <>
struct PixelTraits<VuPixelFormat::ARGB4444> {
  using Stored = uint16_t;
  static constexpr uint32_t Widen(Stored p) {
    const uint32_t spread =
        (p & 0xF000u) << 12 | (p & 0x0F00u) << 8 | (p & 0x00F0u) << 4 | (p & 0x000Fu);
    return spread * 17;
  }
  static constexpr Stored Narrow(uint32_t p) {
    return static_cast<Stored>((p >> 16 & 0xF000u) | (p >> 12 & 0x0F00u) | (p >> 8 & 0x00F0u) |
                               (p >> 4 & 0x000Fu));
  }
};

template <>
struct PixelTraits<VuPixelFormat::ARGB1555> {
  using Stored = uint16_t;
  static constexpr uint32_t Widen(Stored p) {
    const uint32_t r = p >> 10 & 31u, g = p >> 5 & 31u, b = p & 31u;
    return (p & 0x8000u ? 0xFF000000u : 0u) | (r << 3 | r >> 2) << 16 | (g << 3 | g >> 2) << 8 |
           (b << 3 | b >> 2);
  }
  static constexpr Stored Narrow(uint32_t p) {
    return static_cast<Stored>((p >> 16 & 0x8000u) | (p >> 9 & 0x7C00u) | (p >> 6 & 0x03E0u) |
                               (p >> 3 & 0x001Fu));
  }
};

/// Coverage, seen as white of that alpha.
template <>
struct PixelTraits<VuPixelFormat::A8> {
  using Stored = uint8_t;
  static constexpr uint32_t Widen(Stored p) { return p * 0x01010101u; }
  static constexpr Stored Narrow(uint32_t p) { return static_cast<Stored>(p >> 24); }
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

/// `count` pixels of a row of `format`, from pixel `x` on, to ARGB8888.
inline void WidenRow(VuPixelFormat format, const uint8_t* row, int x, int count, uint32_t* out) {
  WithPixelTraits(format, [=](auto traits) {
    using Traits = decltype(traits);
    const auto* in = reinterpret_cast<const typename Traits::Stored*>(row) + x;
    for (int i = 0; i < count; ++i) out[i] = Traits::Widen(in[i]);
  });
}

/// The way back.
inline void NarrowRow(VuPixelFormat format, const uint32_t* in, int count, uint8_t* row, int x) {
  WithPixelTraits(format, [=](auto traits) {
    using Traits = decltype(traits);
    auto* out = reinterpret_cast<typename Traits::Stored*>(row) + x;
    for (int i = 0; i < count; ++i) out[i] = Traits::Narrow(in[i]);
  });
}

}  // namespace ZIRK::backends
