// The kernels for NEON. They are compiled for processors that have NEON, so the rule in kernels.cpp
// about inline functions applies here too.

#include "factors.h"
#include "kernels.h"
#include "neonpixels.h"
#include "neonrows.h"
#include "neonsamplers.h"

namespace ZIRK::backends {

namespace {

template <typename Format>
void FillSource(const PixelSpan& s) {
  const Pixels color = Splat(s.color | s.opaque);
  DrawRows<Format>(s, [&](const auto&, int, auto) ZIRK_INLINE_LAMBDA { return color; });
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
    {{FillSource<Argb8888>, CoverSource}, {FillOver<Argb8888>, CoverOver<Argb8888>}},
    {{{Blit<Argb8888, false, false, false>, Blit<Argb8888, false, false, true>},
      {Blit<Argb8888, false, true, false>, Blit<Argb8888, false, true, true>}},
     {{Blit<Argb8888, true, false, false>, Blit<Argb8888, true, false, true>},
      {Blit<Argb8888, true, true, false>, Blit<Argb8888, true, true, true>}}},
    {{FillSource<Rgb565>, nullptr}, {FillOver<Rgb565>, CoverOver<Rgb565>}},
    {Blit<Rgb565, false, false, false>, Blit<Rgb565, true, false, false>},
    SampleNearest,
    SampleBilinear,
    BlendByFactors,
};

}  // namespace ZIRK::backends
