#include <png.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "images/imagecodec.h"

namespace ZIRK::backends {

namespace {

/// An error in libpng jumps back to the setjmp() of the operation. No object with a destructor is
/// created after that call.
class PngCodec final : public ImageCodec {
 public:
  explicit PngCodec(ImageStream& stream)
      : stream_(stream),
        png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning)) {
    if (png_) info_ = png_create_info_struct(png_);
  }
  ~PngCodec() override { png_destroy_read_struct(&png_, &info_, nullptr); }
  PngCodec(const PngCodec&) = delete;
  PngCodec& operator=(const PngCodec&) = delete;

  bool ReadHeader() override {
    if (!info_) return Fail(std::strerror(ENOMEM));
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    // Our own limit is tested on the result, and reported with the size.
    png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    // Reads the picture, its palette and its transparency, and skips all other chunks: some would
    // be stored at whatever length they state, others unpack to any size.
    png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
    png_set_read_fn(png_, this, OnRead);
    png_read_info(png_, info_);
    width_ = static_cast<int>(png_get_image_width(png_, info_));
    height_ = static_cast<int>(png_get_image_height(png_, info_));
    interlaced_ = png_get_interlace_type(png_, info_) != PNG_INTERLACE_NONE;
    hasAlpha_ = (png_get_color_type(png_, info_) & PNG_COLOR_MASK_ALPHA) != 0 ||
                png_get_valid(png_, info_, PNG_INFO_tRNS) != 0;
    return true;
  }

  bool HasRows() const override { return !interlaced_; }

  bool ReadRow(uint32_t* row) override {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    if (rowsRead_ == 0) Begin();
    png_read_row(png_, reinterpret_cast<png_bytep>(row), nullptr);
    if (++rowsRead_ == height_) png_read_end(png_, nullptr);
    if (hasAlpha_) PremultiplyRow(row, width_);
    return true;
  }

  bool ReadAll(uint32_t* pixels, int pitch) override {
    std::vector<png_bytep> rows(static_cast<size_t>(height_));
    for (int y = 0; y < height_; ++y)
      rows[static_cast<size_t>(y)] = reinterpret_cast<png_bytep>(RowAt(pixels, pitch, y));
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    Begin();
    png_read_image(png_, rows.data());
    png_read_end(png_, nullptr);
    for (int y = 0; hasAlpha_ && y < height_; ++y) PremultiplyRow(RowAt(pixels, pitch, y), width_);
    return true;
  }

 private:
  /// Converts every colour type and depth to four bytes per pixel.
  void Begin() {
    png_set_expand(png_);
    png_set_scale_16(png_);
    png_set_gray_to_rgb(png_);
    if (kLittleEndian) png_set_bgr(png_);
    if (!kLittleEndian) png_set_swap_alpha(png_);
    png_set_add_alpha(png_, 0xFF, kLittleEndian ? PNG_FILLER_AFTER : PNG_FILLER_BEFORE);
    png_set_interlace_handling(png_);
    png_read_update_info(png_, info_);
    if (png_get_rowbytes(png_, info_) != static_cast<size_t>(width_) * 4)
      png_error(png_, "unexpected row size");
  }

  [[noreturn]] static void OnError(png_structp png, png_const_charp message) {
    static_cast<PngCodec*>(png_get_error_ptr(png))->Fail(message);
    png_longjmp(png, 1);
  }
  static void OnWarning(png_structp, png_const_charp) {}
  static void OnRead(png_structp png, png_bytep to, size_t size) {
    auto* codec = static_cast<PngCodec*>(png_get_io_ptr(png));
    if (!codec->stream_.Read(to, size)) png_error(png, codec->stream_.Problem());
  }

  ImageStream& stream_;
  png_structp png_;
  png_infop info_ = nullptr;
  bool interlaced_ = false;
  bool hasAlpha_ = false;
  int rowsRead_ = 0;
};

}  // namespace

bool IsPng(ImageStream::Bytes head) {
  return head.size >= 8 && png_sig_cmp(head.data, 0, 8) == 0;
}

std::unique_ptr<ImageCodec> NewPngCodec(ImageStream& stream) {
  return std::make_unique<PngCodec>(stream);
}

}  // namespace ZIRK::backends
