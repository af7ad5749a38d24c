#include <zirk/impl/log.h>
#include <zirk/impl/vubitmapimpl.h>
#include <zirk/impl/vugraphicsimpl.h>
#include <zirk/maxrectsbinpack.h>
#include <zirk/vutextureatlasimpl.h>

#include <utility>

#include "texturelimit.h"

namespace ZIRK {

namespace {

/// A new bitmap. Empty, after a line that names the `caller`, if it cannot be created.
std::shared_ptr<VuBitmapImpl> CreateBitmap(VuGraphicsImpl* graphics, int width, int height,
                                           VuPixelFormat format, const char* caller) {
  std::shared_ptr<VuBitmapImpl> bitmap(graphics->CreateBitmap(width, height, format));
  if (!bitmap) ZIRK_LOG_WARNING("%s: bitmap allocation failed", caller);
  return bitmap;
}

}  // namespace

VuTextureAtlasImpl::VuTextureAtlasImpl(VuGraphicsImpl* graphics_, int width_, int height_,
                                       VuPixelFormat format_)
    : bitmap(CreateBitmap(graphics_, width_, height_, format_, "VuTextureAtlasImpl")),
      graphics(graphics_),
      width(bitmap ? width_ : 0),
      height(bitmap ? height_ : 0),
      format(format_) {
  Reset();
}

VuTextureAtlasImpl::~VuTextureAtlasImpl() = default;

void VuTextureAtlasImpl::SetName(const char* name_) {
  name = name_ ? name_ : "";
  if (bitmap) bitmap->SetName(name.c_str());
}

BinRect VuTextureAtlasImpl::GetRegion(int regionWidth, int regionHeight) {
  ZIRK_LOG_DEBUG("%s: %s %dx%d", "GetRegion", name.c_str(), regionWidth, regionHeight);
  if (!bitmap) return {0, 0, 0, 0};
  return packer->Insert(regionWidth, regionHeight);
}

void VuTextureAtlasImpl::SetRegion(int x, int y, int regionWidth, int regionHeight,
                                   const void* pixels, unsigned int pitch) {
  ZIRK_LOG_DEBUG("%s: %s %d,%d %dx%d", "SetRegion", name.c_str(), x, y, regionWidth, regionHeight);
  if (pixels && bitmap) bitmap->SetPixels(VuRect{x, y, regionWidth, regionHeight}, pixels, pitch);
}

std::pair<int, int> VuTextureAtlasImpl::Resize(int newWidth, int newHeight) {
  ZIRK_LOG_DEBUG("%s: %s %dx%d", "Resize", name.c_str(), newWidth, newHeight);
  if (newWidth > kMaxTextureSide || newHeight > kMaxTextureSide || !bitmap) return {width, height};
  std::shared_ptr<VuBitmapImpl> resized =
      CreateBitmap(graphics, newWidth, newHeight, format, "Resize");
  if (!resized) return {width, height};

  resized->SetName(name.c_str());
  resized->CopyPixels(VuPoint{0, 0}, bitmap.get(), bitmap->GetBounds());
  bitmap = std::move(resized);
  // A bin never shrinks: a smaller atlas still returns regions outside its bitmap.
  packer->Resize(newWidth, newHeight);
  width = newWidth;
  height = newHeight;
  return {width, height};
}

void VuTextureAtlasImpl::Reset() {
  packer = std::make_unique<MaxRectsBinPack>(width, height);
}

}  // namespace ZIRK
