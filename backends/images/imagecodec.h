#pragma once

#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>

#include "images/imagestream.h"

namespace ZIRK::backends {

/// Reads one picture of one file format. Rows are premultiplied ARGB8888, top row first. After an
/// operation returns false, only Error() may be called.
class ImageCodec {
 public:
  virtual ~ImageCodec() = default;

  /// Reads up to the picture's size. Call it first.
  virtual bool ReadHeader() = 0;
  int Width() const { return width_; }
  int Height() const { return height_; }

  /// Whether ReadRow() works; otherwise only ReadAll() does.
  virtual bool HasRows() const { return true; }
  /// A cheaper way to a smaller picture: a codec may take 2, 4 or 8 original pixels as one in each
  /// direction, while the result is still no smaller than this. Before the first row.
  virtual void ShrinkTowards(int /*width*/, int /*height*/) {}
  int Shrink() const { return shrink_; }
  int RowCount() const { return (height_ + shrink_ - 1) / shrink_; }
  int RowWidth() const { return (width_ + shrink_ - 1) / shrink_; }

  /// The bytes that decoding may take beside the pixels; before the first row.
  void LimitMemory(uint64_t bytes) { memoryLimit_ = bytes; }

  /// Reads the next row. For the last row, also reads what must follow it in the file.
  virtual bool ReadRow(uint32_t* row) = 0;
  /// Reads all rows, `pitch` bytes apart.
  virtual bool ReadAll(uint32_t* pixels, int pitch) = 0;

  /// Why an operation failed.
  const char* Error() const { return error_; }

 protected:
  /// Allocates nothing: it is called from the callbacks of C libraries, which leave by longjmp.
  bool Fail(const char* error) {
    std::snprintf(error_, sizeof error_, "%s", error);
    return false;
  }

  int width_ = 0;
  int height_ = 0;
  int shrink_ = 1;
  uint64_t memoryLimit_ = std::numeric_limits<uint64_t>::max();

 private:
  char error_[200] = "";
};

/// The order of bytes in a pixel that a codec writes: blue first if true, else alpha first.
constexpr bool kLittleEndian = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;

inline uint32_t* RowAt(uint32_t* pixels, int pitch, int y) {
  return reinterpret_cast<uint32_t*>(reinterpret_cast<uint8_t*>(pixels) + int64_t{y} * pitch);
}

/// Premultiplies a row of 0xAARRGGBB words, with exact rounding.
void PremultiplyRow(uint32_t* row, int width);

/// Whether a file that begins like this is of the format.
bool IsPng(ImageStream::Bytes head);
bool IsJpeg(ImageStream::Bytes head);
bool IsWebp(ImageStream::Bytes head);

std::unique_ptr<ImageCodec> NewPngCodec(ImageStream& stream);
std::unique_ptr<ImageCodec> NewJpegCodec(ImageStream& stream);
std::unique_ptr<ImageCodec> NewWebpCodec(ImageStream& stream);

}  // namespace ZIRK::backends
