#pragma once

#include "kernels.h"
#include "neonpixels.h"

/// Reads and writes rows of pixels, eight at a time.

namespace ZIRK::backends {

namespace {

// These types select pixels. With fewer than eight, the other lanes have undefined values when they
// are read, and are not written.

struct Eight {};
/// Four to seven pixels: the first four, and the four from `second` on, which may overlap.
struct TwoFours {
  int second;
};
struct OneToThree {
  int count;
};

ZIRK_INLINE Channel LoadCoverage(const uint8_t* p, Eight) {
  return vld1_u8(p);
}
ZIRK_INLINE Channel LoadCoverage(const uint8_t* p, TwoFours pixels) {
  uint32_t fours[2];
  __builtin_memcpy(&fours[0], p, 4);
  __builtin_memcpy(&fours[1], p + pixels.second, 4);
  return vcreate_u8(uint64_t{fours[1]} << 32 | fours[0]);
}
ZIRK_INLINE Channel LoadCoverage(const uint8_t* p, OneToThree pixels) {
  Channel c = vld1_dup_u8(p);
  if (pixels.count > 1) c = vld1_lane_u8(p + 1, c, 1);
  if (pixels.count > 2) c = vld1_lane_u8(p + 2, c, 2);
  return c;
}

struct Argb8888 {
  using Stored = uint32_t;

  static uint32_t* Target(const PixelSpan& s) { return s.dst; }

  ZIRK_INLINE static Pixels Load(const uint32_t* p, Eight) { return vld4_u8(Bytes(p)); }
  ZIRK_INLINE static void Store(uint32_t* p, const Pixels& v, Eight) { vst4_u8(Bytes(p), v); }

  ZIRK_INLINE static Pixels Load(const uint32_t* p, TwoFours pixels) {
    const uint8x8x2_t first = Unzip(vld1q_u8(Bytes(p)));
    const uint8x8x2_t second = Unzip(vld1q_u8(Bytes(p + pixels.second)));
    const uint8x8x2_t blueRed = vuzp_u8(first.val[0], second.val[0]);
    const uint8x8x2_t greenAlpha = vuzp_u8(first.val[1], second.val[1]);
    return {{blueRed.val[0], greenAlpha.val[0], blueRed.val[1], greenAlpha.val[1]}};
  }
  ZIRK_INLINE static void Store(uint32_t* p, const Pixels& v, TwoFours pixels) {
    const uint8x8x2_t blueRed = vzip_u8(v.val[0], v.val[2]);
    const uint8x8x2_t greenAlpha = vzip_u8(v.val[1], v.val[3]);
    vst1q_u8(Bytes(p), Zip(blueRed.val[0], greenAlpha.val[0]));
    vst1q_u8(Bytes(p + pixels.second), Zip(blueRed.val[1], greenAlpha.val[1]));
  }

  ZIRK_INLINE static Pixels Load(const uint32_t* p, OneToThree pixels) {
    Pixels v = vld4_dup_u8(Bytes(p));
    if (pixels.count > 1) v = vld4_lane_u8(Bytes(p + 1), v, 1);
    if (pixels.count > 2) v = vld4_lane_u8(Bytes(p + 2), v, 2);
    return v;
  }
  ZIRK_INLINE static void Store(uint32_t* p, const Pixels& v, OneToThree pixels) {
    vst4_lane_u8(Bytes(p), v, 0);
    if (pixels.count > 1) vst4_lane_u8(Bytes(p + 1), v, 1);
    if (pixels.count > 2) vst4_lane_u8(Bytes(p + 2), v, 2);
  }

 private:
  ZIRK_INLINE static const uint8_t* Bytes(const uint32_t* p) {
    return reinterpret_cast<const uint8_t*>(p);
  }
  ZIRK_INLINE static uint8_t* Bytes(uint32_t* p) { return reinterpret_cast<uint8_t*>(p); }

  /// Separates the bytes with even and with odd indices.
  ZIRK_INLINE static uint8x8x2_t Unzip(uint8x16_t v) {
    return vuzp_u8(vget_low_u8(v), vget_high_u8(v));
  }
  ZIRK_INLINE static uint8x16_t Zip(uint8x8_t even, uint8x8_t odd) {
    const uint8x8x2_t zipped = vzip_u8(even, odd);
    return vcombine_u8(zipped.val[0], zipped.val[1]);
  }
};

/// 16-bit pixels. Channels are widened by repeating their bits, and narrowed by dropping the low
/// ones.
struct Rgb565 {
  using Stored = uint16_t;

  static uint16_t* Target(const PixelSpan& s) { return s.dst565; }

