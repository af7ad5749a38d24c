#pragma once

#include <zirk/vuenums.h>

#include <cstdint>

namespace ZIRK {

/// The parameters of a screen. Plug-ins read the record by offset, so the order and the widths of
/// its fields do not change.
struct VuScreenDescription {
  int32_t width;         ///< Pixels; 0 or less on either side asks for the device's own size.
  int32_t height;        ///< Pixels.
  uint8_t index;         ///< Which display, from 0.
  uint8_t buffers;       ///< 2 for double buffering, otherwise 1.
  VuPixelFormat format;  ///< Layout of the screen's pixels.
  bool option;           ///< Passed to the backend. ZIRK's own ignore it.
};

}  // namespace ZIRK
