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
    Clear,      ///< Transparent, or black where there is no alpha.
    Undefined,  ///< For callers that write every pixel before they read it.
  };

  /// Expects a size and format that a surface can have; throws std::bad_alloc.
  PixelBuffer(int width, int height, VuPixelFormat format, Contents contents = Contents::Clear);

  /// The same with undefined pixels, during drawing: nothing after the error line if memory runs
  /// out.
  static std::optional<PixelBuffer> TryCreate(int width, int height, VuPixelFormat format);

  /// A buffer for borrowed pixels. It has none until PlaceAt() is called.
  static PixelBuffer Elsewhere(int width, int height, VuPixelFormat format) {
    return {width, height, format, 0};
  }
  /// Borrows the pixels at this address: rows `pitch` bytes apart, aligned as the format's pixels
  /// are. Their owner keeps the X bytes of XRGB8888 at 255; see RestoreOpaqueBits(). The buffer
  /// releases pixels that it owns.
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

  /// For the 32-bit formats.
  bool Is32Bit() const { return PixelLayoutOf(format_).bytes == 4; }
  uint32_t* Row32(int y) { return reinterpret_cast<uint32_t*>(Row(y)); }
  const uint32_t* Row32(int y) const { return reinterpret_cast<const uint32_t*>(Row(y)); }
  ptrdiff_t Pitch32() const { return pitch_ / 4; }
  /// What to set in every pixel stored, to keep the X byte.
  uint32_t OpaqueBits() const { return PixelLayoutOf(format_).unusedBits; }
  /// Sets the X bytes again after `box` was written from outside.
  void RestoreOpaqueBits(const Box& box);

  /// Whether every pixel is opaque by its format.
  bool IsOpaque() const { return !PixelLayoutOf(format_).HasAlpha(); }

  /// The same memory as an image of Pixman, created by the first call; null if memory runs out.
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
