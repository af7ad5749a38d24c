// Compiled once for the base instruction set and again for each better one (CMakeLists.txt).
// Nothing here may instantiate an inline function that another file also uses: the linker would
// keep one copy of it, perhaps the one for a processor that is not there. So: no standard library.

#include "kernels.h"

#if defined(__AVX2__)
#include <immintrin.h>
#endif

#ifndef ZIRK_KERNELS
#error "ZIRK_KERNELS names the table that this build defines"
#endif

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "vectors are taken apart as bytes");

namespace ZIRK::backends {

namespace {

// As many pixels as a vector has room for, and their channels in pairs: red and blue, or alpha and
// green, in 16-bit lanes.
#if defined(__AVX512BW__)
constexpr int kLanes = 16;
#else
constexpr int kLanes = 8;
#endif
using Pixels = uint32_t __attribute__((vector_size(4 * kLanes)));
using Integers = int32_t __attribute__((vector_size(4 * kLanes)));
using Channels = uint16_t __attribute__((vector_size(4 * kLanes)));
using Bytes = uint8_t __attribute__((vector_size(4 * kLanes)));
using Pairs = uint64_t __attribute__((vector_size(4 * kLanes)));
using Coverage = uint8_t __attribute__((vector_size(kLanes)));

#define ZIRK_INLINE inline __attribute__((always_inline))
#define ZIRK_INLINE_LAMBDA __attribute__((always_inline))

constexpr uint32_t kLow = 0x00FF00FFu;

/// Stands for all pixels of a vector where a Rest stands for some.
struct Whole {};

ZIRK_INLINE Pixels Load(const uint32_t* p, Whole) {
  Pixels v;
  __builtin_memcpy(&v, p, sizeof v);
  return v;
}
ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, Whole) {
  __builtin_memcpy(p, &v, sizeof v);
}

ZIRK_INLINE Pixels Splat(uint32_t c) {
  return Pixels{} + c;
}

/// 0, 1, 2 and so on.
ZIRK_INLINE Pixels Indices() {
  Pixels index;
  for (uint32_t i = 0; i < kLanes; ++i) index[i] = i;
  return index;
}

// --- What the compiler does not find by itself ---------------------------------------------------

/// Each lane, a product of two channels, divided by 255 and rounded.
ZIRK_INLINE Channels DivideBy255(Channels t) {
#if defined(__AVX512BW__)
  return (Channels)_mm512_mulhi_epu16((__m512i)(t + 128), _mm512_set1_epi16(257));
#elif defined(__AVX2__)
  return (Channels)_mm256_mulhi_epu16((__m256i)(t + 128), _mm256_set1_epi16(257));
#else
  t += 128;
  return (t + (t >> 8)) >> 8;
#endif
}

ZIRK_INLINE Pixels AddClamped(Pixels a, Pixels b) {
#if defined(__AVX512BW__)
  return (Pixels)_mm512_adds_epu8((__m512i)a, (__m512i)b);
#elif defined(__AVX2__)
  return (Pixels)_mm256_adds_epu8((__m256i)a, (__m256i)b);
#else
  const Bytes sum = (Bytes)a + (Bytes)b;
  return (Pixels)(sum | (Bytes)(sum < (Bytes)a));
#endif
}

/// Each pixel's alpha, in both 16-bit halves.
ZIRK_INLINE Pixels Alphas(Pixels p) {
#if defined(__AVX512BW__)
  return (Pixels)_mm512_shuffle_epi8(
      (__m512i)p, _mm512_set4_epi32(-0x7FF07FF1, -0x7FF47FF5, -0x7FF87FF9, -0x7FFC7FFD));
#elif defined(__AVX2__)
  return (Pixels)_mm256_shuffle_epi8(
      (__m256i)p, _mm256_setr_epi32(-0x7FFC7FFD, -0x7FF87FF9, -0x7FF47FF5, -0x7FF07FF1, -0x7FFC7FFD,
                                    -0x7FF87FF9, -0x7FF47FF5, -0x7FF07FF1));
#else
  const Pixels a = p >> 24;
  return a | (a << 16);
#endif
}

/// The pixels that are left of a row, fewer than a vector has.
struct Rest {
#if defined(__AVX512BW__)
  __mmask16 lanes;
#elif defined(__AVX2__)
  Pixels lanes;
#endif
  int count;

