#include <zirk/kit/color.h>

#include <cstdint>

namespace ZIRK::kit {

VuColor Mix(VuColor from, VuColor to, float t) {
  if (!(t > 0)) return from;
  if (t >= 1) return to;
  uint32_t mixed = 0;
  for (unsigned shift = 0; shift < 32; shift += 8) {
    const auto first = static_cast<float>(from.argb >> shift & 255);
    const auto last = static_cast<float>(to.argb >> shift & 255);
    mixed |= static_cast<uint32_t>(first + (last - first) * t + 0.5f) << shift;
  }
  return mixed;
}

}  // namespace ZIRK::kit
