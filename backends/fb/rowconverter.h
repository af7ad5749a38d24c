#pragma once

#include <linux/fb.h>
#include <pixman.h>
#include <zirk/vuenums.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace ZIRK::backends {

/// The layout of a pixel in the memory of a device.
struct DeviceLayout {
  /// Position and width of a channel, in bits; the width is zero if the device has no such channel.
  struct Channel {
    unsigned offset, length;
  };

  unsigned bitsPerPixel;
  Channel red, green, blue, alpha;
  /// The same layout in Pixman's terms; nullopt if Pixman does not have it.
  std::optional<pixman_format_code_t> format;

  unsigned BytesPerPixel() const { return bitsPerPixel / 8; }

  /// A premultiplied 0xAARRGGBB pixel in this layout.
  uint32_t Pack(uint32_t argb) const;
};

/// The layout of a mode in true colour; nullopt for any other mode.
std::optional<DeviceLayout> LayoutOf(const fb_var_screeninfo& mode, const fb_fix_screeninfo& fixed);

/// The layout that Pixman calls `format`, one of those that devices have.
DeviceLayout LayoutOf(pixman_format_code_t format);

/// Converts the rows of a surface to a device's layout, in cached memory.
///
/// The colours are those of the premultiplied pixels, that is, over black. Alpha is kept if both
/// the surface and the device have it; otherwise the device's alpha is opaque.
class RowConverter {
 public:
  /// For at most `rows` rows of `width` pixels at once.
  RowConverter(const DeviceLayout& layout, int width, int rows = 1);

  /// Converted pixels, rows `pitch` bytes apart.
  struct Block {
    const uint8_t* pixels;
    size_t pitch;
  };

  /// Sets the pixels that Convert() reads: `width` x `height`, rows `pitch` bytes apart (a multiple
  /// of four). False if the format does not exist or memory runs out.
  bool SetSource(const uint8_t* pixels, int pitch, VuPixelFormat format, int width, int height);

  /// The pixels from (x, y) on, valid until the next call; the source's own if the layouts agree.
  Block Convert(int x, int y, int columns, int rows = 1);

 private:
  struct Unref {
    void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
  };
  using Image = std::unique_ptr<pixman_image_t, Unref>;

  void Pack(uint32_t* row, int count) const;

  const DeviceLayout layout_;
  const int width_;
  std::vector<uint32_t> converted_;
  Image convertedImage_;  ///< `converted_` for Pixman.
  Image white_;           ///< The colour of A8 pixels.

  const uint8_t* pixels_ = nullptr;
  int pitch_ = 0;
  Image source_;
  bool sameLayout_ = false;  ///< The source needs no conversion.
  bool isCoverage_ = false;  ///< The source is A8.
};

}  // namespace ZIRK::backends
