#include "memoryfile.h"

#include <sys/mman.h>
#include <unistd.h>

namespace ZIRK::trace {

std::shared_ptr<const MemoryFile> MemoryFile::Create(std::span<const uint8_t> bytes) {
  const int descriptor = memfd_create("zirktrace", MFD_CLOEXEC);
  if (descriptor < 0) return nullptr;
  std::shared_ptr<const MemoryFile> file(new MemoryFile(descriptor));
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written <= 0) return nullptr;
    bytes = bytes.subspan(static_cast<size_t>(written));
  }
  return file;
}

MemoryFile::MemoryFile(int descriptor)
    : descriptor_(descriptor), path_("/proc/self/fd/" + std::to_string(descriptor)) {}

MemoryFile::~MemoryFile() {
  close(descriptor_);
}

}  // namespace ZIRK::trace
