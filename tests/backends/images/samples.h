#pragma once

#include <string>
#include <vector>

#include "images/image.h"
#include "images/picture.h"

namespace ZIRK::tests {

/// A file of tests/images.
struct Sample {
  const char* file;
  Picture picture;
  int tolerance;  ///< Steps per channel that the format's losses may cost.
};

inline const Sample kSamples[] = {
    {"rgb8.png", Colours, 0},
    {"rgb8key.png", Keyed, 0},
    {"rgba8.png", Translucent, 0},
    {"rgba8interlaced.png", Translucent, 0},
    {"rgba16.png", Translucent, 0},
    {"grey8.png", Grey, 0},
    {"greyalpha16.png", TranslucentGrey, 0},
    {"grey1.png", BlackAndWhite, 0},
    {"palette8.png", Blocks, 0},
    {"rgb.jpg", Colours, 14},
    {"progressive.jpg", Colours, 14},
    {"grey.jpg", Grey, 3},
    {"cmyk.jpg", Printed, 5},
    {"cmykinverted.jpg", Printed, 5},
    {"ycck.jpg", Printed, 10},
#ifdef ZIRK_HAVE_WEBP
    {"lossless.webp", Translucent, 0},
    {"lossy.webp", Translucent, 12},
#endif
};

/// GoogleTest name of a sample's case.
inline std::string NameOf(const std::string& file) {
  std::string name = file;
  for (char& c : name)
    if (c == '.') c = '_';
  return name;
}

/// Tight rows of pixels.
struct Pixels {
  Pixels(int w, int h) : width(w), height(h), data(static_cast<size_t>(w * h), 0xDEADBEEF) {}

  uint32_t At(int x, int y) const { return data[static_cast<size_t>(y * width + x)]; }
  backends::PixelRows Rows() { return {data.data(), width * 4, width, height}; }

  int width;
  int height;
  std::vector<uint32_t> data;
};

inline int Channel(uint32_t pixel, int shift) {
  return static_cast<int>(pixel >> shift & 255);
}

/// A file that exists as long as the object.
class TempFile {
 public:
  explicit TempFile(const std::vector<uint8_t>& content);
  ~TempFile();
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  const char* Path() const { return path_.c_str(); }

 private:
  std::string path_;
};

std::vector<uint8_t> ReadSample(const std::string& file);

/// Writes a big-endian number of `size` bytes.
void Put(std::vector<uint8_t>& bytes, size_t at, int size, uint32_t value);

/// A PNG file with these pixels, which are opaque or not premultiplied.
std::vector<uint8_t> EncodePng(const Pixels& argb);

/// The picture in `source` brought to this size; expects that to work.
Pixels DecodeTo(const backends::ImageSource& source, int width, int height, VuScaleMode mode);

}  // namespace ZIRK::tests
