#include "pngfile.h"

#include <png.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

namespace ZIRK::kit {

namespace {

uint8_t Straight(uint32_t value, uint32_t alpha) {
  if (alpha == 0) return 0;
  return static_cast<uint8_t>(std::min(255u, (value * 255 + alpha / 2) / alpha));
}

/// An error in libpng jumps back to the setjmp() of Write(). No object with a destructor is created
/// after that call.
class PngWriter {
 public:
  PngWriter(const std::vector<uint32_t>& pixels, int width, const Channels& channels)
      : pixels_(pixels),
        width_(static_cast<size_t>(width)),
        channels_(channels),
        row_(4 * width_),
        png_(png_create_write_struct(PNG_LIBPNG_VER_STRING, this, OnError, OnWarning)),
        info_(png_ ? png_create_info_struct(png_) : nullptr) {}
  ~PngWriter() { png_destroy_write_struct(&png_, &info_); }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  bool Write(FILE* file) {
    if (!info_ || setjmp(png_jmpbuf(png_)) != 0) return false;
    png_init_io(png_, file);
    WriteHead();
    WriteRows();
    png_write_end(png_, nullptr);
    return true;
  }
  const char* Problem() const { return problem_; }

 private:
  bool HasColor() const { return channels_.blue > 0; }
  bool HasAlpha() const { return channels_.alpha > 0; }

  void WriteHead() {
    const int color = HasColor() ? PNG_COLOR_MASK_COLOR : 0;
    const int alpha = HasAlpha() ? PNG_COLOR_MASK_ALPHA : 0;
    png_set_IHDR(png_, info_, static_cast<png_uint_32>(width_),
                 static_cast<png_uint_32>(pixels_.size() / width_), 8, color | alpha,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (HasColor() && channels_.blue < 8) {
      png_color_8 bits{};
      bits.red = static_cast<png_byte>(channels_.red);
      bits.green = static_cast<png_byte>(channels_.green);
      bits.blue = static_cast<png_byte>(channels_.blue);
      bits.alpha = static_cast<png_byte>(channels_.alpha);
      png_set_sBIT(png_, info_, &bits);
    }
    png_write_info(png_, info_);
  }

  void WriteRows() {
    for (size_t start = 0; start < pixels_.size(); start += width_) {
      uint8_t* to = row_.data();
      for (size_t i = start; i < start + width_; ++i) to = Put(pixels_[i], to);
      png_write_row(png_, row_.data());
    }
  }

  uint8_t* Put(uint32_t pixel, uint8_t* to) const {
    const uint32_t alpha = pixel >> 24;
    if (HasColor()) {
      for (const unsigned shift : {16, 8, 0}) *to++ = Straight(pixel >> shift & 255, alpha);
    } else {
      *to++ = 255;
    }
    if (HasAlpha()) *to++ = static_cast<uint8_t>(alpha);
    return to;
  }

  [[noreturn]] static void OnError(png_structp png, png_const_charp message) {
    auto* const writer = static_cast<PngWriter*>(png_get_error_ptr(png));
    std::snprintf(writer->problem_, sizeof writer->problem_, "%s", message);
    png_longjmp(png, 1);
  }
  static void OnWarning(png_structp, png_const_charp) {}

  const std::vector<uint32_t>& pixels_;
  const size_t width_;
  const Channels channels_;
  std::vector<uint8_t> row_;
  char problem_[100] = "no memory for libpng";
  png_structp png_;
  png_infop info_;
};

}  // namespace

std::string WritePngFile(const char* path, const std::vector<uint32_t>& pixels, int width,
                         const Channels& channels) {
  PngWriter writer(pixels, width, channels);
  FILE* const file = std::fopen(path, "wbe");
  if (!file) return std::strerror(errno);
  errno = 0;
  const bool isWritten = writer.Write(file);
  const bool isClosed = std::fclose(file) == 0;
  if (isWritten && isClosed) return {};
  std::string problem = errno != 0 ? std::strerror(errno) : writer.Problem();
  std::error_code ignored;
  // A device, such as /dev/full, is not removed.
  if (std::filesystem::is_regular_file(path, ignored)) std::remove(path);
  return problem;
}

}  // namespace ZIRK::kit
