#include "images/imagestream.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace ZIRK::backends {

namespace {
constexpr size_t kBufferSize = 16384;
}

ImageStream::ImageStream(const char* path) {
  if (!path) {
    problem_ = "no path is given";
    return;
  }
  buffer_ = std::make_unique<uint8_t[]>(kBufferSize);
  // With O_NONBLOCK a pipe without a writer reads as empty instead of blocking.
  file_ = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file_ < 0) problem_ = std::strerror(errno);
}

ImageStream::ImageStream(const void* data, size_t size) {
  if (data) next_ = {static_cast<const uint8_t*>(data), size};
}

ImageStream::~ImageStream() {
  if (file_ >= 0) close(file_);
}

void ImageStream::Fill() {
  size_t filled = 0;
  while (file_ >= 0 && filled < kBufferSize) {
    const ssize_t n = read(file_, buffer_.get() + filled, kBufferSize - filled);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) problem_ = std::strerror(errno);
    if (n <= 0) break;
    filled += static_cast<size_t>(n);
  }
  next_ = {buffer_.get(), filled};
}

ImageStream::Bytes ImageStream::Peek() {
  if (next_.size == 0) Fill();
  return next_;
}

ImageStream::Bytes ImageStream::Take() {
  const Bytes taken = Peek();
  next_.size = 0;
  if (taken.size > 0) problem_ = "it is incomplete";
  return taken;
}

ImageStream::Bytes ImageStream::TakeUpTo(uint64_t limit) {
  if (file_ < 0) return Take();
  while (gathered_.size() < limit) {
    const Bytes bytes = Take();
    if (bytes.size == 0) break;
    gathered_.insert(gathered_.end(), bytes.data, bytes.data + bytes.size);
  }
  return {gathered_.data(), gathered_.size()};
}

bool ImageStream::Read(void* to, size_t size) {
  auto* out = static_cast<uint8_t*>(to);
  while (size > 0) {
    const Bytes bytes = Take();
    if (bytes.size == 0) return false;
    const size_t n = std::min(size, bytes.size);
    std::memcpy(out, bytes.data, n);
    next_ = {bytes.data + n, bytes.size - n};
    out += n;
    size -= n;
  }
  return true;
}

}  // namespace ZIRK::backends