  ZIRK_INLINE static Pixels Load(const uint16_t* p, Eight) { return Widen(vld1q_u16(p)); }
  ZIRK_INLINE static void Store(uint16_t* p, const Pixels& v, Eight) { vst1q_u16(p, Narrow(v)); }

  ZIRK_INLINE static Pixels Load(const uint16_t* p, TwoFours pixels) {
    return Widen(vcombine_u16(vld1_u16(p), vld1_u16(p + pixels.second)));
  }
  ZIRK_INLINE static void Store(uint16_t* p, const Pixels& v, TwoFours pixels) {
    const uint16x8_t narrow = Narrow(v);
    vst1_u16(p, vget_low_u16(narrow));
    vst1_u16(p + pixels.second, vget_high_u16(narrow));
  }

  ZIRK_INLINE static Pixels Load(const uint16_t* p, OneToThree pixels) {
    uint16x8_t v = vld1q_dup_u16(p);
    if (pixels.count > 1) v = vld1q_lane_u16(p + 1, v, 1);
    if (pixels.count > 2) v = vld1q_lane_u16(p + 2, v, 2);
    return Widen(v);
  }
  ZIRK_INLINE static void Store(uint16_t* p, const Pixels& v, OneToThree pixels) {
    const uint16x8_t narrow = Narrow(v);
    vst1q_lane_u16(p, narrow, 0);
    if (pixels.count > 1) vst1q_lane_u16(p + 1, narrow, 1);
    if (pixels.count > 2) vst1q_lane_u16(p + 2, narrow, 2);
  }

 private:
  ZIRK_INLINE static Pixels Widen(uint16x8_t p) {
    const Channel red = vshrn_n_u16(p, 8), green = vshrn_n_u16(p, 3);
    const Channel blue = vshl_n_u8(vmovn_u16(p), 3);
    return {{vsri_n_u8(blue, blue, 5), vsri_n_u8(green, green, 6), vsri_n_u8(red, red, 5),
             vdup_n_u8(255)}};
  }
  ZIRK_INLINE static uint16x8_t Narrow(const Pixels& v) {
    const uint16x8_t redGreen = vsriq_n_u16(vshll_n_u8(v.val[2], 8), vshll_n_u8(v.val[1], 8), 5);
    return vsriq_n_u16(redGreen, vshll_n_u8(v.val[0], 8), 11);
  }
};

/// A row of the destination, with its source and coverage.
template <typename Format>
struct Row {
  typename Format::Stored* dst;
  const uint32_t* src;
  const uint8_t* coverage;

  ZIRK_INLINE explicit Row(const PixelSpan& s)
      : dst(Format::Target(s)), src(s.src), coverage(s.coverage) {}

  ZIRK_INLINE void Advance(const PixelSpan& s) {
    dst += s.dstPitch;
    src += s.srcPitch;
    coverage += s.coveragePitch;
  }
};

/// Stores the results of `shade(row, x, pixels)` for all pixels of the span, eight at a time.
///
/// The last eight of a row may overlap the ones before. They are computed before anything is
/// stored, so that no pixel is drawn twice.
template <typename Format, typename F>
ZIRK_INLINE void DrawRows(const PixelSpan& span, F&& shade) {
  const PixelSpan s = span;  // A copy, which no store can alias.
  Row<Format> row(s);
  const auto forRows = [&](auto&& draw) ZIRK_INLINE_LAMBDA {
    for (int y = s.height; y > 0; --y, row.Advance(s)) draw();
  };
  const auto draw = [&](int x, auto pixels) ZIRK_INLINE_LAMBDA {
    Format::Store(row.dst + x, shade(row, x, pixels), pixels);
  };
  const int last = s.width - 8;
  if (s.width < 4) return forRows([&]() ZIRK_INLINE_LAMBDA { draw(0, OneToThree{s.width}); });
  if (s.width < 8) return forRows([&]() ZIRK_INLINE_LAMBDA { draw(0, TwoFours{s.width - 4}); });
  if (s.width == 8) return forRows([&]() ZIRK_INLINE_LAMBDA { draw(0, Eight()); });
  // Most glyphs are this narrow.
  if (s.width <= 16)
    return forRows([&]() ZIRK_INLINE_LAMBDA {
      const Pixels end = shade(row, last, Eight());
      draw(0, Eight());
      Format::Store(row.dst + last, end, Eight());
    });
  forRows([&]() ZIRK_INLINE_LAMBDA {
    const Pixels end = shade(row, last, Eight());
    for (int x = 0; x < last; x += 8) draw(x, Eight());
    Format::Store(row.dst + last, end, Eight());
  });
}

}  // namespace

}  // namespace ZIRK::backends
