#include <zirk/kit/pictures.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "error.h"
#include "pixels.h"
#ifdef ZIRK_HAVE_PNG
#include "pngfile.h"
#endif

namespace ZIRK::kit {

namespace {

/// Returns the reason of a failure, or an empty string.
std::string Save([[maybe_unused]] VuBitmap& bitmap, [[maybe_unused]] VuRect part,
                 [[maybe_unused]] const char* path) {
#ifdef ZIRK_HAVE_PNG
  const std::vector<uint32_t> pixels = ReadPixels(bitmap, part);
  if (pixels.empty()) return "the pixels cannot be read";
  return WritePngFile(path, pixels, part.width, *ChannelsOf(bitmap.GetInfo().format));
#else
  return "the kit was built without libpng";
#endif
}

/// Compares two rows of the same length, and stores their difference in `a`.
Difference CompareRows(std::vector<uint32_t>& a, const std::vector<uint32_t>& b, int width) {
  constexpr int kShownTimes = 8;
  Difference result;
  uint64_t sum = 0;
  for (size_t i = 0; i < a.size(); ++i) {
    uint32_t shown = 0xFF000000;
    for (unsigned shift = 0; shift < 32; shift += 8) {
      const int difference =
          std::abs(static_cast<int>(a[i] >> shift & 255) - static_cast<int>(b[i] >> shift & 255));
      sum += static_cast<uint64_t>(difference);
      if (difference > result.worst) {
        result.worst = difference;
        const size_t columns = static_cast<size_t>(width);
        result.worstAt = {static_cast<int32_t>(i % columns), static_cast<int32_t>(i / columns)};
      }
      if (shift < 24)
        shown |= static_cast<uint32_t>(std::min(255, difference * kShownTimes)) << shift;
    }
    a[i] = shown;
  }
  result.mean = static_cast<double>(sum) / (4.0 * static_cast<double>(a.size()));
  return result;
}

}  // namespace

bool SavePng(VuBitmap& bitmap, const char* path) {
  return SavePng(bitmap, bitmap.GetBounds(), path);
}

bool SavePng(VuBitmap& bitmap, VuRect part, const char* path) {
  std::string problem;
  try {
    problem = Save(bitmap, part, path);
  } catch (const std::bad_alloc&) {
    ZIRK_KIT_ERROR("%s: no memory for the pixels", path);
    return false;
  }
  if (!problem.empty()) ZIRK_KIT_ERROR("%s: %s", path, problem.c_str());
  return problem.empty();
}

std::optional<Difference> Compare(VuBitmap& a, VuBitmap& b, VuBitmap* picture) {
  return Compare(a, a.GetBounds(), b, b.GetBounds(), picture);
}

std::optional<Difference> Compare(VuBitmap& a, VuRect partOfA, VuBitmap& b, VuRect partOfB,
                                  VuBitmap* picture) {
  const int width = partOfA.width, height = partOfA.height;
  if (width != partOfB.width || height != partOfB.height) {
    ZIRK_KIT_ERROR("Compare: %d x %d and %d x %d pixels", width, height, partOfB.width,
                   partOfB.height);
    return std::nullopt;
  }
  try {
    std::vector<uint32_t> first = ReadPixels(a, partOfA);
    const std::vector<uint32_t> second = ReadPixels(b, partOfB);
    if (first.empty() || second.empty()) {
      ZIRK_KIT_ERROR("Compare: the pixels cannot be read");
      return std::nullopt;
    }
    const Difference result = CompareRows(first, second, width);
    if (!picture) return result;
    if (picture->GetInfo().format == VuPixelFormat::ARGB8888 &&
        picture->SetPixels({0, 0, width, height}, first.data(), static_cast<unsigned>(width) * 4))
      return result;
    ZIRK_KIT_ERROR("Compare: the picture of the differences cannot be written");
  } catch (const std::bad_alloc&) {
    ZIRK_KIT_ERROR("Compare: no memory for the pixels");
  }
  return std::nullopt;
}

}  // namespace ZIRK::kit
