#pragma once

#include <pixman.h>
#include <zirk/vuenums.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>

#include "geometry/box.h"
#include "geometry/pixelformat.h"

namespace ZIRK::backends {

/// The pixels of a surface in memory, owned or borrowed, premultiplied. The X byte of
/// XRGB8888 is always 255, so that its pixels are also opaque ARGB8888 ones.
class PixelBuffer {
 public:
  enum class Contents {
    Clear,      ///< Transparent, or black if there is no alpha.
    Undefined,  ///< For callers that write every pixel before they read it.
  };

  /// Expects a valid size and format. May throw std::bad_alloc.
  PixelBuffer(int width, int height, VuPixelFormat format, Contents contents = Contents::Clear);

  /// Creates a buffer with undefined pixels during drawing. Logs an error and returns nullopt if
  /// memory runs out.
  static std::optional<PixelBuffer> TryCreate(int width, int height, VuPixelFormat format);

  /// Creates a buffer for borrowed pixels. It has no pixels until PlaceAt() is called.
  static PixelBuffer Elsewhere(int width, int height, VuPixelFormat format) {
    return {width, height, format, 0};
  }
  /// Borrows the pixels at this address, whose rows are `pitch` bytes apart and aligned for the
  /// format. Their owner keeps the X bytes of XRGB8888 at 255; see RestoreOpaqueBits(). Releases
  /// pixels that the buffer owns.
  void PlaceAt(void* pixels, int pitch) {
    pixels_ = static_cast<uint8_t*>(pixels);
    pitch_ = pitch;
    own_.reset();
    image_.reset();
  }

  int Width() const { return width_; }
  int Height() const { return height_; }
  int Pitch() const { return pitch_; }  ///< Bytes.
  VuPixelFormat Format() const { return format_; }
  Box Bounds() const { return {0, 0, width_, height_}; }

  uint8_t* Row(int y) { return pixels_ + int64_t{y} * pitch_; }
  const uint8_t* Row(int y) const { return pixels_ + int64_t{y} * pitch_; }

  /// The following are for the 32-bit formats.
  bool Is32Bit() const { return PixelLayoutOf(format_).bytes == 4; }
  uint32_t* Row32(int y) { return reinterpret_cast<uint32_t*>(Row(y)); }
  const uint32_t* Row32(int y) const { return reinterpret_cast<const uint32_t*>(Row(y)); }
  ptrdiff_t Pitch32() const { return pitch_ / 4; }
  /// Returns the bits to set in every stored pixel, to keep the X byte at 255.
  uint32_t OpaqueBits() const { return PixelLayoutOf(format_).unusedBits; }
  /// Sets the X bytes in `box` again after others wrote it.
  void RestoreOpaqueBits(const Box& box);

  /// Returns whether the format makes every pixel opaque.
  bool IsOpaque() const { return !PixelLayoutOf(format_).HasAlpha(); }

  /// Returns a Pixman image of the same memory, which the first call creates, or null if memory
  /// runs out.
  pixman_image_t* Image() const;

 private:
  struct Free {
    void operator()(uint8_t* p) const { std::free(p); }
    void operator()(pixman_image_t* p) const { pixman_image_unref(p); }
  };

  PixelBuffer(int width, int height, VuPixelFormat format, int pitch)
      : width_(width), height_(height), format_(format), pitch_(pitch) {}
  bool Allocate(Contents contents);

  int width_;
  int height_;
  VuPixelFormat format_;
  int pitch_;
  std::unique_ptr<uint8_t, Free> own_;
  uint8_t* pixels_ = nullptr;
  mutable std::unique_ptr<pixman_image_t, Free> image_;
};

pixman_format_code_t PixmanFormat(VuPixelFormat format);

}  // namespace ZIRK::backends
