#include "images/image.h"

#include <zirk/impl/log.h>
#include <zirk/vugraphics.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <initializer_list>
#include <new>

#include "geometry/pixelmath.h"
#include "geometry/surfaceformat.h"
#include "images/imagecodec.h"
#include "images/resampler.h"

namespace ZIRK::backends {

namespace {

struct Format {
  bool (*matches)(ImageStream::Bytes head);
  std::unique_ptr<ImageCodec> (*newCodec)(ImageStream& stream);
};

/// A build may leave out some of them, or all.
constexpr std::initializer_list<Format> kFormats = {
#ifdef ZIRK_HAVE_PNG
    {IsPng, NewPngCodec},
#endif
#ifdef ZIRK_HAVE_JPEG
    {IsJpeg, NewJpegCodec},
#endif
#ifdef ZIRK_HAVE_WEBP
    {IsWebp, NewWebpCodec},
#endif
};

std::unique_ptr<ImageCodec> NewCodecFor(ImageStream& stream) {
  for (const Format& format : kFormats)
    if (format.matches(stream.Peek())) return format.newCodec(stream);
  return nullptr;
}

/// The path as log lines show it. A long path is cut at its beginning: log lines are cut at their
/// end, which would remove the reason.
std::string FileName(const char* path) {
  if (!path) return "(null)";
  constexpr size_t kLongest = 512;
  std::string name(path);
  if (name.size() > kLongest) name.replace(0, name.size() - kLongest, "...");
  return name;
}

/// The rows of a picture that is decoded into memory as a whole.
class StoredRows {
 public:
  StoredRows(ImageCodec& codec)
      : width_(codec.Width()),
        // Sides are limited, so the product fits. Not initialised: a broken picture whose header
        // claims a large size never touches it.
        pixels_(new uint32_t[static_cast<size_t>(codec.Width()) *
                             static_cast<size_t>(codec.Height())]) {}

  bool ReadFrom(ImageCodec& codec) { return codec.ReadAll(pixels_.get(), width_ * 4); }
  void Next(uint32_t* row) {
    const uint32_t* from = RowAt(pixels_.get(), width_ * 4, rowsGiven_++);
    std::copy(from, from + width_, row);
  }

 private:
  int width_;
  std::unique_ptr<uint32_t[]> pixels_;
  int rowsGiven_ = 0;
};

}  // namespace

void PremultiplyRow(uint32_t* row, int width) {
  for (int x = 0; x < width; ++x) row[x] = Premultiply(VuColor{row[x]});
}

Image::Image(const char* path) : name_(FileName(path)), stream_(path) {}

Image::Image(const void* data, size_t size)
    : name_("image in memory (" + std::to_string(size) + " bytes)"), stream_(data, size) {}

Image::~Image() = default;

/// `name` is for the error line if there is no memory for an image.
template <typename... Source>
std::unique_ptr<Image> Image::OpenSource(const char* name, Source... source) {
  try {
    std::unique_ptr<Image> image(new Image(source...));
    return image->ReadHeader() ? std::move(image) : nullptr;
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("cannot read %s: %s", name, std::strerror(ENOMEM));
    return nullptr;
  }
}

std::unique_ptr<Image> Image::Open(const char* path) {
  return OpenSource(path ? path : "(null)", path);
}

std::unique_ptr<Image> Image::Open(const void* data, size_t size) {
  return OpenSource("image in memory", data, size);
}

bool Image::ReadHeader() {
  if (stream_.Peek().size == 0) return Fail(stream_.Problem());
  codec_ = NewCodecFor(stream_);
  if (!codec_) return Fail("unknown image format");
  if (!codec_->ReadHeader()) return Fail(codec_->Error());
  const auto [width, height] = Size();
  if (IsValidSurface(width, height, VuPixelFormat::ARGB8888)) return true;
  ZIRK_LOG_ERROR("cannot read %s: %d x %d pixels are too many", name_.c_str(), width, height);
  return false;
}

ImageSize Image::Size() const {
  return {codec_->Width(), codec_->Height()};
}

std::optional<ImageSize> Image::FittedSize(int width, int height, VuDisplayMode mode) const {
  const ImageSize own = Size();
  VuGraphics::GetScaledDimensions(own.width, own.height, width, height, mode);
  // A picture much longer than wide keeps its last pixel.
  const ImageSize fitted{std::max(width, 1), std::max(height, 1)};
  if (IsValidSurface(fitted.width, fitted.height, VuPixelFormat::ARGB8888)) return fitted;
  ZIRK_LOG_ERROR("cannot fit %s: %d x %d pixels are too many", name_.c_str(), width, height);
  return std::nullopt;
}

void Image::LimitMemory(uint64_t bytes) {
  codec_->LimitMemory(bytes);
}

bool Image::Decode(const PixelRows& target, VuScaleMode mode) {
  try {
    const ImageSize own = Size();
    const bool decoded = target.width == own.width && target.height == own.height
                             ? codec_->ReadAll(target.pixels, target.pitch)
                             : DecodeResampled(target, mode);
    return decoded || Fail(codec_->Error());
  } catch (const std::bad_alloc&) {
    return Fail(std::strerror(ENOMEM));
  }
}

bool Image::DecodeResampled(const PixelRows& target, VuScaleMode mode) {
  const auto resample = [&](const std::function<bool(uint32_t*)>& nextRow) {
    return Resample({codec_->Width(), codec_->Shrink(), target.width},
                    {codec_->Height(), codec_->Shrink(), target.height}, mode, nextRow, target);
  };
  if (!codec_->HasRows()) {
    StoredRows rows(*codec_);
    return rows.ReadFrom(*codec_) && resample([&](uint32_t* row) {
             rows.Next(row);
             return true;
           });
  }
  if (mode == VuScaleMode::Bilinear) codec_->ShrinkTowards(target.width, target.height);
  return resample([&](uint32_t* row) { return codec_->ReadRow(row); });
}

bool Image::Fail(const char* reason) const {
  ZIRK_LOG_ERROR("cannot read %s: %s", name_.c_str(), reason);
  return false;
}

}  // namespace ZIRK::backends
