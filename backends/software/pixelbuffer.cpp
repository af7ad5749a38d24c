#include "software/pixelbuffer.h"

#include <new>

#include "geometry/surfaceformat.h"

namespace ZIRK::backends {

namespace {

void* Allocate(size_t rows, size_t pitch, PixelBuffer::Contents contents) {
  if (contents == PixelBuffer::Contents::Clear) return std::calloc(rows, pitch);
  // Less than 4 GiB, as every surface.
  return std::malloc(rows * pitch);
}

}  // namespace

PixelBuffer::PixelBuffer(int width, int height, VuPixelFormat format, Contents contents)
    : PixelBuffer(width, height, format, RowPitch(width, format)) {
  own_.reset(static_cast<uint8_t*>(
      Allocate(static_cast<size_t>(height), static_cast<size_t>(pitch_), contents)));
  if (!own_) throw std::bad_alloc();
  pixels_ = own_.get();
  RestoreOpaqueBits(Bounds());
}

void PixelBuffer::RestoreOpaqueBits(const Box& box) {
  const uint32_t opaque = OpaqueBits();
  if (opaque == 0) return;
  for (int y = box.y0; y < box.y1; ++y) {
    uint32_t* row = Row32(y);
    for (int x = box.x0; x < box.x1; ++x) row[x] |= opaque;
  }
}

pixman_image_t* PixelBuffer::Image() const {
  if (!image_)
    image_.reset(pixman_image_create_bits_no_clear(
        PixmanFormat(format_), width_, height_,
        reinterpret_cast<uint32_t*>(const_cast<uint8_t*>(Row(0))), pitch_));
  return image_.get();
}

pixman_format_code_t PixmanFormat(VuPixelFormat format) {
  switch (format) {
    case VuPixelFormat::ARGB8888:
      return PIXMAN_a8r8g8b8;
    case VuPixelFormat::XRGB8888:
      return PIXMAN_x8r8g8b8;
    case VuPixelFormat::RGB565:
      return PIXMAN_r5g6b5;
    case VuPixelFormat::ARGB4444:
      return PIXMAN_a4r4g4b4;
    case VuPixelFormat::ARGB1555:
      return PIXMAN_a1r5g5b5;
    case VuPixelFormat::A8:
      break;
  }
  return PIXMAN_a8;
}

}  // namespace ZIRK::backends
