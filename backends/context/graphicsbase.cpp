#include "context/graphicsbase.h"

#include <zirk/impl/log.h>
#include <zirk/impl/vuscreenimpl.h>

#include <cstddef>
#include <new>
#include <utility>

#include "geometry/surfaceformat.h"

namespace ZIRK::backends {

namespace {

constexpr VuPixelFormat kPictureFormat = VuPixelFormat::ARGB8888;

/// The size of a screen if none is asked for and the device does not tell its own.
constexpr ImageSize kDefaultScreenSize{1280, 720};

/// Reports a std::bad_alloc, which must not reach the library.
std::nullptr_t FailWithoutMemory(int width, int height) {
  ZIRK_LOG_ERROR("no memory for a surface of %d x %d", width, height);
  return nullptr;
}

}  // namespace

GraphicsBase::GraphicsBase(uint64_t memoryLimit) : budget_(MemoryBudget::Create(memoryLimit)) {}

GraphicsBase::GraphicsBase(std::shared_ptr<MemoryBudget> budget) : budget_(std::move(budget)) {}

VuScreenImpl* GraphicsBase::CreateScreen(bool flag) {
  return CreateScreen(VuScreenDescription{0, 0, 0, 2, VuPixelFormat::ARGB8888, flag});
}

VuScreenImpl* GraphicsBase::CreateScreen(const VuScreenDescription& description) {
  VuScreenDescription sized = description;
  try {
    if (sized.width <= 0 || sized.height <= 0) {
      const ImageSize size = DeviceSize(sized.index).value_or(kDefaultScreenSize);
      sized.width = size.width;
      sized.height = size.height;
    }
    Reservation reservation = budget_->Reserve(sized.width, sized.height, sized.format);
    return reservation ? MakeScreen(std::move(reservation), sized).release() : nullptr;
  } catch (const std::bad_alloc&) {
    return FailWithoutMemory(sized.width, sized.height);
  }
}

VuBitmapImpl* GraphicsBase::CreateBitmap(int width, int height, VuPixelFormat format) {
  try {
    Reservation reservation = budget_->Reserve(width, height, format);
    return reservation ? MakeBitmap(std::move(reservation), width, height, format).release()
                       : nullptr;
  } catch (const std::bad_alloc&) {
    return FailWithoutMemory(width, height);
  }
}

VuBitmapImpl* GraphicsBase::CreateBitmapFromFile(const char* path) {
  return CreatePicture(Image::Open(path), kOwnSize, VuScaleMode::Nearest);
}

VuBitmapImpl* GraphicsBase::CreateBitmapFromMemory(const void* data, unsigned size) {
  return CreatePicture(Image::Open(data, size), kOwnSize, VuScaleMode::Nearest);
}

VuBitmapImpl* GraphicsBase::CreateBitmapFromFile(const char* path, int width, int height,
                                                 VuScaleMode scaleMode, VuDisplayMode displayMode) {
  return CreatePicture(Image::Open(path), {width, height, displayMode}, scaleMode);
}

VuBitmapImpl* GraphicsBase::CreateBitmapFromMemory(const void* data, unsigned size, int width,
                                                   int height, VuScaleMode scaleMode) {
  return CreatePicture(Image::Open(data, size), {width, height, VuDisplayMode::Stretch}, scaleMode);
}

VuBitmapImpl* GraphicsBase::CreatePicture(std::unique_ptr<Image> image, const Fit& fit,
                                          VuScaleMode scaleMode) {
  if (!image) return nullptr;
  const std::optional<ImageSize> size = image->FittedSize(fit.width, fit.height, fit.mode);
  if (!size) return nullptr;
  // Scaling may need the whole picture in memory; some formats cannot be decoded row by row.
  const ImageSize own = image->Size();
  if (SurfaceBytes(own.width, own.height, kPictureFormat) > budget_->Total()) {
    ZIRK_LOG_ERROR("%s: %d x %d pixels are more than memory allows", image->Name().c_str(),
                   own.width, own.height);
    return nullptr;
  }
  image->LimitMemory(budget_->Total());
  try {
    Reservation reservation =
        budget_->Reserve(size->width, size->height, kPictureFormat, image->Name().c_str());
    if (!reservation) return nullptr;
    return MakePicture(std::move(reservation), size->width, size->height, *image, scaleMode)
        .release();
  } catch (const std::bad_alloc&) {
    return FailWithoutMemory(size->width, size->height);
  }
}

void GraphicsBase::PrintBitmapList(unsigned key, std::ostream& os) {
  budget_->Print(key, os);
}

unsigned GraphicsBase::AvailableMemory() const {
  return budget_->Available();
}

unsigned GraphicsBase::TotalMemory() const {
  return budget_->Total();
}

unsigned GraphicsBase::BitmapSize(int width, int height, VuPixelFormat format) const {
  return SurfaceBytes(width, height, format);
}

unsigned GraphicsBase::BitmapSize(const char* path) const {
  return PictureSize(Image::Open(path), kOwnSize);
}

unsigned GraphicsBase::BitmapSize(const void* data, unsigned size) const {
  return PictureSize(Image::Open(data, size), kOwnSize);
}

unsigned GraphicsBase::BitmapSize(const char* path, int width, int height) const {
  return PictureSize(Image::Open(path), {width, height, VuDisplayMode::Stretch});
}

unsigned GraphicsBase::BitmapSize(const void* data, unsigned size, int width, int height) const {
  return PictureSize(Image::Open(data, size), {width, height, VuDisplayMode::Stretch});
}

unsigned GraphicsBase::PictureSize(std::unique_ptr<Image> image, const Fit& fit) {
  if (!image) return 0;
  const std::optional<ImageSize> size = image->FittedSize(fit.width, fit.height, fit.mode);
  return size ? SurfaceBytes(size->width, size->height, kPictureFormat) : 0;
}

int GraphicsBase::GetMaxTextureSize() const {
  return kMaxSide;
}

std::optional<ImageSize> GraphicsBase::DeviceSize(int) const {
  return std::nullopt;
}

}  // namespace ZIRK::backends
