#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "doubles/fakeobject.h"

namespace ZIRK::doubles {

/// A surface of one byte a pixel, with what an atlas asks of one. Writes outside it fail a test.
struct MemoryBitmap : FakeObject<VuBitmapImpl> {
  const int width, height;
  std::string name;
  std::vector<uint8_t> pixels;

  MemoryBitmap(int width_, int height_)
      : width(width_), height(height_), pixels(size_t(width_) * size_t(height_)) {
    Set(2, &Free);
    Set(4, &SetName);
    Set(9, &Bounds);
    Set(37, &SetPixels);
    Set(38, &CopyPixels);
  }

  static void Free(MemoryBitmap* b) { delete b; }
  static void SetName(MemoryBitmap* b, const char* name_) { b->name = name_; }
  static VuRect Bounds(MemoryBitmap* b) { return {0, 0, b->width, b->height}; }
  static bool SetPixels(MemoryBitmap* b, VuRect r, const uint8_t* src, unsigned pitch) {
    const bool inside =
        r.x >= 0 && r.y >= 0 && r.x + r.width <= b->width && r.y + r.height <= b->height;
    EXPECT_TRUE(inside);
    for (int y = 0; inside && y < r.height; ++y, src += pitch)
      std::copy_n(src, r.width, b->pixels.begin() + (r.y + y) * b->width + r.x);
    return inside;
  }
  static bool CopyPixels(MemoryBitmap* b, VuPoint p, MemoryBitmap* src, VuRect r) {
    return SetPixels(b, {p.x, p.y, r.width, r.height}, src->pixels.data(), unsigned(src->width));
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
struct MemoryGraphics : FakeObject<VuGraphicsImpl> {
  int type = TypeCode(BackendType::FB);
  int highest = 2048;        ///< None is made that is higher.
  std::vector<int> heights;  ///< Those asked for.
  std::function<void()> onCreate = [] {};
  VuPixelFormat format{-1};

  MemoryGraphics() {
    Set(5, &CreateBitmap);
    Set(20, &GetType);
  }

  static VuBitmapImpl* CreateBitmap(MemoryGraphics* g, int width, int height, VuPixelFormat f) {
    g->heights.push_back(height);
    g->format = f;
    g->onCreate();
    return height > g->highest ? nullptr : (new MemoryBitmap(width, height))->get();
  }
  static int GetType(MemoryGraphics* g) { return g->type; }
};

}  // namespace ZIRK::doubles
