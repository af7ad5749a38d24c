// Compiled once for the base instruction set and again for each better one (CMakeLists.txt).
// Nothing here, nor in the headers from vectors.h on, may instantiate an inline function that
// another file also uses: the linker would keep one copy of it, perhaps one that this processor
// cannot run. These files therefore use no standard library, and the headers use unnamed
// namespaces.

#include "kernels.h"

#include "factors.h"
#include "samplers.h"
#include "vectors.h"

#ifndef ZIRK_KERNELS
#error "ZIRK_KERNELS names the table that this build defines"
#endif

namespace ZIRK::backends {

namespace {

/// Converts one pixel or a vector of pixels from RGB565 to 8 bits per channel by repeating the
/// channels' bits. Narrow() converts back by dropping the low bits.
template <typename P>
ZIRK_INLINE P Widen(P p) {
  const P red = p & 0xF800, green = p & 0x07E0, blue = p & 0x001F;
  return red << 8 | (red << 3 & 0x070000) | green << 5 | (green >> 1 & 0x0300) | blue << 3 |
         blue >> 2;
}
template <typename P>
ZIRK_INLINE P Narrow(P p) {
  return (p >> 8 & 0xF800) | (p >> 5 & 0x07E0) | (p >> 3 & 0x001F);
}

/// The formats of destinations, with vectors of their pixels.
struct Argb8888 {
  using Stored = uint32_t;
  static constexpr int kTwoRows = backends::kTwoRows, kTwoEnds = backends::kTwoEnds;
  static ZIRK_INLINE Stored* Row(const PixelSpan& s, int y) { return s.dst + y * s.dstPitch; }
  template <typename Some>
  static ZIRK_INLINE Pixels Load(const Stored* p, const Some& pixels) {
    return backends::Load(p, pixels);
  }
  template <typename Some>
  static ZIRK_INLINE void Store(Stored* p, const Pixels& v, const Some& pixels) {
    backends::Store(p, v, pixels);
  }
  template <typename F>
  static ZIRK_INLINE void ForNarrow(const PixelSpan& s, F&& f) {
    backends::ForNarrow(s, f);
  }
};

/// Whether to draw on RGB565 without Pixman. Pixman's loops are faster for vectors of four.
constexpr bool kDraws565 = kLanes > 4;

struct Rgb565 {
  using Stored = uint16_t;
  using Narrowed = uint16_t __attribute__((vector_size(2 * kLanes)));
  static constexpr int kTwoRows = 0, kTwoEnds = 0;
  static ZIRK_INLINE Stored* Row(const PixelSpan& s, int y) { return s.dst565 + y * s.dstPitch; }
  static ZIRK_INLINE Pixels Load(const Stored* p, Full) {
    Narrowed v;
    __builtin_memcpy(&v, p, sizeof v);
    return Widen(__builtin_convertvector(v, Pixels));
  }
  static ZIRK_INLINE void Store(Stored* p, const Pixels& v, Full) {
    const auto narrowed = __builtin_convertvector(Narrow(v), Narrowed);
    __builtin_memcpy(p, &narrowed, sizeof narrowed);
  }
  static ZIRK_INLINE Pixels Load(const Stored* p, Some some) {
    Stored pixels[kLanes] = {};
    for (int i = 0; i < some.count; ++i) pixels[i] = p[i];
    return Load(pixels, Full());
  }
  static ZIRK_INLINE void Store(Stored* p, const Pixels& v, Some some) {
    Stored pixels[kLanes];
    Store(pixels, v, Full());
    for (int i = 0; i < some.count; ++i) p[i] = pixels[i];
  }
  template <typename F>
  static ZIRK_INLINE void ForNarrow(const PixelSpan& s, F&& f) {
    for (int y = 0; y < s.height; ++y) f(0, y, Some{s.width});
  }
};

/// The distance in rows from the row being drawn to the row of the destination that is prefetched.
/// Processors prefetch by themselves only within a page, and each row of a wide surface is on a
/// different page.
constexpr int kRowsAhead = 2;
/// The least width to prefetch: the processor works on many narrower rows at a time anyway.
constexpr int kLeastFetched = 32;

/// Returns the number of rows, from the first, that call FetchBelow().
ZIRK_INLINE int FetchEnd(const PixelSpan& s) {
  return s.width < kLeastFetched ? 0 : s.height + s.rowsBelow - kRowsAhead;
}
template <typename Format>
ZIRK_INLINE void FetchBelow(const PixelSpan& s, int y) {
  constexpr int kCacheLine = 64 / sizeof(typename Format::Stored);
  const auto* const row = Format::Row(s, y + kRowsAhead);
  for (int x = 0; x < s.width; x += kCacheLine) __builtin_prefetch(row + x, 1);
}

/// Stores the vectors `v` that `compute(x, y, pixels, v)` computes for all pixels of the span. If
/// it returns false, the pixels keep their values.
///
/// The last vector of a row overlaps the one before. It is computed first, from the old pixels.
/// With `aligned`, vectors start on multiples of their size. Use it for memory that is only
/// written: otherwise such a loop spends most of its time on stores that straddle two cache lines.
template <typename Format, typename F>
ZIRK_INLINE void ForEach(const PixelSpan& s, bool aligned, F&& compute) {
  const auto draw = [&](int x, int y, auto pixels) ZIRK_INLINE_LAMBDA {
    Pixels v;
    if (compute(x, y, pixels, v)) Format::Store(Format::Row(s, y) + x, v, pixels);
  };
  if (s.width < kLanes) return Format::ForNarrow(s, draw);
  int begin = 0;
  if (aligned && s.width >= 3 * kLanes) {
    constexpr size_t kPixelBytes = sizeof(typename Format::Stored);
    const auto past = reinterpret_cast<uintptr_t>(Format::Row(s, 0)) / kPixelBytes % kLanes;
    begin = (kLanes - static_cast<int>(past)) % kLanes;
  }
  const int last = s.width - kLanes;
  const int fetchEnd = FetchEnd(s);
  for (int y = 0; y < s.height; ++y) {
    if (y < fetchEnd) FetchBelow<Format>(s, y);
    Pixels v;
    const bool any = compute(last, y, Full(), v);
    if (begin > 0) draw(0, y, Full());
    for (int x = begin; x < last; x += kLanes) draw(x, y, Full());
    if (any) Format::Store(Format::Row(s, y) + last, v, Full());
  }
}

/// Returns whether to skip the pixels. Testing pays off only for a full vector.
ZIRK_INLINE bool IsAllZero(Coverage coverage, Full) {
  return IsZero(coverage);
}
template <typename Some>
ZIRK_INLINE bool IsAllZero(Coverage, const Some&) {
  return false;
}

template <typename Format, bool kOver, bool kCovered>
[[gnu::noinline]] void Fill(const PixelSpan& span) {
  const PixelSpan s = span;  // A copy: no store can change it.
  const Pixels color = Splat(kOver || kCovered ? s.color : s.color | s.opaque);
  const Pixels alpha = Alphas(color), inverse = alpha ^ kLow;
  const Pixels lowColor = LowPair(color), highColor = HighPair(color);
  const bool isOpaque = s.color >> 24 == 255;
  const auto compute = [&](int x, int y, auto pixels, Pixels& v) ZIRK_INLINE_LAMBDA {
    const auto* const dst = Format::Row(s, y) + x;
    if constexpr (!kCovered) {
      v = kOver ? AddClamped(color, Scale(Format::Load(dst, pixels), inverse)) : color;
      return true;
    }
    const Coverage bytes = LoadCoverage(s.coverage + y * s.coveragePitch + x, pixels);
    if (kOver && IsAllZero(bytes, pixels)) return false;
    const Pixels coverage = Spread(bytes);
    if constexpr (kOver) {
      const Pixels d = Format::Load(dst, pixels);
      const Pixels rest = (isOpaque ? coverage : MultiplyPairs(alpha, coverage)) ^ kLow;
      const Pixels low = MixPairs(lowColor, coverage, LowPair(d), rest);
      const Pixels high = MixPairs(highColor, coverage, HighPair(d), rest);
      v = JoinPairs(low, high);
    } else {
      v = Scale(color, coverage) | s.opaque;
    }
    return true;
  };
  if constexpr (kCovered && Format::kTwoRows > 0)
    if (s.width <= Format::kTwoRows)
      return ForTwoRows(s, [&](int x, int y, auto pixels) ZIRK_INLINE_LAMBDA {
        Pixels v;
        compute(x, y, pixels, v);
        Format::Store(Format::Row(s, y) + x, v, pixels);
      });
  if constexpr (kCovered && Format::kTwoEnds > 0)
    if (s.width > kLanes && s.width <= Format::kTwoEnds)
      return ForTwoEnds(s, compute,
                        [&](int x, int y, const Pixels& v, auto pixels) ZIRK_INLINE_LAMBDA {
                          Format::Store(Format::Row(s, y) + x, v, pixels);
                        });
  ForEach<Format>(s, !kOver && !kCovered, compute);
}

/// Fills with one colour, without blending. Small rectangles have a separate loop that needs few
/// registers.
template <typename Format>
void FillSource(const PixelSpan& span) {
  if (span.width > 2 * kLanes) return Fill<Format, false, false>(span);
  const PixelSpan s = span;  // A copy: no store can change it.
  const Pixels color = Splat(s.color | s.opaque);
  const auto draw = [&](int x, int y, auto pixels)
                        ZIRK_INLINE_LAMBDA { Format::Store(Format::Row(s, y) + x, color, pixels); };
  if (s.width < kLanes) return Format::ForNarrow(s, draw);
  for (int y = 0; y < s.height; ++y) {
    draw(0, y, Full());
    draw(s.width - kLanes, y, Full());
  }
}

ZIRK_INLINE void CopyFour(uint32_t* dst, const uint32_t* src) {
  __builtin_memcpy(dst, src, 4 * sizeof *dst);
}

/// Copies rows of at least 4 pixels, 16 bytes at a time. Stores are aligned to 16 bytes except at
/// both ends of a row, where they overlap the others. This was measured to be faster than memcpy(),
/// than larger vectors and alignments, and than unaligned stores.
void Copy(const PixelSpan& s) {
  constexpr int kFour = 4, kGroup = 4 * kFour;
  const int last = s.width - kFour, fetchEnd = FetchEnd(s);
  for (int y = 0; y < s.height; ++y) {
    uint32_t* const dst = s.dst + y * s.dstPitch;
    const uint32_t* const src = s.src + y * s.srcPitch;
    if (y < fetchEnd) FetchBelow<Argb8888>(s, y);
    CopyFour(dst, src);
    int x = kFour - static_cast<int>(reinterpret_cast<uintptr_t>(dst) / sizeof *dst % kFour);
    for (; x <= s.width - kGroup; x += kGroup)
      for (int i = 0; i < kGroup; i += kFour) CopyFour(dst + x + i, src + x + i);
    for (; x < last; x += kFour) CopyFour(dst + x, src + x);
    CopyFour(dst + last, src + last);
  }
}

template <typename Format, bool kOver, bool kTinted, bool kCovered>
void Blit(const PixelSpan& span) {
  const PixelSpan s = span;  // A copy: no store can change it.
  const Pixels color = Splat(s.color);
  const auto compute = [&](int x, int y, auto pixels, Pixels& v) ZIRK_INLINE_LAMBDA {
    Pixels p = Load(s.src + y * s.srcPitch + x, pixels);
    // Sprites have transparent margins and opaque centres, which take less work than other pixels.
    if (kOver && !kTinted && !IsTranslucent(p)) {
      if (IsZero(p)) return false;
      if (!kCovered && IsOpaque(p)) {
        v = p;
        return true;
      }
    }
    if constexpr (kTinted) p = Multiply(p, color);
    if constexpr (kCovered) {
      const Coverage coverage = LoadCoverage(s.coverage + y * s.coveragePitch + x, pixels);
      if (!IsFull(coverage)) p = Scale(p, Spread(coverage));
    }
    if constexpr (kOver)
      v = BlendOver(p, Format::Load(Format::Row(s, y) + x, pixels));
    else
      v = p | s.opaque;
    return true;
  };
  ForEach<Format>(s, !kOver && !kTinted && !kCovered, compute);
}

/// Copies pixels without a change, except for the X byte.
void Replace(const PixelSpan& s) {
  if (s.opaque == 0 && s.width >= 4) return Copy(s);
  Blit<Argb8888, false, false, false>(s);
}

using FourNarrow = uint16_t __attribute__((vector_size(8)));

/// Calls `four(x)` for four pixels of a row at a time; the last four may overlap those before.
/// Calls `one(x)` for each pixel of a narrower row.
template <typename F, typename G>
ZIRK_INLINE void ForFours(int width, F&& four, G&& one) {
  for (int x = 0; x < width - 4; x += 4) four(x);
  if (width >= 4) return four(width - 4);
  for (int x = 0; x < width; ++x) one(x);
}

ZIRK_INLINE void WidenRow(const uint16_t* from, int width, uint32_t* to) {
  const auto four = [=](int x) ZIRK_INLINE_LAMBDA {
    FourNarrow narrow;
    __builtin_memcpy(&narrow, from + x, sizeof narrow);
    const FourPixels wide = Widen(__builtin_convertvector(narrow, FourPixels));
    __builtin_memcpy(to + x, &wide, sizeof wide);
  };
  ForFours(width, four, [=](int x) { to[x] = Widen<uint32_t>(from[x]); });
}

ZIRK_INLINE void NarrowRow(const uint32_t* from, int width, uint16_t* to) {
  const auto four = [=](int x) ZIRK_INLINE_LAMBDA {
    FourPixels wide;
    __builtin_memcpy(&wide, from + x, sizeof wide);
    const FourNarrow narrow = __builtin_convertvector(Narrow(wide), FourNarrow);
    __builtin_memcpy(to + x, &narrow, sizeof narrow);
  };
  ForFours(width, four, [=](int x) { to[x] = static_cast<uint16_t>(Narrow(from[x])); });
}

/// Draws a colour through coverage onto RGB565. Narrow spans, such as text, are converted to 32-bit
/// pixels and back, in batches that fit into the cache.
void CoverOnto565(const PixelSpan& s) {
  if (kDraws565 && s.width >= kLanes) return Fill<Rgb565, true, true>(s);
  uint32_t pixels[kSampleLimit];
  const int columns = s.width < kSampleLimit ? s.width : kSampleLimit;
  const int rows = kSampleLimit / columns;
  for (int y0 = 0; y0 < s.height; y0 += rows)
    for (int x = 0; x < s.width; x += columns) {
      PixelSpan part = {pixels, columns, columns, rows};
      if (part.width > s.width - x) part.width = s.width - x;
      if (part.height > s.height - y0) part.height = s.height - y0;
      part.color = s.color;
      part.coverage = s.coverage + ptrdiff_t{y0} * s.coveragePitch + x;
      part.coveragePitch = s.coveragePitch;
      uint16_t* const dst = s.dst565 + ptrdiff_t{y0} * s.dstPitch + x;
      for (int y = 0; y < part.height; ++y)
        WidenRow(dst + y * s.dstPitch, part.width, pixels + ptrdiff_t{y} * columns);
      Fill<Argb8888, true, true>(part);
      for (int y = 0; y < part.height; ++y)
        NarrowRow(pixels + ptrdiff_t{y} * columns, part.width, dst + y * s.dstPitch);
    }
}

constexpr Kernels::SpanKernel Where565(Kernels::SpanKernel kernel) {
  return kDraws565 ? kernel : nullptr;
}

}  // namespace

extern const Kernels ZIRK_KERNELS;

const Kernels ZIRK_KERNELS = {
    {{FillSource<Argb8888>, Fill<Argb8888, false, true>},
     {Fill<Argb8888, true, false>, Fill<Argb8888, true, true>}},
    {{{Replace, Blit<Argb8888, false, false, true>},
      {Blit<Argb8888, false, true, false>, Blit<Argb8888, false, true, true>}},
     {{Blit<Argb8888, true, false, false>, Blit<Argb8888, true, false, true>},
      {Blit<Argb8888, true, true, false>, Blit<Argb8888, true, true, true>}}},
    {{Where565(FillSource<Rgb565>), nullptr}, {Where565(Fill<Rgb565, true, false>), CoverOnto565}},
    {Where565(Blit<Rgb565, false, false, false>), Where565(Blit<Rgb565, true, false, false>)},
    SampleNearest,
    SampleBilinear,
    BlendByFactors,
};

}  // namespace ZIRK::backends
