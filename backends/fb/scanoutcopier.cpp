#include "fb/scanoutcopier.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace ZIRK::backends {

namespace {

/// Side in pixels of the tiles in which a rotated picture is copied. The rows of a tile fit into
/// the first-level cache, and one row of it fills a write-combining buffer.
constexpr int kTile = 32;

int64_t Area(const Box& box) {
  return box.IsEmpty() ? 0 : int64_t{box.Width()} * box.Height();
}

template <typename Pixel>
Pixel PixelAt(const uint8_t* at) {
  Pixel pixel;
  std::memcpy(&pixel, at, sizeof pixel);
  return pixel;
}

}  // namespace

ScanoutCopier::ScanoutCopier(const DeviceLayout& layout, int width, int height, Rotation rotation)
    : bytesPerPixel_(layout.BytesPerPixel()),
      rotation_(rotation),
      width_(IsSideways(rotation) ? height : width),
      height_(IsSideways(rotation) ? width : height),
      converter_(layout, width_, rotation == Rotation::None ? 1 : kTile) {}

bool ScanoutCopier::SetSource(const uint8_t* pixels, int pitch, VuPixelFormat format,
                              const Box& damage) {
  const Box seen = Union(damage, lastDamage_);
  return converter_.SetSource(pixels, pitch, format, seen.x1, seen.y1);
}

Box ScanoutCopier::OnDisplay(const Box& box) const {
  switch (rotation_) {
    case Rotation::None:
      break;
    case Rotation::Quarter:
      return {height_ - box.y1, box.x0, height_ - box.y0, box.x1};
    case Rotation::Half:
      return {width_ - box.x1, height_ - box.y1, width_ - box.x0, height_ - box.y0};
    case Rotation::ThreeQuarters:
      return {box.y0, width_ - box.x1, box.y1, width_ - box.x0};
  }
  return box;
}

void ScanoutCopier::CopyToHidden(const Box& damage, uint8_t* memory, size_t pitch) {
  const Box both = Union(damage, lastDamage_);
  if (Area(both) <= Area(damage) + Area(lastDamage_)) {
    Copy(both, memory, pitch);
  } else {
    Copy(lastDamage_, memory, pitch);
    Copy(damage, memory, pitch);
  }
  lastDamage_ = damage;
}

void ScanoutCopier::Copy(const Box& box, uint8_t* memory, size_t pitch) {
  if (rotation_ == Rotation::None) {
    uint8_t* to =
        memory + static_cast<size_t>(box.y0) * pitch + static_cast<size_t>(box.x0) * bytesPerPixel_;
    const size_t bytes = static_cast<size_t>(box.Width()) * bytesPerPixel_;
    for (int y = box.y0; y < box.y1; ++y, to += pitch)
      std::memcpy(to, converter_.Convert(box.x0, y, box.Width()).pixels, bytes);
  } else if (bytesPerPixel_ == 4) {
    CopyTurned<uint32_t>(box, memory, pitch);
  } else if (bytesPerPixel_ == 3) {
    CopyTurned<std::array<uint8_t, 3>>(box, memory, pitch);
  } else {
    CopyTurned<uint16_t>(box, memory, pitch);
  }
}

template <typename Pixel>
void ScanoutCopier::CopyTurned(const Box& box, uint8_t* memory, size_t pitch) {
  for (int y = box.y0; y < box.y1; y += kTile) {
    const int rows = std::min(kTile, box.y1 - y);
    RowConverter::Block block = converter_.Convert(box.x0, y, box.Width(), rows);
    for (int x = box.x0; x < box.x1; x += kTile) {
      const Box part = {x, y, std::min(x + kTile, box.x1), y + rows};
      if (rotation_ == Rotation::Half)
        CopyReversed<Pixel>(block, part, memory, pitch);
      else
        CopySideways<Pixel>(block, part, memory, pitch);
      block.pixels += kTile * sizeof(Pixel);
    }
  }
}

/// A column of the picture is a row of the display.
template <typename Pixel>
void ScanoutCopier::CopySideways(const RowConverter::Block& block, const Box& part, uint8_t* memory,
                                 size_t pitch) const {
  const bool upwards = rotation_ == Rotation::Quarter;
  const auto rows = static_cast<size_t>(part.Height());
  const uint8_t* const first = block.pixels + (upwards ? (rows - 1) * block.pitch : 0);
  const ptrdiff_t step =
      upwards ? -static_cast<ptrdiff_t>(block.pitch) : static_cast<ptrdiff_t>(block.pitch);
  const int left = OnDisplay(part).x0;
  Pixel line[kTile];
  for (int x = part.x0; x < part.x1; ++x) {
    const uint8_t* from = first + static_cast<size_t>(x - part.x0) * sizeof(Pixel);
    for (size_t i = 0; i < rows; ++i, from += step) line[i] = PixelAt<Pixel>(from);
    const int row = upwards ? x : width_ - 1 - x;
    std::memcpy(
        memory + static_cast<size_t>(row) * pitch + static_cast<size_t>(left) * sizeof(Pixel), line,
        rows * sizeof(Pixel));
  }
}

template <typename Pixel>
void ScanoutCopier::CopyReversed(const RowConverter::Block& block, const Box& part, uint8_t* memory,
                                 size_t pitch) const {
  const auto columns = static_cast<size_t>(part.Width());
  Pixel line[kTile];
  for (int y = part.y0; y < part.y1; ++y) {
    const uint8_t* const from = block.pixels + static_cast<size_t>(y - part.y0) * block.pitch;
    for (size_t i = 0; i < columns; ++i)
      line[columns - 1 - i] = PixelAt<Pixel>(from + i * sizeof(Pixel));
    std::memcpy(memory + static_cast<size_t>(height_ - 1 - y) * pitch +
                    static_cast<size_t>(width_ - part.x1) * sizeof(Pixel),
                line, columns * sizeof(Pixel));
  }
}

}  // namespace ZIRK::backends
