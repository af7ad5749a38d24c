#pragma once

#include <zirk/vubitmap.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace ZIRK::kit {

/// Bits of a pixel format's channels, from the top down.
struct Channels {
  unsigned alpha, red, green, blue;
};

/// Nothing for a format that does not exist.
std::optional<Channels> ChannelsOf(VuPixelFormat format);

/// What a part of a bitmap holds, each pixel as 0xAARRGGBB, premultiplied; white of that alpha
/// where there is alpha alone. Empty where that cannot be read. Throws std::bad_alloc.
std::vector<uint32_t> ReadPixels(VuBitmap& bitmap, VuRect part);

}  // namespace ZIRK::kit
