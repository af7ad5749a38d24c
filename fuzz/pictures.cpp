// A picture in memory: its size as a bitmap, and the bitmap at its own size and at others.

#include <zlib.h>

#include <algorithm>
#include <memory>
#include <tuple>
#include <vector>

#include "input.h"

using namespace ZIRK;

namespace {

using Bytes = std::vector<uint8_t>;

/// Larger pictures would only take time, so only their headers are read.
constexpr unsigned kLargest = 4 << 20;

uint32_t WordAt(const Bytes& bytes, size_t at) {
  return uint32_t{bytes[at]} << 24 | uint32_t{bytes[at + 1]} << 16 | uint32_t{bytes[at + 2]} << 8 |
         bytes[at + 3];
}

/// Corrects the checksums of a PNG's chunks, so that changes reach the code behind the check.
void RemakeChecksums(Bytes& picture) {
  constexpr uint8_t kSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  size_t at = std::size(kSignature);
  if (picture.size() < at ||
      !std::equal(std::begin(kSignature), std::end(kSignature), picture.begin()))
    return;
  // Length, type, data, checksum.
  while (picture.size() - at >= 12) {
    const size_t length = WordAt(picture, at);
    if (length > picture.size() - at - 12) return;
    const auto sum =
        static_cast<uint32_t>(crc32(0, picture.data() + at + 4, static_cast<uInt>(length + 4)));
    at += 8 + length;
    for (int shift = 24; shift >= 0; shift -= 8) picture[at++] = static_cast<uint8_t>(sum >> shift);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Bytes picture(data, data + size);
  RemakeChecksums(picture);
  VuGraphics& context = fuzz::Context();
  const void* bytes = picture.data();
  const auto count = static_cast<unsigned>(size);
  const unsigned memory = context.BitmapSize(bytes, count);
  std::ignore = context.BitmapSize(bytes, count, 37, 23);
  if (memory > kLargest) return 0;

  const std::unique_ptr<VuBitmap> whole(context.CreateBitmapFromMemory(bytes, count));
  // A picture that can be decoded must take the size that was returned.
  if (whole && whole->GetSize() != memory) std::abort();
  for (const VuScaleMode mode : {VuScaleMode::Nearest, VuScaleMode::Bilinear})
    std::unique_ptr<VuBitmap>(context.CreateBitmapFromMemory(bytes, count, 37, 23, mode));
  return 0;
}
