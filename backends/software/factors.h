#pragma once

#include "inlining.h"
#include "kernels.h"

/// The blending equation with any factors: source * factor + destination * factor. It is compiled
/// into each table of kernels, and uses only vectors that all instruction sets have.

namespace ZIRK::backends {

namespace {

using FourPixels = uint32_t __attribute__((vector_size(16)));

/// The pixels that are processed at a time, so that each factor is looked up once for all of them.
struct PixelBlock {
  static constexpr int kVectors = 16, kPixels = 4 * kVectors;
  FourPixels vectors[kVectors];
};

/// Returns each pixel's alpha in all its channels.
ZIRK_INLINE FourPixels RepeatAlpha(FourPixels p) {
  const FourPixels twice = p >> 24 | (p >> 24) << 16;
  return twice | twice << 8;
}

/// Computes a factor for each channel, 0 to 255.
void FindFactors(VuBlendingFactor factor, const PixelBlock& src, const PixelBlock& dst,
                 uint32_t blendColor, PixelBlock& out) {
  using Factor = VuBlendingFactor;
  const auto each = [&](auto of) ZIRK_INLINE_LAMBDA {
    for (int i = 0; i < PixelBlock::kVectors; ++i)
      out.vectors[i] = of(src.vectors[i], dst.vectors[i]);
  };
  const auto all = [&](uint32_t constant) ZIRK_INLINE_LAMBDA {
    for (FourPixels& v : out.vectors) v = FourPixels{} + constant;
  };
  const uint32_t blendAlpha = (blendColor >> 24) * 0x01010101u;
  using P = FourPixels;
  switch (factor) {
    case Factor::Zero:
      return all(0);
    case Factor::One:
      return all(~0u);
    case Factor::SrcColor:
      return each([](P s, P) ZIRK_INLINE_LAMBDA { return s; });
    case Factor::OneMinusSrcColor:
      return each([](P s, P) ZIRK_INLINE_LAMBDA { return ~s; });
    case Factor::SrcAlpha:
      return each([](P s, P) ZIRK_INLINE_LAMBDA { return RepeatAlpha(s); });
    case Factor::OneMinusSrcAlpha:
      return each([](P s, P) ZIRK_INLINE_LAMBDA { return RepeatAlpha(~s); });
    case Factor::DstAlpha:
      return each([](P, P d) ZIRK_INLINE_LAMBDA { return RepeatAlpha(d); });
    case Factor::OneMinusDstAlpha:
      return each([](P, P d) ZIRK_INLINE_LAMBDA { return RepeatAlpha(~d); });
    case Factor::DstColor:
      return each([](P, P d) ZIRK_INLINE_LAMBDA { return d; });
    case Factor::OneMinusDstColor:
      return each([](P, P d) ZIRK_INLINE_LAMBDA { return ~d; });
    case Factor::SrcAlphaSaturate:
      return each([](P s, P d)
                      ZIRK_INLINE_LAMBDA { return RepeatAlpha(s < ~d ? s : ~d) | 0xFF000000u; });
    case Factor::BlendColor:
      return all(blendColor);
    case Factor::OneMinusBlendColor:
      return all(~blendColor);
    case Factor::BlendAlpha:
      return all(blendAlpha);
    case Factor::OneMinusBlendAlpha:
      return all(~blendAlpha);
  }
}

/// Computes the factors of colour and, if they differ, those of alpha.
void FindFactors(VuBlendingFactor color, VuBlendingFactor alpha, const PixelBlock& src,
                 const PixelBlock& dst, uint32_t blendColor, PixelBlock& out) {
  FindFactors(color, src, dst, blendColor, out);
  if (alpha == color) return;
  PixelBlock alphas;
  FindFactors(alpha, src, dst, blendColor, alphas);
  for (int i = 0; i < PixelBlock::kVectors; ++i)
    out.vectors[i] = (out.vectors[i] & 0x00FFFFFFu) | (alphas.vectors[i] & 0xFF000000u);
}

/// Returns s * sf + d * df, rounded once and clamped, for the channels in the low byte of each
/// half.
ZIRK_INLINE FourPixels BlendPairs(FourPixels s, FourPixels sf, FourPixels d, FourPixels df) {
  using Channels = uint16_t __attribute__((vector_size(16)));
  constexpr uint32_t kLow = 0x00FF00FFu;
  constexpr uint16_t kMost = 255 * 255;
  const Channels source = (Channels)(s & kLow) * (Channels)(sf & kLow);
  const Channels room = kMost - (Channels)(d & kLow) * (Channels)(df & kLow);
  // 1/256 + 1/65536 is close enough to 1/255 for all products.
  const Channels sum = kMost - room + (source < room ? source : room) + 128;
  return (FourPixels)((sum + (sum >> 8)) >> 8);
}

void BlendByFactors(uint32_t* dst, const uint32_t* src, int count, const BlendFactors& f,
                    uint32_t blendColor) {
  for (int x = 0; x < count; x += PixelBlock::kPixels) {
    const int left = count - x;
    const auto bytes = sizeof *dst * (left < PixelBlock::kPixels ? left : PixelBlock::kPixels);
    PixelBlock s = {}, d = {}, sf, df;
    __builtin_memcpy(&s, src + x, bytes);
    __builtin_memcpy(&d, dst + x, bytes);
    FindFactors(f.srcColor, f.srcAlpha, s, d, blendColor, sf);
    FindFactors(f.dstColor, f.dstAlpha, s, d, blendColor, df);
    for (int i = 0; i < PixelBlock::kVectors; ++i) {
      const FourPixels p = s.vectors[i], q = d.vectors[i], u = sf.vectors[i], v = df.vectors[i];
      d.vectors[i] = BlendPairs(p, u, q, v) | BlendPairs(p >> 8, u >> 8, q >> 8, v >> 8) << 8;
    }
    __builtin_memcpy(dst + x, &d, bytes);
  }
}

}  // namespace

}  // namespace ZIRK::backends
