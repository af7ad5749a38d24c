#pragma once

#include <zirk/vuenums.h>

#include <cstdint>

namespace ZIRK {

/// The parameters of a screen. Backends read the record as it lies in memory: the order and the
/// widths of its fields do not change.
struct VuScreenDescription {
  int32_t width;         ///< Pixels; with zero or less in either side, the device's own size.
  int32_t height;        ///< Pixels.
  uint8_t index;         ///< Which display, from 0.
  uint8_t buffers;       ///< 2 for double buffering, else 1.
  VuPixelFormat format;  ///< Layout of the pixels drawn to.
  bool option;           ///< Passed through to the backend.
};

}  // namespace ZIRK
