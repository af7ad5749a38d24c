#pragma once

#include "kernels.h"
#include "neonpixels.h"

/// Reads rows of pixels from an image, nearest or bilinear. Pixels are not separated by channel:
/// adjacent pixels in memory are mixed byte by byte, two pixels at a time.

namespace ZIRK::backends {

namespace {

ZIRK_INLINE int Clamp(int v, int low, int high) {
  return v < low ? low : v > high ? high : v;
}

/// Positions along a row, 16.16 fixed point. They may wrap around.
struct Positions {
  uint32_t first;
  uint32_t step;

  ZIRK_INLINE uint32_t At(int i) const { return first + static_cast<uint32_t>(i) * step; }
};

ZIRK_INLINE int WholePart(uint32_t position) {
  return static_cast<int32_t>(position) >> 16;
}

/// Whether no row with this step wraps around completely.
ZIRK_INLINE bool IsShort(uint32_t step) {
  constexpr auto kShort = static_cast<uint32_t>(kShortStep);
  return step + kShort < 2 * kShort;
}

// --- Nearest ---

/// One axis of an image, from `min` to `max`, with pixels `pitch` apart.
struct Line {
  const uint32_t* pixels;
  ptrdiff_t pitch;
  int min, max;
  uint32_t first, step;
  int32_t stepFraction;  ///< See SampleRow.

  ZIRK_INLINE int IndexAt(int i) const {
    const auto rests = static_cast<uint32_t>(i * stepFraction >> 16);
    return WholePart(first + static_cast<uint32_t>(i) * step + rests);
  }
};

/// Stores each pixel twice.
ZIRK_INLINE void SampleDoubled(const Line& line, uint32_t* out, int count) {
  const uint32_t* in = line.pixels + WholePart(line.first);
  int i = 0;
  if (line.first & 0x8000u) out[i++] = *in++;
  for (; i + 8 <= count; i += 8, in += 4) {
    const uint32x4_t four = vld1q_u32(in);
    const uint32x4x2_t twice = vzipq_u32(four, four);
    vst1q_u32(out + i, twice.val[0]);
    vst1q_u32(out + i + 4, twice.val[1]);
  }
  for (; i + 2 <= count; i += 2, ++in) out[i] = out[i + 1] = *in;
  if (i < count) out[i] = *in;
}

template <bool kInside>
ZIRK_INLINE void SampleAlong(const Line& line, uint32_t* out, int count) {
  uint32_t position = line.first;
  int32_t rests = 0;  // all fractions so far, too small to be added to a position
  for (int i = 0; i < count; ++i) {
    const int index = WholePart(position + static_cast<uint32_t>(rests >> 16));
    out[i] = line.pixels[(kInside ? index : Clamp(index, line.min, line.max)) * line.pitch];
    position += line.step;
    rests += line.stepFraction;
  }
}

void SampleAlong(const Line& line, uint32_t* out, int count) {
  // If a row can wrap around, its ends do not determine the positions between them.
  const auto isInside = [&](int i) {
    const int index = line.IndexAt(i);
    return index >= line.min && index <= line.max;
  };
  const bool inside = IsShort(line.step) && isInside(0) && isInside(count - 1);
  if (!inside) return SampleAlong<false>(line, out, count);
  constexpr uint32_t kHalf = 1u << 15;
  if (line.pitch == 1 && line.step == kHalf && line.stepFraction == 0)
    return SampleDoubled(line, out, count);
  SampleAlong<true>(line, out, count);
}

void SampleNearest(const SampleRow& s, uint32_t* out, int count) {
  const auto x = static_cast<uint32_t>(s.x), stepX = static_cast<uint32_t>(s.stepX);
  const auto y = static_cast<uint32_t>(s.y), stepY = static_cast<uint32_t>(s.stepY);
  if (s.stepY == 0 && s.stepFractionY == 0) {
    const uint32_t* const row = s.pixels + Clamp(s.y >> 16, s.minY, s.maxY) * s.pitch;
    return SampleAlong({row, 1, s.minX, s.maxX, x, stepX, s.stepFractionX}, out, count);
  }
  if (s.stepX == 0 && s.stepFractionX == 0) {
    const uint32_t* const column = s.pixels + Clamp(s.x >> 16, s.minX, s.maxX);
    return SampleAlong({column, s.pitch, s.minY, s.maxY, y, stepY, s.stepFractionY}, out, count);
  }
  const Positions px = {x, stepX}, py = {y, stepY};
  for (int i = 0; i < count; ++i) {
    const int row = Clamp(WholePart(py.At(i)), s.minY, s.maxY);
    out[i] = s.pixels[row * s.pitch + Clamp(WholePart(px.At(i)), s.minX, s.maxX)];
  }
}

// --- Bilinear ---

/// (a * (256 - w) + b * w + 128) / 256 for each byte.
ZIRK_INLINE uint8x8_t Interpolate(uint8x8_t a, uint8x8_t b, uint8x8_t w) {
  return vrshrn_n_u16(vmlal_u8(vmlsl_u8(vshll_n_u8(a, 8), a, w), b, w), 8);
}

/// Loads a pixel and the one to its right.
ZIRK_INLINE uint32x2_t LoadPair(const uint32_t* p) {
  return vld1_u32(p);
}
ZIRK_INLINE uint32x2_t MakePair(uint32_t left, uint32_t right) {
  return vcreate_u32(uint64_t{right} << 32 | left);
}

/// Interpolates between the two pixels of each pair.
ZIRK_INLINE uint8x8_t InterpolatePairs(uint32x2_t a, uint32x2_t b, uint8x8_t w) {
  const uint32x2x2_t sides = vtrn_u32(a, b);
  return Interpolate(vreinterpret_u8_u32(sides.val[0]), vreinterpret_u8_u32(sides.val[1]), w);
}

/// The positions of two consecutive pixels, as numbers for addresses and as a vector.
class TwoPositions {
 public:
  ZIRK_INLINE TwoPositions(Positions p, int i)
      : first_(p.At(i)),
        step_(p.step),
        both_(MakePair(first_, first_ + step_)),
        bothSteps_(vdup_n_u32(2 * step_)) {}

