#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "doubles/mocks.h"

namespace ZIRK::doubles {

/// A surface of one byte per pixel that does what an atlas needs. Writes outside fail the test.
struct MemoryBitmap : Bitmap {
  const int width, height;
  std::string name;
  std::vector<uint8_t> pixels;

  MemoryBitmap(int width_, int height_)
      : width(width_), height(height_), pixels(size_t(width_) * size_t(height_)) {}

  void SetName(const char* name_) override { name = name_; }
  VuRect GetBounds() const override { return {0, 0, width, height}; }
  bool SetPixels(VuRect r, const void* src, unsigned pitch) override {
    const bool inside = r.x >= 0 && r.y >= 0 && r.x + r.width <= width && r.y + r.height <= height;
    EXPECT_TRUE(inside);
    auto* from = static_cast<const uint8_t*>(src);
    for (int y = 0; inside && y < r.height; ++y, from += pitch)
      std::copy_n(from, r.width, pixels.begin() + (r.y + y) * width + r.x);
    return inside;
  }
  bool CopyPixels(VuPoint p, VuBitmapImpl* src, VuRect r) override {
    const auto& from = static_cast<const MemoryBitmap&>(*src);
    return SetPixels({p.x, p.y, r.width, r.height}, from.pixels.data(), unsigned(from.width));
  }

  std::vector<uint8_t> At(VuRect r) const {
    std::vector<uint8_t> found;
    for (int y = r.y; y < r.y + r.height; ++y) {
      const auto row = pixels.begin() + y * width + r.x;
      found.insert(found.end(), row, row + r.width);
    }
    return found;
  }
};

/// A context that makes such surfaces.
struct MemoryGraphics : Graphics {
  int type = TypeCode(BackendType::FB);
  int highest = 2048;        ///< It makes none that is higher.
  std::vector<int> heights;  ///< Those asked for.
  std::function<void()> onCreate = [] {};
  VuPixelFormat format{-1};

  VuBitmapImpl* CreateBitmap(int width, int height, VuPixelFormat asked) override {
    heights.push_back(height);
    format = asked;
    onCreate();
    return height > highest ? nullptr : new MemoryBitmap(width, height);
  }
  int GetGraphicsType() const override { return type; }
};

}  // namespace ZIRK::doubles
