#pragma once

#include <zirk/binpack.h>
#include <zirk/export.h>
#include <zirk/vuenums.h>

#include <memory>
#include <string>

namespace ZIRK {

class MaxRectsBinPack;
class VuBitmapImpl;
class VuGraphicsImpl;

/// A backend's bitmap that is shared out into regions. Sizes are in pixels.
///
/// One whose bitmap could not be made has size 0 x 0 for good, and no region. Not thread-safe: a
/// font calls its atlas under a lock of its own.
class ZIRK_API VuTextureAtlasImpl {
 public:
  /// `graphics` makes the bitmap, and its successors when the atlas grows; it outlives the bitmap.
  VuTextureAtlasImpl(VuGraphicsImpl* graphics, int width, int height, VuPixelFormat format);
  virtual ~VuTextureAtlasImpl();
  VuTextureAtlasImpl(const VuTextureAtlasImpl&) = delete;
  VuTextureAtlasImpl& operator=(const VuTextureAtlasImpl&) = delete;

  /// Names the atlas and its bitmaps, for diagnostics.
  void SetName(const char* name);

  /// A free region; one of height 0 if there is no room.
  BinRect GetRegion(int width, int height);
  /// Copies rows, `pitch` bytes apart, in the atlas's format. Null `pixels` copy nothing.
  void SetRegion(int x, int y, int width, int height, const void* pixels, unsigned int pitch);
  /// Moves to a bitmap of that size, with what the old one holds in the same place. Returns the
  /// size from now on: the old one if a side is above 2048 or the new bitmap cannot be made.
  BinSize Resize(int width, int height);
  /// Forgets all regions. The pixels stay until they are overwritten.
  void Reset();

  /// Empty if it could not be made.
  const std::shared_ptr<VuBitmapImpl>& GetBitmap() const { return bitmap_; }
  /// What makes the bitmaps; it may have gone if there is none.
  VuGraphicsImpl* GetGraphics() const { return graphics_; }
  /// Size of the bitmap, 0 if there is none.
  int GetWidth() const { return width_; }
  int GetHeight() const { return height_; }

 private:
  std::shared_ptr<VuBitmapImpl> bitmap_;
  std::unique_ptr<MaxRectsBinPack> packer_;
  VuGraphicsImpl* graphics_;
  int32_t width_;
  int32_t height_;
  VuPixelFormat format_;
  std::string name_;
};

}  // namespace ZIRK
