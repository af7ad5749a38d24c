#include "pixels.h"

#include <cstddef>
#include <cstring>

namespace ZIRK::kit {

namespace {

/// Removes the lowest `bits` from `word` and returns them scaled to eight bits; `absent` if `bits`
/// is 0.
uint32_t TakeChannel(uint32_t& word, unsigned bits, uint32_t absent) {
  if (bits == 0) return absent;
  const uint32_t most = (1u << bits) - 1;
  const uint32_t value = word & most;
  word >>= bits;
  return (value * 255 + most / 2) / most;
}

uint32_t ToArgb(uint32_t word, const Channels& channels) {
  const uint32_t blue = TakeChannel(word, channels.blue, 0);
  const uint32_t green = TakeChannel(word, channels.green, 0);
  const uint32_t red = TakeChannel(word, channels.red, 0);
  const uint32_t alpha = TakeChannel(word, channels.alpha, 255);
  if (channels.blue == 0) return alpha * 0x01010101;
  return alpha << 24 | red << 16 | green << 8 | blue;
}

template <class Word>
void Convert(const uint8_t* packed, const Channels& channels, std::vector<uint32_t>& pixels) {
  for (uint32_t& pixel : pixels) {
    Word word;
    std::memcpy(&word, packed, sizeof word);
    packed += sizeof word;
    pixel = ToArgb(word, channels);
  }
}

}  // namespace

std::optional<Channels> ChannelsOf(VuPixelFormat format) {
  switch (format) {
    case VuPixelFormat::ARGB8888:
      return Channels{8, 8, 8, 8};
    case VuPixelFormat::XRGB8888:
      return Channels{0, 8, 8, 8};
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

std::vector<uint32_t> ReadPixels(VuBitmap& bitmap, VuRect part) {
  const VuPixelFormat format = bitmap.GetInfo().format;
  const std::optional<Channels> channels = ChannelsOf(format);
  if (!channels || part.width <= 0 || part.height <= 0) return {};
  const size_t count = static_cast<size_t>(part.width) * static_cast<size_t>(part.height);
  std::vector<uint32_t> pixels(count);
  if (format == VuPixelFormat::ARGB8888) {
    if (!bitmap.GetPixels(part, pixels.data())) return {};
    return pixels;
  }
  const size_t size = format == VuPixelFormat::XRGB8888 ? 4 : format == VuPixelFormat::A8 ? 1 : 2;
  std::vector<uint8_t> packed(count * size);
  if (!bitmap.GetPixels(part, packed.data())) return {};
  if (size == 1) Convert<uint8_t>(packed.data(), *channels, pixels);
  if (size == 2) Convert<uint16_t>(packed.data(), *channels, pixels);
  if (size == 4) Convert<uint32_t>(packed.data(), *channels, pixels);
  return pixels;
}

}  // namespace ZIRK::kit
