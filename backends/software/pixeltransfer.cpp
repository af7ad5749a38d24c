#include "software/pixeltransfer.h"

#include <algorithm>
#include <cstring>

#include "geometry/pixelmath.h"
#include "geometry/pixeltraits.h"
#include "geometry/surfaceformat.h"
#include "software/kernelchoice.h"
#include "software/sourcesampler.h"

namespace ZIRK::backends {

namespace {

size_t RowBytes(const PixelBuffer& pixels, int count) {
  return static_cast<size_t>(count) * static_cast<size_t>(BytesPerPixel(pixels.Format()));
}

int64_t ByteOffset(const PixelBuffer& pixels, int x) {
  return int64_t{x} * BytesPerPixel(pixels.Format());
}

void ConvertRow(PixelBuffer& dst, int dstX, int dstY, const PixelBuffer& src, int srcX, int srcY,
                int count) {
  uint32_t wide[kChunk];
  for (int done = 0; done < count; done += kChunk) {
    const int n = std::min(kChunk, count - done);
    UnpackRow(src.Format(), src.Row(srcY), srcX + done, n, wide);
    PackRow(dst.Format(), wide, n, dst.Row(dstY), dstX + done);
  }
}

}  // namespace

void ReadPixels(const PixelBuffer& pixels, const Box& box, void* dst) {
  const size_t bytes = RowBytes(pixels, box.Width());
  auto* out = static_cast<uint8_t*>(dst);
  for (int y = box.y0; y < box.y1; ++y, out += bytes)
    std::memcpy(out, pixels.Row(y) + ByteOffset(pixels, box.x0), bytes);
}

void WritePixels(PixelBuffer& pixels, const Box& box, const void* src, unsigned pitch) {
  const bool isAligned = (reinterpret_cast<uintptr_t>(src) | pitch) % sizeof(uint32_t) == 0;
  if (pixels.Is32Bit() && isAligned) {
    PixelSpan span = {pixels.Row32(box.y0) + box.x0, pixels.Pitch32(), box.Width(), box.Height()};
    span.src = static_cast<const uint32_t*>(src);
    span.srcPitch = static_cast<ptrdiff_t>(pitch / sizeof(uint32_t));
    span.opaque = pixels.OpaqueBits();
    return BestKernels().blit[Kernels::Source][false][false](span);
  }
  const size_t bytes = RowBytes(pixels, box.Width());
  const auto* in = static_cast<const uint8_t*>(src);
  for (int y = box.y0; y < box.y1; ++y, in += pitch)
    std::memcpy(pixels.Row(y) + ByteOffset(pixels, box.x0), in, bytes);
  pixels.RestoreOpaqueBits(box);
}

Box CopyRect(PixelBuffer& dst, VuPoint at, const PixelBuffer& src, const VuRect& srcRect) {
  const auto [box, srcX, srcY] = PlanCopy(at.x, at.y, dst.Bounds(), srcRect, src.Bounds());
  if (box.IsEmpty()) return {};
  const bool sameFormat = dst.Format() == src.Format();
  // Within one surface, start at the side from which no unread row is overwritten.
  const bool upwards = &dst == &src && box.y0 > srcY;
  for (int i = 0; i < box.Height(); ++i) {
    const int row = upwards ? box.Height() - 1 - i : i;
    if (sameFormat)
      std::memmove(dst.Row(box.y0 + row) + ByteOffset(dst, box.x0),
                   src.Row(srcY + row) + ByteOffset(src, srcX), RowBytes(dst, box.Width()));
    else
      ConvertRow(dst, box.x0, box.y0 + row, src, srcX, srcY + row, box.Width());
  }
  return box;
}

void ClearPixels(PixelBuffer& pixels, VuColor color) {
  const uint32_t premultiplied = Premultiply(color);
  if (pixels.Is32Bit()) {
    PixelSpan span = {pixels.Row32(0), pixels.Pitch32(), pixels.Width(), pixels.Height()};
    span.color = premultiplied;
    span.opaque = pixels.OpaqueBits();
    BestKernels().fill[Kernels::Source][false](span);
    return;
  }
  uint32_t wide[kChunk];
  std::fill_n(wide, kChunk, premultiplied);
  for (int x = 0; x < pixels.Width(); x += kChunk)
    PackRow(pixels.Format(), wide, std::min(kChunk, pixels.Width() - x), pixels.Row(0), x);
  for (int y = 1; y < pixels.Height(); ++y)
    std::memcpy(pixels.Row(y), pixels.Row(0), RowBytes(pixels, pixels.Width()));
}

}  // namespace ZIRK::backends
