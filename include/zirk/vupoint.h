#pragma once

#include <cstdint>

namespace ZIRK {

/// A position on a surface, in pixels from its top-left corner; y grows downwards.
struct VuPoint {
  int32_t x;
  int32_t y;
};

}  // namespace ZIRK
