#pragma once

#include <zirk/vuenums.h>

#include <cstddef>
#include <iterator>

namespace ZIRK::support {

/// Returns the name of a pixel format, as tools print it.
inline const char* NameOf(VuPixelFormat format) {
  constexpr const char* kNames[] = {"ARGB8888", "XRGB8888", "RGB565", "ARGB4444", "ARGB1555", "A8"};
  const auto index = static_cast<size_t>(format);
  return index < std::size(kNames) ? kNames[index] : "unknown format";
}

}  // namespace ZIRK::support
