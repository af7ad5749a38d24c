#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "images/imagesource.h"

namespace ZIRK::backends {

/// The bytes of an image source, front to back. A file is read in small pieces, so that knowing
/// the size of a large picture costs one of them.
class ImageStream {
 public:
  struct Bytes {
    const uint8_t* data;
    size_t size;
  };

  /// Opens a file; whether that succeeded shows in what can be read.
  explicit ImageStream(const ImageSource& source);
  ~ImageStream();
  ImageStream(const ImageStream&) = delete;
  ImageStream& operator=(const ImageStream&) = delete;

  /// The bytes that come next, of a file at least the first few, of memory all. None at the end
  /// and after an error. Valid until the stream is read on.
  Bytes Peek();
  /// The same, and goes on behind them.
  Bytes Take();
  /// Everything that comes next, up to `limit` bytes or a little more, in one piece. Valid as long
  /// as the stream, once.
  Bytes TakeUpTo(uint64_t limit);
  /// Copies exactly `size` bytes; false if there are fewer.
  bool Read(void* to, size_t size);

  /// Why there is nothing more to read.
  const char* Problem() const { return problem_; }

 private:
  void Fill();

  int file_ = -1;
  std::unique_ptr<uint8_t[]> buffer_;
  std::vector<uint8_t> gathered_;
  Bytes next_{nullptr, 0};
  const char* problem_ = "there is nothing in it";
};

}  // namespace ZIRK::backends
