#pragma once

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "images/image.h"

// Samples, and pictures to compare what was decoded with.
namespace ZIRK::tests {

using backends::Image;
using Bytes = std::vector<uint8_t>;

/// Channels of 0 to 255, not premultiplied.
struct Rgba {
  int r, g, b, a;
};

/// The bytes of a file in tests/images.
inline Bytes ReadSample(const std::string& file) {
  std::ifstream in(ZIRK_TEST_IMAGES + file, std::ios::binary);
  Bytes bytes{std::istreambuf_iterator<char>(in), {}};
  if (bytes.empty()) throw std::runtime_error("cannot read the sample " + file);
  return bytes;
}

/// The colour as 0xAARRGGBB.
inline uint32_t Argb(const Rgba& c) {
  return static_cast<uint32_t>(c.a) << 24 | static_cast<uint32_t>(c.r << 16 | c.g << 8 | c.b);
}

/// Every colour channel times alpha, rounded to nearest.
inline uint32_t Premultiplied(const Rgba& c) {
  const auto times = [&](int channel) { return (channel * c.a + 127) / 255; };
  return Argb({times(c.r), times(c.g), times(c.b), c.a});
}

/// 0xAARRGGBB words, with a gap behind every row that nothing should write to.
struct Pixels {
  Pixels(int w, int h, const std::function<uint32_t(int x, int y)>& colour = nullptr)
      : width(w), height(h), pitch(w + 3), data(static_cast<size_t>(pitch * h), 0xDEADBEEF) {
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) At(x, y) = colour ? colour(x, y) : 0;
  }
  uint32_t& At(int x, int y) { return data[static_cast<size_t>(y * pitch + x)]; }

  int width, height, pitch;
  std::vector<uint32_t> data;
};

/// The largest difference of a channel, in the gaps too.
inline int Difference(const Pixels& a, const Pixels& b) {
  const auto* p = reinterpret_cast<const uint8_t*>(a.data.data());
  const auto* q = reinterpret_cast<const uint8_t*>(b.data.data());
  int worst = 0;
  for (size_t i = 0; i < a.data.size() * 4; ++i) worst = std::max(worst, std::abs(p[i] - q[i]));
  return worst;
}

/// The picture in the bytes of a file.
inline std::unique_ptr<Image> Open(const Bytes& file) {
  return Image::Open(file.data(), file.size());
}

/// The picture brought to a size; no value if it cannot be decoded or is null.
inline std::optional<Pixels> Decode(std::unique_ptr<Image> image, int width, int height,
                                    VuScaleMode mode) {
  Pixels pixels(width, height);
  if (!image || !image->Decode({pixels.data.data(), pixels.pitch * 4, width, height}, mode))
    return std::nullopt;
  return pixels;
}

/// The same, where a failure fails the test.
inline Pixels Shown(std::unique_ptr<Image> image, int width, int height, VuScaleMode mode) {
  const auto pixels = Decode(std::move(image), width, height, mode);
  EXPECT_TRUE(pixels);
  return pixels.value_or(Pixels(width, height));
}

/// Pixels brought to a size, by way of a PNG file. They are not premultiplied.
inline Pixels Scaled(const Pixels& original, int width, int height, VuScaleMode mode) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(original.width);
  image.height = static_cast<png_uint_32>(original.height);
  image.format = PNG_FORMAT_BGRA;
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  Bytes file(size);
  EXPECT_TRUE(png_image_write_to_memory(&image, file.data(), &size, 0, original.data.data(),
                                        original.pitch * 4, nullptr));
  return Shown(Image::Open(file.data(), size), width, height, mode);
}

}  // namespace ZIRK::tests
