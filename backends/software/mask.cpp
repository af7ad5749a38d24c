#include "software/mask.h"

#include <algorithm>
#include <cmath>

namespace ZIRK::backends {

namespace {

// Positions closer than this, in pixels of the mask, are the same.
constexpr double kTolerance = 1.0 / 1024;

}  // namespace

std::optional<Mask> Mask::Create(const Operand& mask, const VuTVector2D<float>* coords,
                                 const Placement& placement, const Box& area) {
  const double width = mask.pixels->Width(), height = mask.pixels->Height();
  Point c[4] = {{0, 0}, {width, 0}, {width, height}, {0, height}};
  for (int i = 0; coords && i < 4; ++i) {
    c[i] = {static_cast<double>(coords[i].x()), static_cast<double>(coords[i].y())};
    if (!std::isfinite(c[i].x) || !std::isfinite(c[i].y)) return std::nullopt;
  }
  const Affine unitToMask = {c[0], c[1] - c[0], c[3] - c[0]};
  const Point twist = c[0] - c[1] + c[2] - c[3];
  const bool twisted = std::abs(twist.x) > kTolerance || std::abs(twist.y) > kTolerance;
  return Mask(mask, Biased(Compose(unitToMask, placement.toUnit), mask.scaleMode), area,
              twisted ? std::optional<Twist>(Twist{placement.toUnit, twist}) : std::nullopt);
}

const uint8_t* Mask::Row(int x, int y, int count, uint8_t* scratch) const {
  if (twist_) {
    for (int i = 0; i < count; ++i) {
      const Point unit = twist_->toUnit(x + i + 0.5, y + 0.5);
      const Point position = toMask_(x + i + 0.5, y + 0.5) + twist_->amount * (unit.x * unit.y);
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

MaskPoints::MaskPoints(const Operand& mask)
    : texture_(*mask.pixels, mask.pixels->Bounds(), mask.scaleMode, {{0, 0}, {1, 0}, {0, 1}}, {}) {}

uint32_t MaskPoints::AlphaAt(Point position) const {
  if (!std::isfinite(position.x) || !std::isfinite(position.y)) return 0;
  return texture_.At(position) >> 24;
}

}  // namespace ZIRK::backends
