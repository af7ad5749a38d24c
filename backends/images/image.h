#pragma once

#include <zirk/vuenums.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "images/imagestream.h"

namespace ZIRK::backends {

class ImageCodec;

/// Pixels.
struct ImageSize {
  int width;
  int height;
};

/// Memory for ARGB8888 pixels, rows `pitch` bytes apart.
struct PixelRows {
  uint32_t* pixels;
  int pitch;
  int width;
  int height;
};

/// A PNG, JPEG or WebP picture, recognised by its content. Open() reads its size. Decode(), which
/// is called at most once, writes its pixels to the caller's memory.
///
/// An operation that fails returns null or false, after one error line with the picture's name and
/// the reason. That includes running out of memory; nothing is thrown.
class Image {
 public:
  /// Opens a file and reads the picture's size, but no pixels. Null for a file that is no picture,
  /// and for a picture with a side of more than kMaxSide pixels.
  static std::unique_ptr<Image> Open(const char* path);
  /// The same for a file in memory, which must outlive the image.
  static std::unique_ptr<Image> Open(const void* data, size_t size);
  ~Image();

  /// The picture's own size.
  ImageSize Size() const;
  /// The picture's name in log lines: the path, or "image in memory (N bytes)".
  const std::string& Name() const { return name_; }

  /// The picture's size in a box of `width` x `height`, as VuGraphics::GetScaledDimensions() gives
  /// it, but at least one pixel in each direction. No value, as a failure, if no surface can be
  /// that large.
  std::optional<ImageSize> FittedSize(int width, int height, VuDisplayMode mode) const;

  /// The bytes that decoding may take beside the pixels; before Decode(). No limit without it.
  void LimitMemory(uint64_t bytes);

  /// Fills `target` with the whole picture, premultiplied, and resampled if the sizes differ:
  /// Nearest takes the nearest pixel; Bilinear interpolates, and averages where it shrinks. False
  /// for a broken or incomplete picture; the content of `target` is then unspecified.
  bool Decode(const PixelRows& target, VuScaleMode mode);

 private:
  explicit Image(const char* path);
  Image(const void* data, size_t size);

  template <typename... Source>
  static std::unique_ptr<Image> OpenSource(const char* name, Source... source);
  bool ReadHeader();
  bool DecodeResampled(const PixelRows& target, VuScaleMode mode);
  bool Fail(const char* reason) const;

  std::string name_;
  ImageStream stream_;
  std::unique_ptr<ImageCodec> codec_;
};

}  // namespace ZIRK::backends