  /// Advances to the next two pixels.
  ZIRK_INLINE void Advance() {
    first_ += 2 * step_;
    both_ = vadd_u32(both_, bothSteps_);
  }

  ZIRK_INLINE int First() const { return WholePart(first_); }
  ZIRK_INLINE int Second() const { return WholePart(first_ + step_); }
  /// The highest 8 bits of both fractions, each in all four bytes of its pixel.
  ZIRK_INLINE uint8x8_t Weights() const {
    return vtbl1_u8(vreinterpret_u8_u32(both_), vcreate_u8(0x0505050501010101u));
  }

 private:
  uint32_t first_;
  uint32_t step_;
  uint32x2_t both_, bothSteps_;
};

/// Stores the results of `f(x, y)` for the positions `begin` to `end`, two at a time.
template <typename F>
ZIRK_INLINE void ForTwos(Positions px, Positions py, int begin, int end, uint32_t* out, F&& f) {
  TwoPositions x(px, begin), y(py, begin);
  int i = begin;
  for (; i + 2 <= end; i += 2, x.Advance(), y.Advance())
    vst1_u32(out + i, vreinterpret_u32_u8(f(x, y)));
  if (i == end) return;
  // A last single pixel is computed twice: there may be nothing to read for another.
  const TwoPositions lastX({px.At(i), 0}, 0), lastY({py.At(i), 0}, 0);
  vst1_lane_u32(out + i, vreinterpret_u32_u8(f(lastX, lastY)), 0);
}

struct Neighbours {
  uint32x2_t top, bottom;  ///< From left to right.
};

/// Interpolates with the adjacent pixels that `load(x, y)` returns for a position.
template <typename F>
ZIRK_INLINE void SampleSlanted(Positions px, Positions py, int begin, int end, uint32_t* out,
                               F&& load) {
  const auto sample = [&](const TwoPositions& x, const TwoPositions& y) ZIRK_INLINE_LAMBDA {
    const Neighbours a = load(x.First(), y.First()), b = load(x.Second(), y.Second());
    const uint8x8_t weights = x.Weights();
    return Interpolate(InterpolatePairs(a.top, b.top, weights),
                       InterpolatePairs(a.bottom, b.bottom, weights), y.Weights());
  };
  ForTwos(px, py, begin, end, out, sample);
}

void SampleSlanted(const SampleRow& s, Positions px, Positions py, uint32_t* out, int count) {
  const auto clamped = [&](int x, int y) {
    const int left = Clamp(x, s.minX, s.maxX), right = Clamp(x + 1, s.minX, s.maxX);
    const uint32_t* const top = s.pixels + Clamp(y, s.minY, s.maxY) * s.pitch;
    const uint32_t* const bottom = s.pixels + Clamp(y + 1, s.minY, s.maxY) * s.pitch;
    return Neighbours{MakePair(top[left], top[right]), MakePair(bottom[left], bottom[right])};
  };
  const auto inPlace = [&](int x, int y) ZIRK_INLINE_LAMBDA {
    const uint32_t* const top = s.pixels + y * s.pitch + x;
    return Neighbours{LoadPair(top), LoadPair(top + s.pitch)};
  };
  const auto isInside = [&](int i) {
    const int x = WholePart(px.At(i)), y = WholePart(py.At(i));
    return x >= s.minX && x < s.maxX && y >= s.minY && y < s.maxY;
  };
  // A row is a straight line: between two pixels whose neighbours are all inside the limits, all
  // others have theirs inside too, unless positions wrap around on the way.
  const bool straight = IsShort(px.step) && IsShort(py.step);
  int begin = 0, end = count;
  while (begin < end && !(straight && isInside(begin))) ++begin;
  while (begin < end && !isInside(end - 1)) --end;
  SampleSlanted(px, py, 0, begin, out, clamped);
  SampleSlanted(px, py, begin, end, out, inPlace);
  SampleSlanted(px, py, end, count, out, clamped);
}

/// Interpolates between two rows.
ZIRK_INLINE void InterpolateRows(const uint32_t* top, const uint32_t* bottom, uint8_t weight,
                                 int count, uint32_t* out) {
  const uint8x8_t w = vdup_n_u8(weight);
  const auto mixFour = [&](int i) ZIRK_INLINE_LAMBDA {
    const uint8x16_t a = vreinterpretq_u8_u32(vld1q_u32(top + i));
    const uint8x16_t b = vreinterpretq_u8_u32(vld1q_u32(bottom + i));
    const uint8x16_t mixed = vcombine_u8(Interpolate(vget_low_u8(a), vget_low_u8(b), w),
                                         Interpolate(vget_high_u8(a), vget_high_u8(b), w));
    vst1q_u32(out + i, vreinterpretq_u32_u8(mixed));
  };
  if (count >= 4) {
    for (int i = 0; i < count - 4; i += 4) mixFour(i);
    return mixFour(count - 4);
  }
  for (int i = 0; i < count; ++i) {
    const uint8x8_t a = vreinterpret_u8_u32(vld1_dup_u32(top + i));
    const uint8x8_t b = vreinterpret_u8_u32(vld1_dup_u32(bottom + i));
    vst1_lane_u32(out + i, vreinterpret_u32_u8(Interpolate(a, b, w)), 0);
  }
}

/// Interpolates between columns `first` to `first + count` of two rows. Beyond the limits, the last
/// column is repeated.
ZIRK_INLINE void InterpolateColumns(const SampleRow& s, int first, int count, uint32_t* out) {
  const int y = s.y >> 16;
  const uint32_t* top = s.pixels + Clamp(y, s.minY, s.maxY) * s.pitch;
  const uint32_t* bottom = s.pixels + Clamp(y + 1, s.minY, s.maxY) * s.pitch;
  // Columns inside the limits, or the one nearest to them.
  const int begin = Clamp(s.minX - first, 0, count - 1);
  const int end = Clamp(s.maxX + 1 - first, begin + 1, count);
  const int column = Clamp(first + begin, s.minX, s.maxX);
  InterpolateRows(top + column, bottom + column, static_cast<uint8_t>(s.y >> 8), end - begin,
                  out + begin);
  for (int i = 0; i < begin; ++i) out[i] = out[begin];
  for (int i = end; i < count; ++i) out[i] = out[end - 1];
}

/// Interpolates within a row. This is a separate function so that `columns` stays in a register.
[[gnu::noinline]] void StretchRow(const uint32_t* columns, Positions px, uint32_t* out, int count) {
  const auto mix = [=](const TwoPositions& x, const TwoPositions&) ZIRK_INLINE_LAMBDA {
    return InterpolatePairs(LoadPair(columns + x.First()), LoadPair(columns + x.Second()),
                            x.Weights());
  };
  ForTwos(px, {}, 0, count, out, mix);
}

/// Samples a row that is parallel to the rows of the image and enlarged. It interpolates between
/// two rows once, and then within the result.
void SampleEnlarged(const SampleRow& s, Positions px, uint32_t* out, int count) {
  uint32_t columns[kSampleLimit + 2];
  const int a = WholePart(px.At(0)), b = WholePart(px.At(count - 1));
  const int first = a < b ? a : b, last = a < b ? b : a;
  InterpolateColumns(s, first, last - first + 2, columns);
  StretchRow(columns, {px.first - static_cast<uint32_t>(first) * 65536, px.step}, out, count);
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

}  // namespace ZIRK::backends
