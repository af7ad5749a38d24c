#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace ZIRK::trace {

/// A file in memory, for functions that open a file by its path.
class MemoryFile {
 public:
  /// Returns null if the file cannot be made.
  static std::shared_ptr<const MemoryFile> Create(std::span<const uint8_t> bytes);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  const std::string& Path() const { return path_; }

 private:
  explicit MemoryFile(int descriptor);

  const int descriptor_;
  const std::string path_;
};

}  // namespace ZIRK::trace
