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
  /// Moves to a bitmap of that size and copies what the old one holds to the same place. Returns
  /// the atlas's width and height after the call: the old ones if a side is above 2048 or the new
  /// bitmap cannot be made.
  std::pair<int, int> Resize(int width, int height);
  /// Forgets all regions. The pixels stay until they are overwritten.
  void Reset();

  /// The field `bitmap`.
  const std::shared_ptr<VuBitmapImpl>& GetBitmap() const { return bitmap; }
  /// The field `graphics`.
  VuGraphicsImpl* GetGraphics() const { return graphics; }
  /// The field `width`.
  int GetWidth() const { return width; }
  /// The field `height`.
  int GetHeight() const { return height; }

  // For reading: the operations above change them.

  std::shared_ptr<VuBitmapImpl> bitmap;     ///< Empty if it could not be made.
  std::unique_ptr<MaxRectsBinPack> packer;  ///< Places the regions; Reset() makes a new one.
  VuGraphicsImpl* graphics;  ///< Makes the bitmaps. Without a bitmap it may be gone already.
  int32_t width;             ///< Of the bitmap, 0 if there is none.
  int32_t height;            ///< Of the bitmap, 0 if there is none.
  VuPixelFormat format;      ///< Of all bitmaps.
  std::string name;          ///< As SetName() got it; empty before.
};

}  // namespace ZIRK
