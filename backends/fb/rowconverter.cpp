#include "fb/rowconverter.h"

#include <cstring>

#include "geometry/surfaceformat.h"
#include "software/pixelbuffer.h"

namespace ZIRK::backends {

namespace {

/// Whether a surface's memory is what the device wants, byte for byte.
bool AreSameBytes(pixman_format_code_t source, const DeviceLayout& device) {
  if (!device.format) return false;
  if (*device.format == source) return true;
  return *device.format == PIXMAN_x8r8g8b8 && source == PIXMAN_a8r8g8b8;
}

}  // namespace

RowConverter::RowConverter(const DeviceLayout& layout, int width)
    : layout_(layout), line_(static_cast<size_t>(width)) {
  // What Pixman cannot write is packed from 32-bit pixels.
  lineImage_.reset(pixman_image_create_bits_no_clear(layout.format.value_or(PIXMAN_a8r8g8b8), width,
                                                     1, line_.data(), width * 4));
  const pixman_color_t white = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};
  white_.reset(pixman_image_create_solid_fill(&white));
}

bool RowConverter::SetSource(const uint8_t* pixels, int pitch, VuPixelFormat format, int width,
                             int height) {
  if (BytesPerPixel(format) == 0) return false;
  const pixman_format_code_t sourceFormat = PixmanFormat(format);
  pixels_ = pixels;
  pitch_ = pitch;
  isCoverage_ = format == VuPixelFormat::A8;
  sameLayout_ = AreSameBytes(sourceFormat, layout_);
  if (sameLayout_) return true;
  // Pixman asks for writable pixels, and only reads a source.
  void* const bits = const_cast<uint8_t*>(pixels);
  source_.reset(pixman_image_create_bits_no_clear(sourceFormat, width, height,
                                                  static_cast<uint32_t*>(bits), pitch));
  return lineImage_ && white_ && source_;
}

const uint8_t* RowConverter::Row(int x, int y, int count) {
  if (sameLayout_) return pixels_ + int64_t{y} * pitch_ + int64_t{x} * layout_.BytesPerPixel();
  pixman_image_t* const color = isCoverage_ ? white_.get() : source_.get();
  pixman_image_t* const mask = isCoverage_ ? source_.get() : nullptr;
  pixman_image_composite32(PIXMAN_OP_SRC, color, mask, lineImage_.get(), x, y, x, y, 0, 0, count,
                           1);
  if (!layout_.format) Pack(count);
  return reinterpret_cast<const uint8_t*>(line_.data());
}

void RowConverter::Pack(int count) {
  // A packed pixel is no longer than the one it is made of: the row is rewritten in place.
  auto* const packed = reinterpret_cast<uint8_t*>(line_.data());
  const size_t bytes = layout_.BytesPerPixel();
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    const uint32_t word = layout_.Pack(line_[i]);
    if (bytes == 4) {
      line_[i] = word;
    } else {
      const auto half = static_cast<uint16_t>(word);
      std::memcpy(packed + 2 * i, &half, sizeof half);
    }
  }
}

}  // namespace ZIRK::backends
