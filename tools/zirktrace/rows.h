#pragma once

#include <cstdint>
#include <span>

#include "fields.h"

namespace ZIRK::trace {

/// Rows of bytes. `pitch` is the distance from one row to the next.
struct Rows {
  const uint8_t* first = nullptr;
  size_t size = 0;  ///< Of a row.
  size_t pitch = 0;
  size_t count = 0;

  size_t Bytes() const { return size * count; }
};

inline Rows AsRow(std::span<const uint8_t> bytes) {
  return {bytes.data(), bytes.size(), bytes.size(), 1};
}

/// Returns the rows of pixels in memory.
inline Rows RowsOf(const void* pixels, size_t pitch, int width, int height, VuPixelFormat format) {
  return {static_cast<const uint8_t*>(pixels), static_cast<size_t>(width) * BytesPerPixel(format),
          pitch, static_cast<size_t>(height)};
}

/// Returns the rows of a part of a locked surface.
inline Rows RowsOf(const VuBitmapInfo& info, const VuRect& part) {
  const auto pitch = static_cast<size_t>(info.pitch);
  const size_t begin = static_cast<size_t>(part.y) * pitch +
                       static_cast<size_t>(part.x) * BytesPerPixel(info.format);
  return RowsOf(static_cast<const uint8_t*>(info.pixels) + begin, pitch, part.width, part.height,
                info.format);
}

}  // namespace ZIRK::trace
