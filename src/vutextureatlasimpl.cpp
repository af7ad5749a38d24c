#include <zirk/impl/log.h>
#include <zirk/impl/vubitmapimpl.h>
#include <zirk/impl/vugraphicsimpl.h>
#include <zirk/maxrectsbinpack.h>
#include <zirk/vutextureatlasimpl.h>

#include <utility>

namespace ZIRK {

namespace {

/// The longest side that every backend's textures have.
constexpr int kMaxSide = 2048;

/// A new bitmap, or empty after a line that names the `caller`.
std::shared_ptr<VuBitmapImpl> CreateBitmap(VuGraphicsImpl* graphics, int width, int height,
                                           VuPixelFormat format, const char* caller) {
  std::shared_ptr<VuBitmapImpl> bitmap(graphics->CreateBitmap(width, height, format));
  if (!bitmap) ZIRK_LOG_WARNING("%s: bitmap allocation failed", caller);
  return bitmap;
}

}  // namespace

VuTextureAtlasImpl::VuTextureAtlasImpl(VuGraphicsImpl* graphics, int width, int height,
                                       VuPixelFormat format)
    : bitmap_(CreateBitmap(graphics, width, height, format, "VuTextureAtlasImpl")),
      graphics_(graphics),
      width_(bitmap_ ? width : 0),
      height_(bitmap_ ? height : 0),
      format_(format) {
  Reset();
}

VuTextureAtlasImpl::~VuTextureAtlasImpl() = default;

void VuTextureAtlasImpl::SetName(const char* name) {
  name_ = name ? name : "";
  if (bitmap_) bitmap_->SetName(name_.c_str());
}

BinRect VuTextureAtlasImpl::GetRegion(int width, int height) {
  ZIRK_LOG_DEBUG("%s: %s %dx%d", "GetRegion", name_.c_str(), width, height);
  if (!bitmap_) return {0, 0, 0, 0};
  return packer_->Insert(width, height);
}

void VuTextureAtlasImpl::SetRegion(int x, int y, int width, int height, const void* pixels,
                                   unsigned int pitch) {
  ZIRK_LOG_DEBUG("%s: %s %d,%d %dx%d", "SetRegion", name_.c_str(), x, y, width, height);
  if (pixels && bitmap_) bitmap_->SetPixels(VuRect{x, y, width, height}, pixels, pitch);
}

BinSize VuTextureAtlasImpl::Resize(int width, int height) {
  ZIRK_LOG_DEBUG("%s: %s %dx%d", "Resize", name_.c_str(), width, height);
  if (width > kMaxSide || height > kMaxSide || !bitmap_) return {width_, height_};
  std::shared_ptr<VuBitmapImpl> grown = CreateBitmap(graphics_, width, height, format_, "Resize");
  if (!grown) return {width_, height_};

  grown->SetName(name_.c_str());
  grown->CopyPixels(VuPoint{0, 0}, bitmap_.get(), bitmap_->GetBounds());
  bitmap_ = std::move(grown);
  // A bin never shrinks: made smaller, the atlas goes on handing out what lies outside.
  packer_->Resize(width, height);
  width_ = width;
  height_ = height;
  return {width_, height_};
}

void VuTextureAtlasImpl::Reset() {
  packer_ = std::make_unique<MaxRectsBinPack>(width_, height_);
}

}  // namespace ZIRK
