#include "software/pixelbuffer.h"

#include <new>

#include "geometry/surfaceformat.h"
#include "software/kernelchoice.h"
#include "surface/drawmemory.h"

namespace ZIRK::backends {

PixelBuffer::PixelBuffer(int width, int height, VuPixelFormat format, Contents contents)
    : PixelBuffer(width, height, format, RowPitch(width, format)) {
  if (!Allocate(contents)) throw std::bad_alloc();
}

std::optional<PixelBuffer> PixelBuffer::TryCreate(int width, int height, VuPixelFormat format) {
  std::optional<PixelBuffer> made(PixelBuffer(width, height, format, RowPitch(width, format)));
  if (made->Allocate(Contents::Undefined)) return made;
  ReportNoMemory();
  return std::nullopt;
}

/// Allocates memory that the buffer owns. Returns false if memory runs out.
bool PixelBuffer::Allocate(Contents contents) {
  const auto rows = static_cast<size_t>(height_), pitch = static_cast<size_t>(pitch_);
  // Less than 4 GiB, like every surface.
  void* const memory =
      contents == Contents::Clear ? std::calloc(rows, pitch) : std::malloc(rows * pitch);
  own_.reset(static_cast<uint8_t*>(memory));
  pixels_ = own_.get();
  if (!own_) return false;
  if (contents == Contents::Clear) RestoreOpaqueBits(Bounds());
  return true;
}

void PixelBuffer::RestoreOpaqueBits(const Box& box) {
  const uint32_t opaque = OpaqueBits();
  if (opaque == 0 || box.IsEmpty()) return;
  PixelSpan span = {Row32(box.y0) + box.x0, Pitch32(), box.Width(), box.Height()};
  span.src = span.dst;
  span.srcPitch = span.dstPitch;
  span.opaque = opaque;
  BestKernels().blit[Kernels::Source][false][false](span);
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
