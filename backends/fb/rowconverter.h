#pragma once

#include <linux/fb.h>
#include <pixman.h>
#include <zirk/vuenums.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

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

/// Brings the rows of a surface into a device's layout, in cached memory.
///
/// The colours are those of the premultiplied pixels, that is, over black. Where both the surface
/// and the device have alpha it is carried over; the device's alpha is opaque otherwise.
class RowConverter {
 public:
  /// For rows of at most `width` pixels.
  RowConverter(const DeviceLayout& layout, int width);

  /// The pixels to convert, `width` x `height`, rows `pitch` bytes apart (a multiple of four).
  /// They are read by Row(). False if the format does not exist or memory runs out.
  bool SetSource(const uint8_t* pixels, int pitch, VuPixelFormat format, int width, int height);

  /// `count` pixels of row `y` from `x` on, valid until the next call: the source's own memory
  /// where the layouts agree.
  const uint8_t* Row(int x, int y, int count);

 private:
  struct Unref {
    void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
  };
  using Image = std::unique_ptr<pixman_image_t, Unref>;

  void Pack(int count);

  const DeviceLayout layout_;
  std::vector<uint32_t> line_;
  Image lineImage_;
  Image white_;

  const uint8_t* pixels_ = nullptr;
  int pitch_ = 0;
  Image source_;
  bool sameLayout_ = false;
  bool isCoverage_ = false;
};

}  // namespace ZIRK::backends
