#pragma once

#include <cstddef>
#include <string>

namespace ZIRK::backends {

/// An encoded picture that lies in a file or in memory. Refers to what it was given, so it does
/// not outlive the call that it is made for. Null is allowed: such a source fails to open.
class ImageSource {
 public:
  explicit ImageSource(const char* path) : path_(path), isFile_(true) {}
  ImageSource(const void* data, size_t size) : data_(data), size_(size), isFile_(false) {}

  bool IsFile() const { return isFile_; }
  const char* Path() const { return path_; }
  const void* Data() const { return data_; }
  size_t Size() const { return size_; }

  /// What log lines call it: the path, or "image in memory (N bytes)".
  std::string Name() const;

 private:
  const char* path_ = nullptr;
  const void* data_ = nullptr;
  size_t size_ = 0;
  bool isFile_;
};

}  // namespace ZIRK::backends
