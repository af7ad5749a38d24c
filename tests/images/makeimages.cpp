// Writes the sample pictures into the folder that it is run in: see README.md.

#include <png.h>
#include <webp/encode.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include <jpeglib.h>

#include "picture.h"

using namespace ZIRK::tests;

namespace {

using Bytes = std::vector<unsigned char>;

/// The whole picture; `pack` gives the bytes of a pixel of this colour in this block of 4 x 4.
template <typename F>
Bytes Packed(F pack) {
  Bytes bytes;
  for (int y = 0; y < kPictureHeight; ++y)
    for (int x = 0; x < kPictureWidth; ++x)
      for (const int value : pack(Gradient(x, y), y / 4 * 8 + x / 4))
        bytes.push_back(static_cast<unsigned char>(value));
  return bytes;
}

unsigned char* Row(Bytes& bytes, int y) {
  return &bytes[bytes.size() / kPictureHeight * static_cast<size_t>(y)];
}

/// One colour for each block.
void SetPalette(png_structp png, png_infop info) {
  png_color colours[40];
  png_byte alpha[40];
  for (int i = 0; i < 40; ++i) {
    const Rgba c = Gradient(i % 8 * 4, i / 8 * 4);
    colours[i] = {png_byte(c.r), png_byte(c.g), png_byte(c.b)};
    alpha[i] = png_byte(c.a);
  }
  png_set_PLTE(png, info, colours, 40);
  png_set_tRNS(png, info, alpha, 40, nullptr);
}

void WritePng(FILE* file, Bytes bytes, int colourType, int depth, int interlace) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, kPictureWidth, kPictureHeight, depth, colourType, interlace,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (colourType == PNG_COLOR_TYPE_PALETTE) SetPalette(png, info);
  png_bytep rows[kPictureHeight];
  for (int y = 0; y < kPictureHeight; ++y) rows[y] = Row(bytes, y);
  png_set_rows(png, info, rows);
  png_write_png(png, info, PNG_TRANSFORM_IDENTITY, nullptr);
  png_destroy_write_struct(&png, &info);
  std::fclose(file);
}

/// Each frequency as it is, in one scan.
constexpr jpeg_scan_info kScans[] = {{3, {0, 1, 2}, 0, 0, 0, 0},
                                     {1, {0}, 1, 63, 0, 0},
                                     {1, {1}, 1, 63, 0, 0},
                                     {1, {2}, 1, 63, 0, 0}};

enum class JpegKind { Plain, Progressive, WithoutAdobeMarker };

void WriteJpeg(FILE* file, Bytes bytes, J_COLOR_SPACE colours, int channels, JpegKind kind) {
  jpeg_compress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  jpeg_stdio_dest(&jpeg, file);
  jpeg.image_width = kPictureWidth;
  jpeg.image_height = kPictureHeight;
  jpeg.in_color_space = colours;
  jpeg.input_components = channels;
  jpeg_set_defaults(&jpeg);
  jpeg_set_quality(&jpeg, 97, TRUE);
  if (kind == JpegKind::WithoutAdobeMarker) jpeg.write_Adobe_marker = FALSE;
  if (kind == JpegKind::Progressive) {
    jpeg.scan_info = kScans;
    jpeg.num_scans = 4;
  }
  jpeg_start_compress(&jpeg, TRUE);
  for (int y = 0; y < kPictureHeight; ++y) {
    JSAMPROW row = Row(bytes, y);
    jpeg_write_scanlines(&jpeg, &row, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  std::fclose(file);
}

void WriteWebp(FILE* file, const Bytes& rgba) {
  uint8_t* out = nullptr;
  const size_t size =
      WebPEncodeLosslessRGBA(rgba.data(), kPictureWidth, kPictureHeight, kPictureWidth * 4, &out);
  std::fwrite(out, 1, size, file);
  WebPFree(out);
  std::fclose(file);
}

}  // namespace

int main() {
  using Values = std::vector<int>;
  const auto create = [](const char* name) { return std::fopen(name, "wb"); };
  const Bytes rgba = Packed([](Rgba c, int) { return Values{c.r, c.g, c.b, c.a}; });
  const Bytes rgb = Packed([](Rgba c, int) { return Values{c.r, c.g, c.b}; });
  const Bytes grey = Packed([](Rgba c, int) { return Values{c.r}; });
  const Bytes invertedInks = Packed([](Rgba c, int) { return Values{c.r, c.g, c.b, 204}; });
  const Bytes inks = Packed([](Rgba c, int) {
    return Values{255 - c.r, 255 - c.g, 255 - c.b, 51};
  });
  const Bytes blocks = Packed([](Rgba, int block) { return Values{block}; });
  const Bytes greyAlpha16 = Packed([](Rgba c, int) {
    // A little less than the same in two bytes, so that only rounding gives the same again.
    const int v = std::max(c.r * 257 - 100, 0), a = std::max(c.a * 257 - 100, 0);
    return Values{v >> 8, v, a >> 8, a};
  });
  const int plain = PNG_INTERLACE_NONE, interlaced = PNG_INTERLACE_ADAM7;
  WritePng(create("rgba8.png"), rgba, PNG_COLOR_TYPE_RGBA, 8, plain);
  WritePng(create("rgba8interlaced.png"), rgba, PNG_COLOR_TYPE_RGBA, 8, interlaced);
  WritePng(create("greyalpha16.png"), greyAlpha16, PNG_COLOR_TYPE_GA, 16, plain);
  WritePng(create("palette8.png"), blocks, PNG_COLOR_TYPE_PALETTE, 8, plain);
  WriteJpeg(create("rgb.jpg"), rgb, JCS_RGB, 3, JpegKind::Plain);
  WriteJpeg(create("progressive.jpg"), rgb, JCS_RGB, 3, JpegKind::Progressive);
  WriteJpeg(create("grey.jpg"), grey, JCS_GRAYSCALE, 1, JpegKind::Plain);
  WriteJpeg(create("cmyk.jpg"), inks, JCS_CMYK, 4, JpegKind::WithoutAdobeMarker);
  WriteJpeg(create("cmykinverted.jpg"), invertedInks, JCS_CMYK, 4, JpegKind::Plain);
  WriteWebp(create("lossless.webp"), rgba);
}
