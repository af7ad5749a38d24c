// Compiled once for the base instruction set and again for each better one (CMakeLists.txt).
// Nothing here, nor in the headers from vectors.h on, may instantiate an inline function that
// another file also uses: the linker would keep one copy of it, perhaps the one for a processor
// that is not there. So: no standard library, and unnamed namespaces in those headers too.

#include "kernels.h"

#include "samplers.h"
#include "vectors.h"

#ifndef ZIRK_KERNELS
#error "ZIRK_KERNELS names the table that this build defines"
#endif

namespace ZIRK::backends {

namespace {

/// Calls `f(x, y, pixels)` for all of the span, with whole vectors as far as they go.
///
/// Where memory is only written, `aligned` has the vectors start on their own boundaries: stores
/// that straddle two cache lines are what such a loop spends its time on.
template <typename F>
ZIRK_INLINE void ForEach(const PixelSpan& s, bool aligned, F&& f) {
  int head = 0;
  if (aligned && s.width >= 3 * kLanes) {
    const auto past = reinterpret_cast<uintptr_t>(s.dst) % sizeof(Pixels) / sizeof(uint32_t);
    head = (kLanes - static_cast<int>(past)) % kLanes;
  }
  const int tail = head + (s.width - head) / kLanes * kLanes;
  const Tail first(head), last(s.width - tail);
  for (int y = 0; y < s.height; ++y) {
    if (head > 0) ForTail(0, y, first, f);
    for (int x = head; x < tail; x += kLanes) f(x, y, Full());
    if (tail < s.width) ForTail(tail, y, last, f);
  }
}

/// Whether to leave the pixels out: worth a test where they fill a vector.
ZIRK_INLINE bool IsAllZero(Pixels coverage, Full) {
  return IsZero(coverage);
}
template <typename Some>
ZIRK_INLINE bool IsAllZero(Pixels, const Some&) {
  return false;
}

template <bool kOver, bool kCovered>
void Fill(const PixelSpan& span) {
  const PixelSpan s = span;  // a copy, which no store can reach
  const Pixels color = Splat(kOver || kCovered ? s.color : s.color | s.opaque);
  const Pixels alpha = Alphas(color), inverse = alpha ^ kLow;
  const Pixels lowColor = LowPair(color), highColor = HighPair(color);
  const bool isOpaque = s.color >> 24 == 255;
  const auto draw = [&](int x, int y, auto pixels) ZIRK_INLINE_LAMBDA {
    uint32_t* const dst = s.dst + y * s.dstPitch + x;
    if constexpr (!kCovered) {
      Pixels shade = color;
      if constexpr (kOver) shade = AddClamped(shade, Scale(Load(dst, pixels), inverse));
      return Store(dst, shade, pixels);
    }
    const Pixels coverage = LoadCoverage(s.coverage + y * s.coveragePitch + x, pixels);
    if constexpr (kOver) {
      if (IsAllZero(coverage, pixels)) return;
      const Pixels d = Load(dst, pixels);
      const Pixels rest = (isOpaque ? coverage : MultiplyPairs(alpha, coverage)) ^ kLow;
      const Pixels low = MixPairs(lowColor, coverage, LowPair(d), rest);
      const Pixels high = MixPairs(highColor, coverage, HighPair(d), rest);
      Store(dst, JoinPairs(low, high), pixels);
    } else {
      Store(dst, Scale(color, coverage) | s.opaque, pixels);
    }
  };
  if constexpr (kCovered && kNarrow > 0)
    if (s.width <= kNarrow) return ForNarrow(s, draw);
  ForEach(s, !kOver && !kCovered, draw);
}

/// Copies rows, 64 bytes at a time to boundaries of 16: measured to be faster than memcpy(), than
/// larger boundaries and than none.
void Copy(const PixelSpan& s) {
  constexpr int kGroup = 16, kBoundary = 16;
  for (int y = 0; y < s.height; ++y) {
    uint32_t* dst = s.dst + y * s.dstPitch;
    const uint32_t* src = s.src + y * s.srcPitch;
    int x = 0;
    for (; x < s.width && reinterpret_cast<uintptr_t>(dst + x) % kBoundary != 0; ++x)
      dst[x] = src[x];
    for (; x + kGroup <= s.width; x += kGroup) {
      uint32_t group[kGroup];
      __builtin_memcpy(group, src + x, sizeof group);
      __builtin_memcpy(__builtin_assume_aligned(dst + x, kBoundary), group, sizeof group);
    }
    for (; x < s.width; ++x) dst[x] = src[x];
  }
}

template <bool kOver, bool kTinted, bool kCovered>
void Blit(const PixelSpan& span) {
  const PixelSpan s = span;  // a copy, which no store can reach
  if (!kOver && !kTinted && !kCovered && s.opaque == 0) return Copy(s);
  const Pixels color = Splat(s.color);
  ForEach(s, !kOver && !kTinted && !kCovered, [&](int x, int y, auto pixels) ZIRK_INLINE_LAMBDA {
    uint32_t* const dst = s.dst + y * s.dstPitch + x;
    Pixels p = Load(s.src + y * s.srcPitch + x, pixels);
    // Sprites have transparent margins, which cost less than the rest.
    if (kOver && !kTinted && IsZero(p)) return;
    if constexpr (kTinted) p = Multiply(p, color);
    if constexpr (kCovered)
      p = Scale(p, LoadCoverage(s.coverage + y * s.coveragePitch + x, pixels));
    if constexpr (kOver)
      p = BlendOver(p, Load(dst, pixels));
    else
      p |= s.opaque;
    Store(dst, p, pixels);
  });
}

}  // namespace

extern const Kernels ZIRK_KERNELS;

const Kernels ZIRK_KERNELS = {
    {{Fill<false, false>, Fill<false, true>}, {Fill<true, false>, Fill<true, true>}},
    {{{Blit<false, false, false>, Blit<false, false, true>},
      {Blit<false, true, false>, Blit<false, true, true>}},
     {{Blit<true, false, false>, Blit<true, false, true>},
      {Blit<true, true, false>, Blit<true, true, true>}}},
    SampleNearest,
    SampleBilinear,
};

}  // namespace ZIRK::backends
