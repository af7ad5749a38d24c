#pragma once

#include "surface.h"

namespace ZIRK::plain {

/// A context: makes surfaces and keeps track of them. It knows no picture formats.
class Graphics final : public VuGraphicsImpl {
 public:
  VuScreenImpl* CreateScreen(bool flag) override;
  VuScreenImpl* CreateScreen(const VuScreenDescription& description) override;
  VuBitmapImpl* CreateBitmap(int width, int height, VuPixelFormat format) override;
  VuBitmapImpl* CreateBitmapFromFile(const char* path) override;
  VuBitmapImpl* CreateBitmapFromFile(const char* path, int, int, VuScaleMode,
                                     VuDisplayMode) override;
  VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size) override;
  VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size, int, int,
                                       VuScaleMode) override;

  unsigned AvailableMemory() const override;
  unsigned TotalMemory() const override { return 256u << 20; }
  unsigned BitmapSize(int width, int height, VuPixelFormat format) const override;
  unsigned BitmapSize(const char*) const override { return 0; }
  unsigned BitmapSize(const char*, int, int) const override { return 0; }
  unsigned BitmapSize(const void*, unsigned) const override { return 0; }
  unsigned BitmapSize(const void*, unsigned, int, int) const override { return 0; }
  void PrintBitmapList(unsigned key, std::ostream& os) override;

  void Flush() override {}  // Nothing is ever pending.
  int GetGraphicsType() const override { return 100; }
  int GetMaxTextureSize() const override { return 4096; }

 private:
  template <class Made>
  Made* Make(int width, int height, VuPixelFormat format);

  mutable LiveSurfaces live_;
};

}  // namespace ZIRK::plain
