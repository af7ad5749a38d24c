#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "pixels.h"

namespace ZIRK::kit {

/// Writes premultiplied pixels, in rows of `width`, to a PNG file. Returns an empty string, or the
/// reason of a failure. Throws std::bad_alloc.
std::string WritePngFile(const char* path, const std::vector<uint32_t>& pixels, int width,
                         const Channels& channels);

}  // namespace ZIRK::kit