  ZIRK_INLINE explicit Rest(int n) : count(n) {
#if defined(__AVX512BW__)
    lanes = static_cast<__mmask16>((1u << n) - 1);
#elif defined(__AVX2__)
    lanes = (Pixels)(Indices() < static_cast<uint32_t>(n));
#endif
  }
};

/// The others are transparent.
ZIRK_INLINE Pixels Load(const uint32_t* p, const Rest& rest) {
#if defined(__AVX512BW__)
  return (Pixels)_mm512_maskz_loadu_epi32(rest.lanes, p);
#elif defined(__AVX2__)
  return (Pixels)_mm256_maskload_epi32(reinterpret_cast<const int*>(p), (__m256i)rest.lanes);
#else
  Pixels v = {};
  for (int i = 0; i < rest.count; ++i) v[i] = p[i];
  return v;
#endif
}

ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, const Rest& rest) {
#if defined(__AVX512BW__)
  _mm512_mask_storeu_epi32(p, rest.lanes, (__m512i)v);
#elif defined(__AVX2__)
  _mm256_maskstore_epi32(reinterpret_cast<int*>(p), (__m256i)rest.lanes, (__m256i)v);
#else
  for (int i = 0; i < rest.count; ++i) p[i] = v[i];
#endif
}

/// The pixels at some offsets.
ZIRK_INLINE Pixels Gather(const uint32_t* p, Integers at) {
#if defined(__AVX512BW__)
  return (Pixels)_mm512_i32gather_epi32((__m512i)at, p, 4);
#elif defined(__AVX2__)
  return (Pixels)_mm256_i32gather_epi32(reinterpret_cast<const int*>(p), (__m256i)at, 4);
#else
  Pixels v = {};
  for (int i = 0; i < kLanes; ++i) v[i] = p[at[i]];
  return v;
#endif
}

ZIRK_INLINE Pixels BothHalves(Pixels v) {
  return v | (v << 16);
}

/// Each byte in both 16-bit halves of its pixel.
ZIRK_INLINE Pixels Spread(Coverage c) {
#if defined(__AVX512BW__)
  return BothHalves((Pixels)_mm512_cvtepu8_epi32((__m128i)c));
#elif defined(__AVX2__)
  return BothHalves(
      (Pixels)_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(&c))));
#else
  using Words = uint16_t __attribute__((vector_size(16)));
  using Half = uint8_t __attribute__((vector_size(16)));
  Half b = {};
  __builtin_memcpy(&b, &c, sizeof c);
  const auto w = (Words)__builtin_shufflevector(b, Half{}, 0, 16, 1, 16, 2, 16, 3, 16, 4, 16, 5, 16,
                                                6, 16, 7, 16);
  const Words halves[] = {__builtin_shufflevector(w, w, 0, 0, 1, 1, 2, 2, 3, 3),
                          __builtin_shufflevector(w, w, 4, 4, 5, 5, 6, 6, 7, 7)};
  Pixels v;
  __builtin_memcpy(&v, halves, sizeof v);
  return v;
#endif
}

ZIRK_INLINE bool IsZero(Pixels v) {
#if defined(__AVX512BW__)
  return _mm512_test_epi32_mask((__m512i)v, (__m512i)v) == 0;
#elif defined(__AVX2__)
  return _mm256_testz_si256((__m256i)v, (__m256i)v);
#else
  const Pairs p = (Pairs)v;
  return (p[0] | p[1] | p[2] | p[3]) == 0;
#endif
}

// -------------------------------------------------------------------------------------------------

ZIRK_INLINE Pixels LowPair(Pixels p) {
  return p & kLow;
}
ZIRK_INLINE Pixels HighPair(Pixels p) {
  return (Pixels)((Channels)p >> 8);
}
ZIRK_INLINE Pixels JoinPairs(Pixels low, Pixels high) {
  return low | (Pixels)((Channels)high << 8);
}

/// Both channels of each pair of `a` times those of `b`, divided by 255.
ZIRK_INLINE Pixels MultiplyPairs(Pixels a, Pixels b) {
  return (Pixels)DivideBy255((Channels)a * (Channels)b);
}

