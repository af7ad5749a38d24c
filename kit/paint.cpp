#include <zirk/kit/paint.h>

#include <cmath>

namespace ZIRK::kit {

Paint Paint::Linear(VuColor from, VuColor to, float degrees) {
  if (!std::isfinite(degrees)) degrees = -90;
  const float turn = std::remainder(degrees, 360.0f);
  const auto direction = static_cast<int32_t>(std::lround(turn * 16));
  return {Kind::Linear, from, to, (direction + 360 * 16) % (360 * 16)};
}

Paint Paint::Radial(VuColor from, VuColor to) {
  return {Kind::Radial, from, to, 0};
}

}  // namespace ZIRK::kit
