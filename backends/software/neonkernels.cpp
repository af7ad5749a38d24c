// The kernels for NEON. Compiled for processors that have it, so what kernels.cpp says of inline
// functions holds here too.

#include "kernels.h"
#include "neonpixels.h"
#include "neonrows.h"
#include "neonsamplers.h"

namespace ZIRK::backends {

namespace {

/// Writes one value everywhere.
template <typename Stored>
ZIRK_INLINE void FillRows(Stored* dst, const PixelSpan& span, Stored value, uint8x16_t values) {
  constexpr int kVector = sizeof values / sizeof value, kGroup = 4 * kVector;
  const PixelSpan s = span;  // a copy, which no store can reach
  const auto store = [&](int x) ZIRK_INLINE_LAMBDA {
    vst1q_u8(reinterpret_cast<uint8_t*>(dst + x), values);
  };
  const int last = s.width - kVector;
  for (int y = s.height; y > 0; --y, dst += s.dstPitch) {
    int x = 0;
    for (; x + kGroup <= s.width; x += kGroup) {
      store(x);
      store(x + kVector);
      store(x + 2 * kVector);
      store(x + 3 * kVector);
    }
    for (; x < last; x += kVector) store(x);
    if (last >= 0)
      store(last);
    else
      for (; x < s.width; ++x) dst[x] = value;
  }
}

void FillSource(const PixelSpan& s) {
  const uint32_t color = s.color | s.opaque;
  FillRows(s.dst, s, color, vreinterpretq_u8_u32(vdupq_n_u32(color)));
}

void FillSource565(const PixelSpan& s) {
  const auto color = static_cast<uint16_t>((s.color >> 8 & 0xF800) | (s.color >> 5 & 0x07E0) |
                                           (s.color >> 3 & 0x001F));
  FillRows(s.dst565, s, color, vreinterpretq_u8_u16(vdupq_n_u16(color)));
}

template <typename Format>
void FillOver(const PixelSpan& s) {
  const Pixels color = Splat(s.color);
  const Channel inverse = vmvn_u8(color.val[kAlpha]);
  DrawRows<Format>(s, [&](const auto& row, int x, auto pixels) ZIRK_INLINE_LAMBDA {
    return BlendOver(color, Format::Load(row.dst + x, pixels), inverse);
  });
}

void CoverSource(const PixelSpan& s) {
  const Pixels color = Splat(s.color);
  const Channel opaque = vdup_n_u8(static_cast<uint8_t>(s.opaque >> 24));
  DrawRows<Argb8888>(s, [&](const auto& row, int x, auto pixels) ZIRK_INLINE_LAMBDA {
    Pixels p = Scale(color, LoadCoverage(row.coverage + x, pixels));
    p.val[kAlpha] = vorr_u8(p.val[kAlpha], opaque);
    return p;
  });
}

template <typename Format, bool kOpaque>
void CoverOver(const PixelSpan& s) {
  const Pixels color = Splat(s.color);
  DrawRows<Format>(s, [&](const auto& row, int x, auto pixels) ZIRK_INLINE_LAMBDA {
    const Channel coverage = LoadCoverage(row.coverage + x, pixels);
    const Channel alpha = kOpaque ? coverage : Multiply(color.val[kAlpha], coverage);
    return BlendCovered(color, coverage, Format::Load(row.dst + x, pixels), vmvn_u8(alpha));
  });
}

template <typename Format>
void CoverOver(const PixelSpan& s) {
  s.color >> 24 == 255 ? CoverOver<Format, true>(s) : CoverOver<Format, false>(s);
}

/// Copies rows, which need not be taken apart.
void Copy(const PixelSpan& span) {
  constexpr int kVector = 4, kGroup = 4 * kVector;
  const PixelSpan s = span;  // a copy, which no store can reach
  const uint32x4_t opaque = vdupq_n_u32(s.opaque);
  const int last = s.width - kVector;
  uint32_t* dst = s.dst;
  const uint32_t* src = s.src;
  const auto copy = [&](int x) ZIRK_INLINE_LAMBDA {
    vst1q_u32(dst + x, vorrq_u32(vld1q_u32(src + x), opaque));
  };
  for (int y = s.height; y > 0; --y, dst += s.dstPitch, src += s.srcPitch) {
    int x = 0;
    for (; x + kGroup <= s.width; x += kGroup) {
      copy(x);
      copy(x + kVector);
      copy(x + 2 * kVector);
      copy(x + 3 * kVector);
    }
    for (; x < last; x += kVector) copy(x);
    if (last >= 0)
      copy(last);
    else
      for (; x < s.width; ++x) dst[x] = src[x] | s.opaque;
  }
}

template <typename Format, bool kOver, bool kTinted, bool kCovered>
void Blit(const PixelSpan& s) {
  const Pixels color = Splat(s.color);
  const Channel opaque = vdup_n_u8(static_cast<uint8_t>(s.opaque >> 24));
  DrawRows<Format>(s, [&](const auto& row, int x, auto pixels) ZIRK_INLINE_LAMBDA {
    Pixels p = Argb8888::Load(row.src + x, pixels);
    if constexpr (kTinted) p = Multiply(p, color);
    if constexpr (kCovered) p = Scale(p, LoadCoverage(row.coverage + x, pixels));
    if constexpr (kOver)
      p = BlendOver(p, Format::Load(row.dst + x, pixels), vmvn_u8(p.val[kAlpha]));
    else
      p.val[kAlpha] = vorr_u8(p.val[kAlpha], opaque);
    return p;
  });
}

}  // namespace

extern const Kernels kNeonKernels;

const Kernels kNeonKernels = {
    {{FillSource, CoverSource}, {FillOver<Argb8888>, CoverOver<Argb8888>}},
    {{{Copy, Blit<Argb8888, false, false, true>},
      {Blit<Argb8888, false, true, false>, Blit<Argb8888, false, true, true>}},
     {{Blit<Argb8888, true, false, false>, Blit<Argb8888, true, false, true>},
      {Blit<Argb8888, true, true, false>, Blit<Argb8888, true, true, true>}}},
    {{FillSource565, nullptr}, {FillOver<Rgb565>, CoverOver<Rgb565>}},
    {Blit<Rgb565, false, false, false>, Blit<Rgb565, true, false, false>},
    SampleNearest,
    SampleBilinear,
};

}  // namespace ZIRK::backends
