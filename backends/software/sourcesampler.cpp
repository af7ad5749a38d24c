#include "software/sourcesampler.h"

#include <algorithm>
#include <cmath>

#include "geometry/pixeltraits.h"
#include "software/kernelchoice.h"

namespace ZIRK::backends {

namespace {

constexpr double kOne = 65536;        // 1 in 16.16 fixed point.
constexpr int32_t kHalfWeight = 128;  // Half of the step between two bilinear weights.

/// Converts `v`, clamped to the range of the samplers. Not-a-number becomes the minimum.
int32_t ToFixed(double v) {
  constexpr double kLimit = kFarthestSample;
  const double cut = v > -kLimit ? std::min(v, kLimit) : -kLimit;
  const double fixed = cut * kOne;
  return static_cast<int32_t>(fixed + (fixed < 0 ? -0.5 : 0.5));
}

/// Returns the rounding error of `step` for `v`, in 1/65536 of its last bit. Returns 0 if `step` is
/// clamped, or unless nearest pixels are read along an axis of the texture.
int32_t StepFraction(double v, int32_t step, double across, bool bilinear) {
  if (bilinear || across != 0) return 0;
  const double rest = (v * kOne - step) * kOne;
  return std::abs(rest) <= kOne / 2 ? static_cast<int32_t>(rest) : 0;
}

bool IsInSampleRange(Point p) {
  return std::abs(p.x) < kFarthestSample && std::abs(p.y) < kFarthestSample;
}

/// Returns a + (b - a) * w / 256 for each channel.
uint32_t Mix(uint32_t a, uint32_t b, uint32_t w) {
  const auto pair = [w](uint32_t p, uint32_t q) {
    return ((p & 0x00FF00FFu) * (256 - w) + (q & 0x00FF00FFu) * w + 0x00800080u) >> 8 & 0x00FF00FFu;
  };
  return pair(a, b) | pair(a >> 8, b >> 8) << 8;
}

/// Returns position `i` of a row, which may wrap around.
uint32_t PositionAt(int32_t first, int32_t step, int32_t rest, int i) {
  return static_cast<uint32_t>(first) + static_cast<uint32_t>(step) * static_cast<uint32_t>(i) +
         static_cast<uint32_t>((rest * i) >> 16);
}

/// Does what the kernels do, for any format.
template <typename Traits>
void SampleAny(const PixelBuffer& pixels, const SampleRow& s, bool bilinear, int count,
               uint32_t* out) {
  const auto pixel = [&](int x, int y) {
    const auto* row =
        reinterpret_cast<const typename Traits::Stored*>(pixels.Row(std::clamp(y, s.minY, s.maxY)));
    return Traits::Unpack(row[std::clamp(x, s.minX, s.maxX)]);
  };
  for (int i = 0; i < count; ++i) {
    const uint32_t fixedX = PositionAt(s.x, s.stepX, s.stepFractionX, i),
                   fixedY = PositionAt(s.y, s.stepY, s.stepFractionY, i);
    const int x = static_cast<int32_t>(fixedX) >> 16, y = static_cast<int32_t>(fixedY) >> 16;
    if (bilinear) {
      const uint32_t weightX = fixedX >> 8 & 255, weightY = fixedY >> 8 & 255;
      out[i] = Mix(Mix(pixel(x, y), pixel(x + 1, y), weightX),
                   Mix(pixel(x, y + 1), pixel(x + 1, y + 1), weightX), weightY);
    } else {
      out[i] = pixel(x, y);
    }
  }
}

/// Returns whether a value equals `whole` within the precision of bilinear weights.
bool AlmostEqual(double v, double whole) {
  return std::abs(v - whole) < 1.0 / 512;
}

}  // namespace

SourceSampler::SourceSampler(const PixelBuffer& pixels, const Box& limits, VuScaleMode mode,
                             const Affine& toTexture, const Box& area)
    : pixels_(pixels),
      limits_(limits),
      bilinear_(mode == VuScaleMode::Bilinear),
      toTexture_(toTexture),
      stepX_(ToFixed(toTexture.dx.x)),
      stepY_(ToFixed(toTexture.dx.y)),
      stepFractionX_(StepFraction(toTexture.dx.x, stepX_, toTexture.dx.y, bilinear_)),
      stepFractionY_(StepFraction(toTexture.dx.y, stepY_, toTexture.dx.x, bilinear_)) {
  // If the offset to the texture is the same at two opposite corners, it is the same everywhere
  // between them.
  const Point first = toTexture(area.x0, area.y0), last = toTexture(area.x1, area.y1);
  const double offsetX = std::floor(first.x - area.x0 + 0.5);
  const double offsetY = std::floor(first.y - area.y0 + 0.5);
  aligned_ = toTexture.dx.x > 0.5 && toTexture.dy.y > 0.5 &&
             AlmostEqual(first.x, area.x0 + offsetX) && AlmostEqual(first.y, area.y0 + offsetY) &&
             AlmostEqual(last.x, area.x1 + offsetX) && AlmostEqual(last.y, area.y1 + offsetY);
  // The offset must also be in the range of the samplers.
  aligned_ = aligned_ && IsInSampleRange({offsetX, offsetY});
  if (!aligned_) return;
  offsetX_ = static_cast<int>(offsetX);
  offsetY_ = static_cast<int>(offsetY);
  aligned_ = limits.Contains(
      Box{AlignedX(area.x0), AlignedY(area.y0), AlignedX(area.x1), AlignedY(area.y1)});
}

SourceSampler::SourceSampler(const PixelBuffer& pixels, int offsetX, int offsetY)
    : pixels_(pixels),
      limits_(pixels.Bounds()),
      bilinear_(false),
      toTexture_{{double(offsetX), double(offsetY)}, {1, 0}, {0, 1}},
      stepX_(65536),
      stepY_(0),
      stepFractionX_(0),
      stepFractionY_(0),
      aligned_(true),
      offsetX_(offsetX),
      offsetY_(offsetY) {}

void SourceSampler::Sample(Point position, int count, uint32_t* out) const {
  const double toCentre = bilinear_ ? 0.5 : 0;
  const int32_t rounding = bilinear_ ? kHalfWeight : 0;
  const SampleRow s = {pixels_.Row32(0),
                       pixels_.Pitch32(),
                       limits_.x0,
                       limits_.y0,
                       limits_.x1 - 1,
                       limits_.y1 - 1,
                       ToFixed(position.x - toCentre) + rounding,
                       ToFixed(position.y - toCentre) + rounding,
                       stepX_,
                       stepY_,
                       stepFractionX_,
                       stepFractionY_};
  if (pixels_.Is32Bit()) {
    const Kernels& kernels = BestKernels();
    (bilinear_ ? kernels.sampleBilinear : kernels.sampleNearest)(s, out, count);
    return;
  }
  WithPixelTraits(pixels_.Format(), [&](auto traits) {
    SampleAny<decltype(traits)>(pixels_, s, bilinear_, count, out);
  });
}

const uint32_t* SourceSampler::Row(int x, int y, int count, uint32_t* scratch) const {
  if (!aligned_) {
    const Point first = toTexture_(x + 0.5, y + 0.5);
    if (IsInSampleRange(first) && IsInSampleRange(first + toTexture_.dx * count)) {
      Sample(first, count, scratch);
    } else {
      // Positions would wrap around within the row, so compute each one separately.
      for (int i = 0; i < count; ++i) scratch[i] = At(toTexture_(x + i + 0.5, y + 0.5));
    }
    return scratch;
  }
  if (pixels_.Is32Bit()) return pixels_.Row32(AlignedY(y)) + AlignedX(x);
  UnpackRow(pixels_.Format(), pixels_.Row(AlignedY(y)), AlignedX(x), count, scratch);
  return scratch;
}

int SourceSampler::SameRows(int x, int y, int end) const {
  if (aligned_ || bilinear_ || toTexture_.dx.y != 0 || toTexture_.dy.x != 0) return 1;
  const auto rowOf = [&](int at) { return ToFixed(toTexture_(x + 0.5, at + 0.5).y) >> 16; };
  int next = y + 1;
  for (const int row = rowOf(y); next < end && rowOf(next) == row;) ++next;
  return next - y;
}

uint32_t SourceSampler::At(Point position) const {
  uint32_t pixel;
  Sample(position, 1, &pixel);
  return pixel;
}

}  // namespace ZIRK::backends