/// Each channel of `p` times the 0 to 255 in `factor`, which has it in both 16-bit halves.
ZIRK_INLINE Pixels Scale(Pixels p, Pixels factor) {
  return JoinPairs(MultiplyPairs(LowPair(p), factor), MultiplyPairs(HighPair(p), factor));
}

/// Each channel of `p` times the same channel of `q`.
ZIRK_INLINE Pixels Multiply(Pixels p, Pixels q) {
  return JoinPairs(MultiplyPairs(LowPair(p), LowPair(q)), MultiplyPairs(HighPair(p), HighPair(q)));
}

ZIRK_INLINE Pixels BlendOver(Pixels s, Pixels d) {
  return AddClamped(s, Scale(d, Alphas(s) ^ kLow));
}

ZIRK_INLINE Pixels LoadCoverage(const uint8_t* p, Whole) {
  Coverage c;
  __builtin_memcpy(&c, p, sizeof c);
  return Spread(c);
}
#if defined(__AVX2__)
ZIRK_INLINE Pixels LoadCoverage(const uint8_t* p, const Rest& rest) {
#if defined(__AVX512BW__)
  return Spread((Coverage)_mm_maskz_loadu_epi8(rest.lanes, p));
#else
  uint64_t bytes;
  if (rest.count >= 4) {
    // Two halves, which overlap in the middle.
    uint32_t begin, end;
    __builtin_memcpy(&begin, p, 4);
    __builtin_memcpy(&end, p + rest.count - 4, 4);
    bytes = uint64_t{end} << (rest.count - 4) * 8 | begin;
  } else {
    bytes = uint64_t{p[0]} | uint64_t{p[rest.count / 2]} << rest.count / 2 * 8 |
            uint64_t{p[rest.count - 1]} << (rest.count - 1) * 8;
  }
  return Spread((Coverage)bytes);
#endif
}
#else
/// A number of pixels that is known beforehand, which makes them cheap to load and store.
template <int kCount>
struct Piece {};

template <int kCount>
ZIRK_INLINE Pixels Load(const uint32_t* p, Piece<kCount>) {
  Pixels v = {};
  __builtin_memcpy(&v, p, kCount * sizeof *p);
  return v;
}
template <int kCount>
ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, Piece<kCount>) {
  __builtin_memcpy(p, &v, kCount * sizeof *p);
}
template <int kCount>
ZIRK_INLINE Pixels LoadCoverage(const uint8_t* p, Piece<kCount>) {
  Coverage c = {};
  __builtin_memcpy(&c, p, kCount);
  return Spread(c);
}
#endif

/// Calls `f` for the pixels of `rest`, of which there are some.
template <typename F>
ZIRK_INLINE void ForRest(int x, int y, const Rest& rest, F&& f) {
#if defined(__AVX2__)
  f(x, y, rest);
#else
  if (rest.count & 4) {
    f(x, y, Piece<4>());
    x += 4;
  }
  if (rest.count & 2) {
    f(x, y, Piece<2>());
    x += 2;
  }
  if (rest.count & 1) f(x, y, Piece<1>());
#endif
}

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
  const Rest first(head), last(s.width - tail);
  for (int y = 0; y < s.height; ++y) {
    if (head > 0) ForRest(0, y, first, f);
    for (int x = head; x < tail; x += kLanes) f(x, y, Whole());
    if (tail < s.width) ForRest(tail, y, last, f);
  }
}

#if defined(__AVX512BW__)
/// The pixels of two rows, side by side in one vector, where each takes up half of it at most.
struct TwoRows {
  static constexpr int kWidth = kLanes / 2;

  __mmask16 first;
  __mmask16 second;
  ptrdiff_t pitch;
  ptrdiff_t coveragePitch;

  ZIRK_INLINE explicit TwoRows(const PixelSpan& s)
      : first(static_cast<__mmask16>((1u << s.width) - 1)),
        second(static_cast<__mmask16>(first << kWidth)),
        // What is left out of a vector is not read, nor written, wherever it is.
        pitch(s.dstPitch - kWidth),
        coveragePitch(s.coveragePitch - kWidth) {}
};

