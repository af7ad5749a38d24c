#include "images/imagesource.h"

namespace ZIRK::backends {

std::string ImageSource::Name() const {
  if (!isFile_) return "image in memory (" + std::to_string(size_) + " bytes)";
  if (!path_) return "(null)";

  // A log line is cut at its end, where the reason stands: the end of a path says more anyway.
  constexpr size_t kLongest = 512;
  std::string name(path_);
  if (name.size() > kLongest) name.replace(0, name.size() - kLongest, "...");
  return name;
}

}  // namespace ZIRK::backends
