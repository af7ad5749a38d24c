#pragma once

#include <ostream>

#include "doubles/recordingsurface.h"

namespace ZIRK::doubles {

/// A backend that records every operation that has no default, and makes recording surfaces, or
/// none at all while `fails` is set.
class PlainGraphics : public VuGraphicsImpl {
 public:
  explicit PlainGraphics(Recorder& r) : record(r) {}
  ~PlainGraphics() override { record("destroyed"); }

  VuScreenImpl* CreateScreen(bool flag) override { return record("CreateScreen", flag), Screen(); }
  VuScreenImpl* CreateScreen(const VuScreenDescription& d) override {
    return record("CreateScreen", d), Screen();
  }
  VuBitmapImpl* CreateBitmap(int width, int height, VuPixelFormat format) override {
    return record("CreateBitmap", width, height, format), Bitmap();
  }
  VuBitmapImpl* CreateBitmapFromFile(const char* path) override {
    return record("CreateBitmapFromFile", path), Bitmap();
  }
  VuBitmapImpl* CreateBitmapFromFile(const char* path, int width, int height, VuScaleMode scale,
                                     VuDisplayMode display) override {
    return record("CreateBitmapFromFile", path, width, height, scale, display), Bitmap();
  }
  VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size) override {
    return record("CreateBitmapFromMemory", data, size), Bitmap();
  }
  VuBitmapImpl* CreateBitmapFromMemory(const void* data, unsigned size, int width, int height,
                                       VuScaleMode scale) override {
    return record("CreateBitmapFromMemory", data, size, width, height, scale), Bitmap();
  }
  unsigned AvailableMemory() const override { return record("AvailableMemory"), 30; }
  unsigned TotalMemory() const override { return record("TotalMemory"), 100; }
  unsigned BitmapSize(int width, int height, VuPixelFormat format) const override {
    return record("BitmapSize", width, height, format), 12;
  }
  unsigned BitmapSize(const char* path) const override { return record("BitmapSize", path), 13; }
  unsigned BitmapSize(const char* path, int width, int height) const override {
    return record("BitmapSize", path, width, height), 14;
  }
  unsigned BitmapSize(const void* data, unsigned size) const override {
    return record("BitmapSize", data, size), 15;
  }
  unsigned BitmapSize(const void* data, unsigned size, int width, int height) const override {
    return record("BitmapSize", data, size, width, height), 16;
  }
  void PrintBitmapList(unsigned key, std::ostream& os) override {
    record("PrintBitmapList", key);
    os << "bitmaps\n";
  }
  void Flush() override { record("Flush"); }
  int GetGraphicsType() const override { return record("GetGraphicsType"), 42; }

  Recorder& record;
  bool fails = false;

 protected:
  virtual VuScreenImpl* Screen() { return fails ? nullptr : new RecordingScreen(record); }
  virtual VuBitmapImpl* Bitmap() { return fails ? nullptr : new RecordingBitmap(record); }
};

/// Records the operations with a default too.
class RecordingGraphics : public PlainGraphics {
 public:
  using PlainGraphics::PlainGraphics;
  void SetTerminateOnDestruct(bool b) override { record("SetTerminateOnDestruct", b); }
  int GetMaxTextureSize() const override { return record("GetMaxTextureSize"), 512; }
};

}  // namespace ZIRK::doubles