ZIRK_INLINE Pixels Load(const uint32_t* p, const TwoRows& rows) {
  const __m512i v = _mm512_maskz_loadu_epi32(rows.first, p);
  return (Pixels)_mm512_mask_loadu_epi32(v, rows.second, p + rows.pitch);
}
ZIRK_INLINE void Store(uint32_t* p, const Pixels& v, const TwoRows& rows) {
  _mm512_mask_storeu_epi32(p, rows.first, (__m512i)v);
  _mm512_mask_storeu_epi32(p + rows.pitch, rows.second, (__m512i)v);
}
ZIRK_INLINE Pixels LoadCoverage(const uint8_t* p, const TwoRows& rows) {
  const __m128i v = _mm_maskz_loadu_epi8(rows.first, p);
  return Spread((Coverage)_mm_mask_loadu_epi8(v, rows.second, p + rows.coveragePitch));
}

/// Narrow spans, such as glyphs.
template <typename F>
ZIRK_INLINE void ForEachTwoRows(const PixelSpan& s, F&& f) {
  const TwoRows rows(s);
  int y = 0;
  for (; y + 1 < s.height; y += 2) f(0, y, rows);
  if (y < s.height) f(0, y, Rest(s.width));
}
#endif

/// Whether it is worth leaving the pixels out.
ZIRK_INLINE bool IsAllZero(Pixels coverage, Whole) {
  return IsZero(coverage);
}
template <typename Some>
ZIRK_INLINE bool IsAllZero(Pixels, const Some&) {
  return false;
}

/// Both channels of each pair: a * u + b * v, divided by 255.
ZIRK_INLINE Pixels MixPairs(Pixels a, Pixels u, Pixels b, Pixels v) {
  return (Pixels)DivideBy255((Channels)a * (Channels)u + (Channels)b * (Channels)v);
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
#if defined(__AVX512BW__)
  if constexpr (kCovered)
    if (s.width <= TwoRows::kWidth) return ForEachTwoRows(s, draw);
#endif
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

ZIRK_INLINE int Clamp(int v, int low, int high) {
  return v < low ? low : v > high ? high : v;
}
ZIRK_INLINE Integers Clamp(Integers v, int low, int high) {
  const Integers raised = v < low ? Integers{} + low : v;
  return raised > high ? Integers{} + high : raised;
}

/// Nearest pixels along one axis of the image.
ZIRK_INLINE void SampleAlong(const uint32_t* pixels, ptrdiff_t pitch, int32_t first, int32_t step,
                             int32_t rest, int min, int max, uint32_t* out, int count) {
  uint32_t position = static_cast<uint32_t>(first);
  int32_t rests = 0;
  for (int i = 0; i < count; ++i) {
    const uint32_t exact = position + static_cast<uint32_t>(rests >> 16);
    out[i] = pixels[Clamp(static_cast<int32_t>(exact) >> 16, min, max) * pitch];
    position += static_cast<uint32_t>(step);
    rests += rest;
  }
}

void SampleNearest(const SampleRow& s, uint32_t* out, int count) {
  if (s.stepY == 0 && s.restY == 0) {
    const uint32_t* const row = s.pixels + Clamp(s.y >> 16, s.minY, s.maxY) * s.pitch;
    return SampleAlong(row, 1, s.x, s.stepX, s.restX, s.minX, s.maxX, out, count);
  }
  if (s.stepX == 0 && s.restX == 0) {
    const uint32_t* const column = s.pixels + Clamp(s.x >> 16, s.minX, s.maxX);
    return SampleAlong(column, s.pitch, s.y, s.stepY, s.restY, s.minY, s.maxY, out, count);
  }
  uint32_t x = static_cast<uint32_t>(s.x);
  uint32_t y = static_cast<uint32_t>(s.y);
  for (int i = 0; i < count; ++i) {
    const int px = Clamp(static_cast<int32_t>(x) >> 16, s.minX, s.maxX);
    const int py = Clamp(static_cast<int32_t>(y) >> 16, s.minY, s.maxY);
    out[i] = s.pixels[py * s.pitch + px];
    x += static_cast<uint32_t>(s.stepX);
    y += static_cast<uint32_t>(s.stepY);
  }
}

/// a + (b - a) * w / 256 in each channel of a pair; `w` has the weight in both halves.
ZIRK_INLINE Pixels MixPairs(Pixels a, Pixels b, Pixels w) {
  const Channels wb = (Channels)w;
  return (Pixels)(((Channels)a * (256 - wb) + (Channels)b * wb + 128) >> 8);
}

ZIRK_INLINE Pixels Mix(Pixels a, Pixels b, Pixels w) {
  return JoinPairs(MixPairs(LowPair(a), LowPair(b), w), MixPairs(HighPair(a), HighPair(b), w));
}

ZIRK_INLINE Pixels LoadUpTo(const uint32_t* p, int n) {
  return n < kLanes ? Load(p, Rest(n)) : Load(p, Whole());
}
ZIRK_INLINE void StoreUpTo(uint32_t* p, const Pixels& v, int n) {
  return n < kLanes ? Store(p, v, Rest(n)) : Store(p, v, Whole());
}

/// Groups of four neighbouring pixels.
struct Neighbours {
  Pixels topLeft, topRight, bottomLeft, bottomRight;
};

ZIRK_INLINE Pixels Mix(const Neighbours& n, Pixels wx, Pixels wy) {
  const Pixels low = MixPairs(MixPairs(LowPair(n.topLeft), LowPair(n.topRight), wx),
                              MixPairs(LowPair(n.bottomLeft), LowPair(n.bottomRight), wx), wy);
  const Pixels high = MixPairs(MixPairs(HighPair(n.topLeft), HighPair(n.topRight), wx),
                               MixPairs(HighPair(n.bottomLeft), HighPair(n.bottomRight), wx), wy);
  return JoinPairs(low, high);
}

/// Positions along a row, 16.16 fixed point.
struct Positions {
  uint32_t start;
  uint32_t step;

  ZIRK_INLINE int WholePart(int i) const {
    return static_cast<int32_t>(start + static_cast<uint32_t>(i) * step) >> 16;
  }
  /// A vector of them, from position `i` on.
  ZIRK_INLINE Pixels From(int i) const {
    return start + (Indices() + static_cast<uint32_t>(i)) * step;
  }
};

ZIRK_INLINE Integers WholeParts(Pixels positions) {
  return (Integers)positions >> 16;
}

/// The weights of positions, each in both halves.
ZIRK_INLINE Pixels Weights(Pixels positions) {
  return BothHalves((positions >> 8) & 0xFF);
}

/// The lanes of both vectors that have even numbers, and those that have odd ones.
ZIRK_INLINE void Separate(const Pixels& a, const Pixels& b, Pixels& even, Pixels& odd) {
#if defined(__AVX512BW__)
  even = __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
  odd = __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
#else
  even = __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
  odd = __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15);
#endif
}

