#include "backends/images/samples.h"

#include <gtest/gtest.h>
#include <png.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace ZIRK::tests {

TempFile::TempFile(const std::vector<uint8_t>& content)
    : path_(testing::TempDir() + "zirk-XXXXXX") {
  const int file = mkstemp(path_.data());
  const auto size = static_cast<ssize_t>(content.size());
  EXPECT_EQ(write(file, content.data(), content.size()), size) << path_;
  close(file);
}

TempFile::~TempFile() {
  unlink(path_.c_str());
}

std::vector<uint8_t> ReadSample(const std::string& file) {
  std::ifstream in(ZIRK_TEST_IMAGES + file, std::ios::binary);
  EXPECT_TRUE(in) << file;
  return {std::istreambuf_iterator<char>(in), {}};
}

void Put(std::vector<uint8_t>& bytes, size_t at, int size, uint32_t value) {
  for (int i = size - 1; i >= 0; --i, value >>= 8)
    bytes[at + static_cast<size_t>(i)] = static_cast<uint8_t>(value);
}

std::vector<uint8_t> EncodePng(const Pixels& argb) {
  std::vector<uint8_t> bytes;
  for (const uint32_t p : argb.data)
    for (const int shift : {16, 8, 0, 24}) bytes.push_back(static_cast<uint8_t>(p >> shift));
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(argb.width);
  image.height = static_cast<png_uint_32>(argb.height);
  image.format = PNG_FORMAT_RGBA;
  png_alloc_size_t size = 0;
  EXPECT_TRUE(png_image_write_get_memory_size(image, size, 0, bytes.data(), 0, nullptr));
  std::vector<uint8_t> file(size);
  EXPECT_TRUE(png_image_write_to_memory(&image, file.data(), &size, 0, bytes.data(), 0, nullptr));
  return file;
}

Pixels DecodeTo(const backends::ImageSource& source, int width, int height, VuScaleMode mode) {
  Pixels pixels(width, height);
  const auto image = backends::Image::Open(source);
  EXPECT_TRUE(image && image->Decode(pixels.Rows(), mode)) << source.Name();
  return pixels;
}

}  // namespace ZIRK::tests
