#pragma once

#include <zirk/vubitmap.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace ZIRK::kit {

/// The bits of each channel of a pixel format, from the highest channel to the lowest.
struct Channels {
  unsigned alpha, red, green, blue;
};

/// Returns nothing for an unknown format.
std::optional<Channels> ChannelsOf(VuPixelFormat format);

/// Reads a part of a bitmap as premultiplied pixels, 0xAARRGGBB each. A8 is read as white with that
/// alpha. Empty if the pixels cannot be read. Throws std::bad_alloc.
std::vector<uint32_t> ReadPixels(VuBitmap& bitmap, VuRect part);

}  // namespace ZIRK::kit
