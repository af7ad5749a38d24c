#pragma once

#include <cstdint>
#include <limits>

namespace ZIRK {

/// Truncation toward zero, defined for every float: a value outside the type's range becomes the
/// nearest one inside, and NaN becomes 0.
template <typename Int>
constexpr Int TruncateTo(float v) {
  // Both limits of a 32-bit integer, one past the top included, are exact as double.
  const double wide = v;
  if (!(wide == wide)) return 0;
  if (wide >= static_cast<double>(std::numeric_limits<Int>::max()) + 1.0)
    return std::numeric_limits<Int>::max();
  if (wide <= static_cast<double>(std::numeric_limits<Int>::min()))
    return std::numeric_limits<Int>::min();
  return static_cast<Int>(v);
}

constexpr int32_t TruncateToInt32(float v) {
  return TruncateTo<int32_t>(v);
}
constexpr uint32_t TruncateToUint32(float v) {
  return TruncateTo<uint32_t>(v);
}

/// The product as the machine forms it: wrapped to 32 bits.
constexpr int32_t WrappingProduct(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}

}  // namespace ZIRK
