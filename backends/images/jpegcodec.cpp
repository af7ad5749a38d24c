#include <algorithm>
#include <csetjmp>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>

#include "images/imagecodec.h"
// After <cstdio>, which these do not include themselves.
#include <jpeglib.h>

#include <jerror.h>

#ifndef JCS_ALPHA_EXTENSIONS
#error "libjpeg-turbo is needed: it writes 32-bit pixels"
#endif

namespace ZIRK::backends {

namespace {

constexpr J_COLOR_SPACE kArgb = kLittleEndian ? JCS_EXT_BGRA : JCS_EXT_ARGB;

/// Several times the number in usual files. A scan of a few bytes goes over the whole picture.
constexpr int kMostScans = 100;

/// Bytes of cyan, magenta, yellow and black to ARGB8888, in place. XORed with `flip`, a byte is 0
/// for full ink.
void CmykToArgb(uint32_t* row, int width, uint8_t flip) {
  for (int x = 0; x < width; ++x) {
    uint8_t inks[4];
    std::memcpy(inks, &row[x], sizeof inks);
    const uint32_t black = inks[3] ^ flip;
    const auto channel = [&](int i) { return (uint32_t(inks[i] ^ flip) * black + 127) / 255; };
    row[x] = 0xFF000000u | channel(0) << 16 | channel(1) << 8 | channel(2);
  }
}

/// Warnings after which the picture has holes. The others concern data that is not used.
bool IsDamage(int messageCode) {
  switch (messageCode) {
    case JWRN_ARITH_BAD_CODE:
    case JWRN_BOGUS_PROGRESSION:
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_JPEG_EOF:
    case JWRN_MUST_RESYNC:
    case JWRN_NOT_SEQUENTIAL:
      return true;
    default:
      return false;
  }
}

/// An error in libjpeg jumps back to the setjmp() of the operation. No object with a destructor is
/// created after that call.
class JpegCodec final : public ImageCodec {
 public:
  explicit JpegCodec(ImageStream& stream) : stream_(stream) {
    jpeg_.err = jpeg_std_error(&errors_);
    errors_.error_exit = OnError;
    errors_.emit_message = OnMessage;
    progress_.progress_monitor = OnProgress;
    source_.init_source = [](j_decompress_ptr) {};
    source_.fill_input_buffer = OnFill;
    source_.skip_input_data = OnSkip;
    source_.resync_to_restart = jpeg_resync_to_restart;
    source_.term_source = [](j_decompress_ptr) {};
  }
  ~JpegCodec() override { jpeg_destroy_decompress(&jpeg_); }
  JpegCodec(const JpegCodec&) = delete;
  JpegCodec& operator=(const JpegCodec&) = delete;

  bool ReadHeader() override {
    jpeg_.client_data = this;
    if (setjmp(escape_) != 0) return false;
    jpeg_create_decompress(&jpeg_);
    jpeg_.src = &source_;
    jpeg_.progress = &progress_;
    jpeg_read_header(&jpeg_, TRUE);
    width_ = static_cast<int>(jpeg_.image_width);
    height_ = static_cast<int>(jpeg_.image_height);
    return true;
  }

  void ShrinkTowards(int width, int height) override {
    while (shrink_ < 8 && width_ / (shrink_ * 2) >= width && height_ / (shrink_ * 2) >= height)
      shrink_ *= 2;
  }

  bool ReadRow(uint32_t* row) override {
    if (setjmp(escape_) != 0) return false;
    if (!begun_) Begin();
    auto* bytes = reinterpret_cast<JSAMPROW>(row);
    jpeg_read_scanlines(&jpeg_, &bytes, 1);
    if (jpeg_.output_scanline == jpeg_.output_height) jpeg_finish_decompress(&jpeg_);
    // Files with this marker store their inks inverted.
    if (jpeg_.out_color_space == JCS_CMYK)
      CmykToArgb(row, RowWidth(), jpeg_.saw_Adobe_marker ? 0 : 255);
    return true;
  }

  bool ReadAll(uint32_t* pixels, int pitch) override {
    for (int y = 0; y < RowCount(); ++y)
      if (!ReadRow(RowAt(pixels, pitch, y))) return false;
    return true;
  }

 private:
  void Begin() {
    begun_ = true;
    const bool cmyk = jpeg_.jpeg_color_space == JCS_CMYK || jpeg_.jpeg_color_space == JCS_YCCK;
    jpeg_.out_color_space = cmyk ? JCS_CMYK : kArgb;
    // A progressive picture is held in memory as a whole, with up to eight bytes per pixel.
    jpeg_.mem->max_memory_to_use =
        static_cast<long>(std::min<uint64_t>(memoryLimit_, std::numeric_limits<long>::max()));
    jpeg_.scale_num = 1;
    jpeg_.scale_denom = static_cast<unsigned>(shrink_);
    jpeg_start_decompress(&jpeg_);
    if (jpeg_.output_width != static_cast<unsigned>(RowWidth()) ||
        jpeg_.output_height != static_cast<unsigned>(RowCount()))
      Escape("unexpected size");
  }

  /// Makes the operation fail: jumps back to its setjmp().
  [[noreturn]] void Escape(const char* reason) {
    Fail(reason);
    std::longjmp(escape_, 1);
  }

  template <typename Info>
  static JpegCodec& Of(Info* info) {
    return *static_cast<JpegCodec*>(info->client_data);
  }
  [[noreturn]] static void OnError(j_common_ptr info) {
    char message[JMSG_LENGTH_MAX];
    info->err->format_message(info, message);
    Of(info).Escape(message);
  }
  static void OnMessage(j_common_ptr info, int level) {
    if (level < 0 && IsDamage(info->err->msg_code)) OnError(info);
  }
  static void OnProgress(j_common_ptr info) {
    const int scans = reinterpret_cast<j_decompress_ptr>(info)->input_scan_number;
    if (scans > kMostScans) Of(info).Escape("too many scans");
  }
  static boolean OnFill(j_decompress_ptr info) {
    JpegCodec& codec = Of(info);
    const ImageStream::Bytes bytes = codec.stream_.Take();
    if (bytes.size == 0) codec.Escape(codec.stream_.Problem());
    codec.source_.next_input_byte = bytes.data;
    codec.source_.bytes_in_buffer = bytes.size;
    return TRUE;
  }
  static void OnSkip(j_decompress_ptr info, long count) {
    jpeg_source_mgr& source = Of(info).source_;
    size_t left = count > 0 ? static_cast<size_t>(count) : 0;
    while (left > source.bytes_in_buffer) {
      left -= source.bytes_in_buffer;
      OnFill(info);
    }
    source.next_input_byte += left;
    source.bytes_in_buffer -= left;
  }

  ImageStream& stream_;
  jpeg_decompress_struct jpeg_{};
  jpeg_error_mgr errors_{};
  jpeg_progress_mgr progress_{};
  jpeg_source_mgr source_{};
  jmp_buf escape_{};
  bool begun_ = false;
};

}  // namespace

bool IsJpeg(ImageStream::Bytes head) {
  return head.size >= 3 && head.data[0] == 0xFF && head.data[1] == 0xD8 && head.data[2] == 0xFF;
}

std::unique_ptr<ImageCodec> NewJpegCodec(ImageStream& stream) {
  return std::make_unique<JpegCodec>(stream);
}

}  // namespace ZIRK::backends
