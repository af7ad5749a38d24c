#pragma once

#include <zirk/export.h>
#include <zirk/maxrectsbinpack.h>
#include <zirk/vuenums.h>

#include <memory>
#include <string>
#include <utility>

namespace ZIRK {

class VuBitmapImpl;
class VuGraphicsImpl;

/// A backend's bitmap, divided into regions. Sizes are in pixels.
///
/// If the bitmap could not be created, the atlas keeps the size 0 x 0 and has no regions.
///
/// **Threads**: one at a time. A font calls its atlas under a lock of its own.
class ZIRK_API VuTextureAtlasImpl {
 public:
  /// An atlas of `width` x `height` pixels. `graphics` creates its bitmap, and a larger one each
  /// time the atlas grows, and must outlive them. Logs a warning if the bitmap cannot be created.
  VuTextureAtlasImpl(VuGraphicsImpl* graphics, int width, int height, VuPixelFormat format);
  virtual ~VuTextureAtlasImpl();
  VuTextureAtlasImpl(const VuTextureAtlasImpl&) = delete;
  VuTextureAtlasImpl& operator=(const VuTextureAtlasImpl&) = delete;

  /// Names the atlas and its bitmaps, for diagnostics. The string is copied; null removes the name.
  void SetName(const char* name);

  /// Reserves a region of `width` x `height` pixels and returns it; all zeros if there is no room.
  BinRect GetRegion(int width, int height);
  /// Copies `pixels` into a region: rows top down, `pitch` bytes apart, in the atlas's format. Null
  /// copies nothing.
  void SetRegion(int x, int y, int width, int height, const void* pixels, unsigned int pitch);
  /// Replaces the bitmap by one of `width` x `height` pixels and copies the old pixels to the same
  /// place. Returns the atlas's width and height after the call: the old ones if a side is above
  /// 2048, or, with a warning, if the new bitmap cannot be created.
  std::pair<int, int> Resize(int width, int height);
  /// Frees all regions. The pixels stay until they are overwritten.
  void Reset();

  /// The field `bitmap`.
  [[nodiscard]] const std::shared_ptr<VuBitmapImpl>& GetBitmap() const { return bitmap; }
  /// The field `graphics`.
  [[nodiscard]] VuGraphicsImpl* GetGraphics() const { return graphics; }
  /// The field `width`.
  [[nodiscard]] int GetWidth() const { return width; }
  /// The field `height`.
  [[nodiscard]] int GetHeight() const { return height; }

  // Read only: the operations above change these.

  std::shared_ptr<VuBitmapImpl> bitmap;     ///< Empty if it could not be created.
  std::unique_ptr<MaxRectsBinPack> packer;  ///< Places the regions. Reset() replaces it.
  VuGraphicsImpl* graphics;  ///< Creates the bitmaps. Without a bitmap it may be deleted already.
  int32_t width;             ///< Width of the bitmap, 0 if there is none.
  int32_t height;            ///< Height of the bitmap, 0 if there is none.
  VuPixelFormat format;      ///< Format of every bitmap.
  std::string name;          ///< As SetName() stored it; empty at first.
};

}  // namespace ZIRK
