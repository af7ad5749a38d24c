#pragma once

#include <zirk/vuenums.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "images/imagesource.h"

namespace ZIRK::backends {

class ImageCodec;
class ImageStream;

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

/// A PNG, JPEG or WebP picture, told apart by content. Opened first, which reads its size, then
/// decoded into memory of the caller's, at most once.
///
/// What fails gives null or false, after one error line with the picture's name and the reason.
/// That includes memory running out; nothing is thrown.
class Image {
 public:
  /// Decodes no pixels. Null for what is no picture, and for one over kMaxSide pixels a side.
  static std::unique_ptr<Image> Open(const ImageSource& source);
  ~Image();

  ImageSize Size() const;
  const std::string& Name() const { return name_; }

  /// The size at which it is shown in the box `width` x `height`, as by
  /// VuGraphics::GetScaledDimensions, but at least one pixel each way. None, as a failure, if no
  /// surface can be that large.
  std::optional<ImageSize> FittedSize(int width, int height, VuDisplayMode mode) const;

  /// Fills `target` with the whole picture, premultiplied, resampled if the size is not its own:
  /// Nearest takes the nearest pixel; Bilinear interpolates, and averages where it shrinks. False
  /// for a picture that turns out broken or incomplete; what `target` then holds is unspecified.
  bool Decode(const PixelRows& target, VuScaleMode mode);

 private:
  Image(const ImageSource& source);

  bool ReadHeader();
  bool DecodePixels(const PixelRows& target, VuScaleMode mode);
  bool Fail(const char* reason) const;

  std::string name_;
  std::unique_ptr<ImageStream> stream_;
  std::unique_ptr<ImageCodec> codec_;
};

}  // namespace ZIRK::backends
