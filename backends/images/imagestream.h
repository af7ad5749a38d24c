#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace ZIRK::backends {

/// The bytes of an encoded picture, front to back. A file is read in small pieces, so that reading
/// the size of a large picture costs one piece.
class ImageStream {
 public:
  /// A piece of the stream.
  struct Bytes {
    const uint8_t* data;
    size_t size;
  };

  /// Opens a file. A file that cannot be opened, or a null path, gives no bytes; Problem() says
  /// why.
  explicit ImageStream(const char* path);
  /// Reads from the caller's memory, which must outlive the stream. Null gives no bytes.
  ImageStream(const void* data, size_t size);
  ~ImageStream();
  ImageStream(const ImageStream&) = delete;
  ImageStream& operator=(const ImageStream&) = delete;

  /// The next bytes: a piece of a file, or all of memory. None at the end and after an error. Valid
  /// until the next call.
  Bytes Peek();
  /// The same as Peek(), and moves past these bytes.
  Bytes Take();
  /// The rest of the stream in one piece, up to `limit` bytes or a little more. Valid as long as
  /// the stream. May be called once.
  Bytes TakeUpTo(uint64_t limit);
  /// Copies exactly `size` bytes to `to`; false if there are fewer.
  bool Read(void* to, size_t size);

  /// The reason why there is nothing more to read.
  const char* Problem() const { return problem_; }

 private:
  void Fill();

  int file_ = -1;
  std::unique_ptr<uint8_t[]> buffer_;
  std::vector<uint8_t> gathered_;
  Bytes next_{nullptr, 0};
  const char* problem_ = "it is empty";
};

}  // namespace ZIRK::backends