/// The pixels at some offsets, and those to their right.
ZIRK_INLINE void LoadPairs(const uint32_t* p, Integers at, Pixels& left, Pixels& right) {
  Pairs low, high;
#if defined(__AVX512BW__)
  low = (Pairs)_mm512_i32gather_epi64(_mm512_castsi512_si256((__m512i)at), p, 4);
  high = (Pairs)_mm512_i32gather_epi64(_mm512_extracti64x4_epi64((__m512i)at, 1), p, 4);
#elif defined(__AVX2__)
  const auto* pairs = reinterpret_cast<const long long*>(p);
  low = (Pairs)_mm256_i32gather_epi64(pairs, _mm256_castsi256_si128((__m256i)at), 4);
  high = (Pairs)_mm256_i32gather_epi64(pairs, _mm256_extracti128_si256((__m256i)at, 1), 4);
#else
  for (int i = 0; i < kLanes / 2; ++i) {
    uint64_t pair;
    __builtin_memcpy(&pair, p + at[i], sizeof pair);
    low[i] = pair;
    __builtin_memcpy(&pair, p + at[i + kLanes / 2], sizeof pair);
    high[i] = pair;
  }
#endif
  Separate((Pixels)low, (Pixels)high, left, right);
}

/// Some of the neighbours may lie beyond the limits.
ZIRK_INLINE void LoadClamped(const SampleRow& s, Integers x, Integers y, Neighbours& n) {
  const auto pitch = static_cast<int32_t>(s.pitch);
  const Integers left = Clamp(x, s.minX, s.maxX), right = Clamp(x + 1, s.minX, s.maxX);
  const Integers top = Clamp(y, s.minY, s.maxY) * pitch;
  const Integers bottom = Clamp(y + 1, s.minY, s.maxY) * pitch;
  n.topLeft = Gather(s.pixels, top + left);
  n.topRight = Gather(s.pixels, top + right);
  n.bottomLeft = Gather(s.pixels, bottom + left);
  n.bottomRight = Gather(s.pixels, bottom + right);
}

