#pragma once

#include <linux/fb.h>
#include <pixman.h>

#include <cstdint>
#include <optional>

namespace ZIRK::backends {

/// How a device lays a pixel out in its memory.
struct DeviceLayout {
  /// Position and width of a channel, in bits; no width where the device has no such channel.
  struct Channel {
    unsigned offset, length;
  };

  unsigned bitsPerPixel;
  Channel red, green, blue, alpha;
  /// The same as Pixman's format; none where Pixman has no such.
  std::optional<pixman_format_code_t> format;

  unsigned BytesPerPixel() const { return bitsPerPixel / 8; }

  /// A premultiplied 0xAARRGGBB pixel in this layout.
  uint32_t Pack(uint32_t argb) const;
};

/// The layout of a mode in true colour; none for any other mode.
std::optional<DeviceLayout> LayoutOf(const fb_var_screeninfo& mode, const fb_fix_screeninfo& fixed);

}  // namespace ZIRK::backends
