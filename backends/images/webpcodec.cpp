#include <webp/decode.h>

#include <cerrno>
#include <cstring>

#include "images/imagecodec.h"

namespace ZIRK::backends {

namespace {

const char* ErrorText(VP8StatusCode status) {
  switch (status) {
    case VP8_STATUS_OUT_OF_MEMORY:
      return std::strerror(ENOMEM);
    case VP8_STATUS_UNSUPPORTED_FEATURE:
      return "unsupported kind of WebP";
    case VP8_STATUS_NOT_ENOUGH_DATA:
    case VP8_STATUS_SUSPENDED:
      return "it is incomplete";
    default:
      return "broken WebP data";
  }
}

/// The size that the first bytes of the file state.
uint64_t FileSize(const uint8_t* head) {
  return 8 + (uint64_t{head[4]} | uint64_t{head[5]} << 8 | uint64_t{head[6]} << 16 |
              uint64_t{head[7]} << 24);
}

/// libwebp decodes the file as a whole.
class WebpCodec final : public ImageCodec {
 public:
  explicit WebpCodec(ImageStream& stream) : stream_(stream) {}

  bool ReadHeader() override {
    const ImageStream::Bytes head = stream_.Peek();
    WebPBitstreamFeatures features;
    const VP8StatusCode status = WebPGetFeatures(head.data, head.size, &features);
    if (status != VP8_STATUS_OK) return Fail(ErrorText(status));
    if (features.has_animation) return Fail(ErrorText(VP8_STATUS_UNSUPPORTED_FEATURE));
    width_ = features.width;
    height_ = features.height;
    hasAlpha_ = features.has_alpha != 0;
    return true;
  }

  bool HasRows() const override { return false; }
  bool ReadRow(uint32_t*) override { return false; }

  bool ReadAll(uint32_t* pixels, int pitch) override {
    const ImageStream::Bytes head = stream_.Peek();
    const uint64_t size = FileSize(head.data);
    if (size > memoryLimit_) return Fail("the file is larger than memory allows");
    const ImageStream::Bytes bytes = stream_.TakeUpTo(size);
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config)) return Fail("unsuitable version of libwebp");
    config.output.colorspace = kLittleEndian ? MODE_BGRA : MODE_ARGB;
    config.output.is_external_memory = 1;
    config.output.u.RGBA = {reinterpret_cast<uint8_t*>(pixels), pitch,
                            static_cast<size_t>(pitch) * static_cast<size_t>(height_ - 1) +
                                static_cast<size_t>(width_) * 4};
    const VP8StatusCode status = WebPDecode(bytes.data, bytes.size, &config);
    WebPFreeDecBuffer(&config.output);
    if (status != VP8_STATUS_OK) return Fail(ErrorText(status));
    for (int y = 0; hasAlpha_ && y < height_; ++y) PremultiplyRow(RowAt(pixels, pitch, y), width_);
    return true;
  }

 private:
  ImageStream& stream_;
  bool hasAlpha_ = false;
};

}  // namespace

bool IsWebp(ImageStream::Bytes head) {
  return head.size >= 12 && std::memcmp(head.data, "RIFF", 4) == 0 &&
         std::memcmp(head.data + 8, "WEBP", 4) == 0;
}

std::unique_ptr<ImageCodec> NewWebpCodec(ImageStream& stream) {
  return std::make_unique<WebpCodec>(stream);
}

}  // namespace ZIRK::backends
