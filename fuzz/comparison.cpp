#include "comparison.h"

#include <zirk/zirk.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace ZIRK::fuzz {
namespace {

constexpr int kSteps = 2;

/// The bits of each channel, format by format; 0 for channels that a format lacks.
constexpr uint32_t kChannels[][4] = {
    {0xFF000000, 0xFF0000, 0xFF00, 0xFF}, {0, 0xFF0000, 0xFF00, 0xFF},   {0, 0xF800, 0x7E0, 0x1F},
    {0xF000, 0xF00, 0xF0, 0xF},           {0x8000, 0x7C00, 0x3E0, 0x1F}, {0xFF, 0, 0, 0},
};

unsigned BytesPerPixel(VuPixelFormat format) {
  switch (format) {
    case VuPixelFormat::ARGB8888:
    case VuPixelFormat::XRGB8888:
      return 4;
    case VuPixelFormat::A8:
      return 1;
    default:
      return 2;
  }
}

struct Pixels {
  explicit Pixels(VuBitmap& bitmap) : info(bitmap.GetInfo()), size(BytesPerPixel(info.format)) {
    bytes.resize(size_t(info.width) * size_t(info.height) * size);
    if (!bitmap.GetPixels({0, 0, info.width, info.height}, bytes.data())) std::abort();
  }
  uint32_t At(int x, int y) const {
    uint32_t pixel = 0;
    std::memcpy(&pixel, &bytes[(size_t(y) * size_t(info.width) + size_t(x)) * size], size);
    return pixel;
  }
  bool Alike(uint32_t a, uint32_t b) const {
    return std::ranges::all_of(kChannels[static_cast<int>(info.format)], [&](uint32_t channel) {
      const int64_t step = channel & ~(channel - 1);
      return std::abs(int64_t{a & channel} - int64_t{b & channel}) <= kSteps * step;
    });
  }
  bool IsEven(int x, int y) const {
    for (int row = std::max(y - 1, 0); row <= std::min(y + 1, info.height - 1); ++row)
      for (int column = std::max(x - 1, 0); column <= std::min(x + 1, info.width - 1); ++column)
        if (!Alike(At(column, row), At(x, y))) return false;
    return true;
  }

  VuBitmapInfo info;
  unsigned size;
  std::vector<uint8_t> bytes;
};

}  // namespace

bool LookTheSame(VuBitmap& a, VuBitmap& b) {
  const Pixels one(a), other(b);
  for (int y = 0; y < one.info.height; ++y)
    for (int x = 0; x < one.info.width; ++x)
      if (!one.Alike(one.At(x, y), other.At(x, y)) && one.IsEven(x, y) && other.IsEven(x, y))
        return false;
  return true;
}

void Replace(VuBitmap& to, VuBitmap& from) {
  const Pixels pixels(from);
  const VuRect all{0, 0, pixels.info.width, pixels.info.height};
  if (!to.SetPixels(all, pixels.bytes.data(), pixels.size * static_cast<unsigned>(all.width)))
    std::abort();
}

}  // namespace ZIRK::fuzz