void SampleSlanted(const SampleRow& s, Positions px, Positions py, uint32_t* out, int count) {
  // A row is a straight line: if its ends have all their neighbours inside the limits, all have.
  // Unless it is so long that positions wrap around on the way.
  constexpr int32_t kShort = 1024 << 16;
  const bool straight =
      s.stepX < kShort && s.stepX > -kShort && s.stepY < kShort && s.stepY > -kShort;
  const auto inside = [&](int i) {
    const int x = px.WholePart(i), y = py.WholePart(i);
    return x >= s.minX && x < s.maxX && y >= s.minY && y < s.maxY;
  };
  for (int i = 0; i < count; i += kLanes) {
    const Pixels x = px.From(i), y = py.From(i);
    Neighbours n;
    if (straight && inside(i) && inside(i + kLanes - 1)) {
      const Integers at = WholeParts(y) * static_cast<int32_t>(s.pitch) + WholeParts(x);
      LoadPairs(s.pixels, at, n.topLeft, n.topRight);
      LoadPairs(s.pixels + s.pitch, at, n.bottomLeft, n.bottomRight);
    } else {
      LoadClamped(s, WholeParts(x), WholeParts(y), n);
    }
    StoreUpTo(out + i, Mix(n, Weights(x), Weights(y)), count - i);
  }
}

/// Source pixels that an enlarged row can need.
constexpr int kEnlargedColumns = kSampleLimit + 2 + kLanes;

/// Columns `first` to `first + count` of two rows, mixed. Beyond the limits the last column goes
/// on.
ZIRK_INLINE void MixRows(const SampleRow& s, int y, Pixels weight, int first, int count,
                         uint32_t* out) {
  const uint32_t* top = s.pixels + Clamp(y, s.minY, s.maxY) * s.pitch;
  const uint32_t* bottom = s.pixels + Clamp(y + 1, s.minY, s.maxY) * s.pitch;
  // Columns inside the limits, or else the one that is nearest to them.
  const int begin = Clamp(s.minX - first, 0, count - 1);
  const int end = Clamp(s.maxX + 1 - first, begin + 1, count);
  const int column = Clamp(first + begin, s.minX, s.maxX) - begin;
  for (int i = begin; i < end; i += kLanes)
    StoreUpTo(
        out + i,
        Mix(LoadUpTo(top + column + i, end - i), LoadUpTo(bottom + column + i, end - i), weight),
        end - i);
  for (int i = 0; i < begin; ++i) out[i] = out[begin];
  for (int i = end; i < count; ++i) out[i] = out[end - 1];
}

/// A row that runs along one of the image's, enlarged: the two rows are mixed once, and then
/// neighbours within.
void SampleEnlarged(const SampleRow& s, Positions px, uint32_t* out, int count) {
  uint32_t columns[kEnlargedColumns];
  const int a = px.WholePart(0), b = px.WholePart(count - 1);
  const int first = a < b ? a : b, last = a < b ? b : a;
  MixRows(s, s.y >> 16, BothHalves(Splat(static_cast<uint32_t>(s.y) >> 8 & 0xFF)), first,
          last - first + 2, columns);
  for (int i = 0; i < count; i += kLanes) {
    const Pixels x = px.From(i);
    Pixels left, right;
    // Positions beyond the row may lie beyond the columns.
    LoadPairs(columns, Clamp(WholeParts(x) - first, 0, last - first), left, right);
    StoreUpTo(out + i, Mix(left, right, Weights(x)), count - i);
  }
}

void SampleBilinear(const SampleRow& s, uint32_t* out, int count) {
  const Positions px = {static_cast<uint32_t>(s.x), static_cast<uint32_t>(s.stepX)};
  const Positions py = {static_cast<uint32_t>(s.y), static_cast<uint32_t>(s.stepY)};
  const bool enlarged = s.stepX <= 65536 && s.stepX >= -65536;
  if (s.stepY == 0 && enlarged && count <= kSampleLimit)
    SampleEnlarged(s, px, out, count);
  else
    SampleSlanted(s, px, py, out, count);
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
