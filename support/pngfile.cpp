#include "support/pngfile.h"

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace ZIRK::support {

namespace {

/// A 0xAARRGGBB word as it lies in memory.
constexpr png_uint_32 kPngFormat =
    __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? PNG_FORMAT_BGRA : PNG_FORMAT_ARGB;

/// What a damaged file claims to hold is not believed.
constexpr size_t kMostPixels = size_t{1} << 26;

/// Where a pixel format has its channels: bits of each, from the top down.
struct Channels {
  unsigned alpha, red, green, blue;
  unsigned Bytes() const { return (alpha + red + green + blue + 7) / 8; }
};

std::optional<Channels> ChannelsOf(VuPixelFormat format) {
  switch (format) {
    case VuPixelFormat::ARGB8888:
    case VuPixelFormat::XRGB8888:
      return Channels{8, 8, 8, 8};
    case VuPixelFormat::RGB565:
      return Channels{0, 5, 6, 5};
    case VuPixelFormat::ARGB4444:
      return Channels{4, 4, 4, 4};
    case VuPixelFormat::ARGB1555:
      return Channels{1, 5, 5, 5};
    case VuPixelFormat::A8:
      return Channels{8, 0, 0, 0};
  }
  return std::nullopt;
}

/// Takes the lowest `bits` off `word`, spread to eight bits; `absent` where there are none.
uint32_t TakeChannel(uint32_t& word, unsigned bits, uint32_t absent) {
  if (bits == 0) return absent;
  const uint32_t most = (1u << bits) - 1;
  const uint32_t value = word & most;
  word = bits < 32 ? word >> bits : 0;
  return (value * 255 + most / 2) / most;
}

uint32_t Unpremultiplied(uint32_t value, uint32_t alpha) {
  return alpha == 0 ? 0 : std::min(255u, (value * 255 + alpha / 2) / alpha);
}

uint32_t StraightPixel(uint32_t word, const Channels& channels, bool isOpaque) {
  // A format with alpha alone stands for white of that alpha.
  const bool hasColor = channels.blue != 0;
  const uint32_t blue = TakeChannel(word, channels.blue, 0);
  const uint32_t green = TakeChannel(word, channels.green, 0);
  const uint32_t red = TakeChannel(word, channels.red, 0);
  const uint32_t stored = TakeChannel(word, channels.alpha, 255);
  const uint32_t alpha = isOpaque ? 255 : stored;
  if (!hasColor) return alpha << 24 | 0xFFFFFF;
  return alpha << 24 | Unpremultiplied(red, alpha) << 16 | Unpremultiplied(green, alpha) << 8 |
         Unpremultiplied(blue, alpha);
}

/// A pixel of `size` bytes as a number.
uint32_t WordAt(const uint8_t* bytes, unsigned size) {
  if (size == 1) return *bytes;
  uint16_t half = 0;
  uint32_t word = 0;
  if (size == 2) std::memcpy(&half, bytes, sizeof half);
  if (size == 4) std::memcpy(&word, bytes, sizeof word);
  return word | half;
}

png_image NewImage() {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  return image;
}

}  // namespace

Picture PictureOf(VuBitmap& bitmap) {
  const VuBitmapInfo info = bitmap.GetInfo();
  const std::optional<Channels> channels = ChannelsOf(info.format);
  if (!channels || info.width <= 0 || info.height <= 0) return {};

  const size_t count = static_cast<size_t>(info.width) * static_cast<size_t>(info.height);
  const unsigned size = channels->Bytes();
  std::vector<uint8_t> packed(count * size);
  if (!bitmap.GetPixels(bitmap.GetBounds(), packed.data())) return {};

  Picture picture{info.width, info.height, std::vector<uint32_t>(count)};
  const bool isOpaque = info.format == VuPixelFormat::XRGB8888;
  for (size_t i = 0; i < count; ++i)
    picture.pixels[i] = StraightPixel(WordAt(packed.data() + i * size, size), *channels, isOpaque);
  return picture;
}

bool WritePng(const char* path, const Picture& picture) {
  png_image image = NewImage();
  image.width = static_cast<png_uint_32>(picture.width);
  image.height = static_cast<png_uint_32>(picture.height);
  image.format = kPngFormat;
  if (png_image_write_to_file(&image, path, 0, picture.pixels.data(), 0, nullptr) != 0) return true;
  std::fprintf(stderr, "%s: %s\n", path, image.message);
  return false;
}

bool WritePng(const char* path, VuBitmap& bitmap) {
  return WritePng(path, PictureOf(bitmap));
}

std::optional<Picture> ReadPng(const char* path) {
  png_image image = NewImage();
  Picture picture;
  if (png_image_begin_read_from_file(&image, path) != 0) {
    image.format = kPngFormat;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    const size_t count = size_t{image.width} * image.height;
    if (count > kMostPixels) {
      png_image_free(&image);
      std::fprintf(stderr, "%s: larger than any surface\n", path);
      return std::nullopt;
    }
    picture.pixels.resize(count);
    if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) != 0)
      return picture;
  }
  std::fprintf(stderr, "%s: %s\n", path, image.message);
  return std::nullopt;
}

}  // namespace ZIRK::support
