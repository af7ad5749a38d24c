#include "software/masksampler.h"

#include <cmath>

namespace ZIRK::backends {

namespace {

// Positions closer than this, in pixels of the mask, count as equal.
constexpr double kTolerance = 1.0 / 1024;

}  // namespace

std::optional<MaskSampler> MaskSampler::Create(const Source<const PixelBuffer>& mask,
                                               const VuTVector2D<float>* coords,
                                               const MappedQuad& quad, const Box& area) {
  const std::optional<MappedMask> place =
      MapMask(mask.pixels->Width(), mask.pixels->Height(), coords, quad, mask.scaleMode);
  return place ? std::optional(MaskSampler(mask, *place, area)) : std::nullopt;
}

MaskSampler::MaskSampler(const Source<const PixelBuffer>& mask, const MappedMask& place,
                         const Box& area)
    : texture_(*mask.pixels, mask.pixels->Bounds(), mask.scaleMode, place.toMask, area),
      place_(place),
      hasCrossTerm_(std::abs(place.crossTerm.x) > kTolerance ||
                    std::abs(place.crossTerm.y) > kTolerance) {}

const uint8_t* MaskSampler::Row(int x, int y, int count, uint8_t* scratch) const {
  if (hasCrossTerm_) {
    for (int i = 0; i < count; ++i) {
      const Point unit = place_.toUnit(x + i + 0.5, y + 0.5);
      const Point position =
          place_.toMask(x + i + 0.5, y + 0.5) + place_.crossTerm * (unit.x * unit.y);
      scratch[i] = static_cast<uint8_t>(texture_.At(position) >> 24);
    }
    return scratch;
  }
  if (IsInPlace()) return texture_.Pixels().Row(texture_.AlignedY(y)) + texture_.AlignedX(x);
  uint32_t pixels[kChunk];
  const uint32_t* row = texture_.Row(x, y, count, pixels);
  for (int i = 0; i < count; ++i) scratch[i] = static_cast<uint8_t>(row[i] >> 24);
  return scratch;
}

MaskPoints::MaskPoints(const Source<const PixelBuffer>& mask)
    : texture_(*mask.pixels, mask.pixels->Bounds(), mask.scaleMode, {{0, 0}, {1, 0}, {0, 1}}, {}) {}

uint32_t MaskPoints::AlphaAt(Point position) const {
  if (!IsFinite(position)) return 0;
  return texture_.At(position) >> 24;
}

}  // namespace ZIRK::backends
