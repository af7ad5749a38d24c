// Writes the sample pictures into the folder given: see README.md.

#include <png.h>
#include <webp/encode.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <jpeglib.h>

#include "picture.h"

using namespace ZIRK::tests;

namespace {

using Bytes = std::vector<unsigned char>;

FILE* Create(const std::string& path) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) std::perror(path.c_str()), std::exit(1);
  return file;
}

/// Appends one pixel to a row.
using Pack = std::function<void(Bytes& row, int x, int y)>;

Pack Channels(Picture picture, const char* which, int bytesEach) {
  return [=](Bytes& row, int x, int y) {
    const Rgba c = picture(x, y);
    for (const char* p = which; *p; ++p) {
      const int v = *p == 'r' ? c.r : *p == 'g' ? c.g : *p == 'b' ? c.b : c.a;
      // In two bytes a little less, so that only rounding gives the same again.
      const int word = std::max(v * 257 - 100, 0);
      if (bytesEach == 2) row.push_back(static_cast<unsigned char>(word >> 8));
      row.push_back(static_cast<unsigned char>(bytesEach == 2 ? word : v));
    }
  };
}

struct PngKind {
  int depth;
  int colourType;
  int interlace;
};

void WritePng(const std::string& path, PngKind kind, const Pack& pack,
              const std::function<void(png_structp, png_infop)>& setUp = nullptr) {
  FILE* file = Create(path);
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, kPictureWidth, kPictureHeight, kind.depth, kind.colourType,
               kind.interlace, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (setUp) setUp(png, info);
  png_write_info(png, info);
  png_set_packing(png);
  std::vector<Bytes> rows(kPictureHeight);
  std::vector<png_bytep> pointers;
  for (int y = 0; y < kPictureHeight; ++y) {
    Bytes& row = rows[static_cast<size_t>(y)];
    for (int x = 0; x < kPictureWidth; ++x) pack(row, x, y);
    pointers.push_back(row.data());
  }
  png_write_image(png, pointers.data());
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  std::fclose(file);
}

void AddPalette(png_structp png, png_infop info) {
  std::vector<png_color> palette;
  Bytes alpha;
  for (int y = 0; y < kPictureHeight; y += 4) {
    for (int x = 0; x < kPictureWidth; x += 4) {
      const Rgba c = Blocks(x, y);
      palette.push_back(
          {static_cast<png_byte>(c.r), static_cast<png_byte>(c.g), static_cast<png_byte>(c.b)});
      alpha.push_back(static_cast<unsigned char>(c.a));
    }
  }
  png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
  png_set_tRNS(png, info, alpha.data(), static_cast<int>(alpha.size()), nullptr);
}

void AddKey(png_structp png, png_infop info) {
  const Rgba c = Colours(5, 3);
  const auto channel = [](int v) { return static_cast<png_uint_16>(v); };
  const png_color_16 key{0, channel(c.r), channel(c.g), channel(c.b), 0};
  png_set_tRNS(png, info, nullptr, 0, &key);
}

struct JpegKind {
  J_COLOR_SPACE given;
  J_COLOR_SPACE stored;
  bool adobe;
  bool progressive;
};

void WriteJpeg(const std::string& path, JpegKind kind, const Pack& pack) {
  FILE* file = Create(path);
  jpeg_compress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_compress(&jpeg);
  jpeg_stdio_dest(&jpeg, file);
  jpeg.image_width = kPictureWidth;
  jpeg.image_height = kPictureHeight;
  jpeg.in_color_space = kind.given;
  jpeg.input_components = kind.given == JCS_CMYK ? 4 : kind.given == JCS_RGB ? 3 : 1;
  jpeg_set_defaults(&jpeg);
  jpeg_set_colorspace(&jpeg, kind.stored);
  jpeg.write_Adobe_marker = kind.adobe;
  jpeg_set_quality(&jpeg, 97, TRUE);
  if (kind.progressive) jpeg_simple_progression(&jpeg);
  jpeg_start_compress(&jpeg, TRUE);
  for (int y = 0; y < kPictureHeight; ++y) {
    Bytes row;
    for (int x = 0; x < kPictureWidth; ++x) pack(row, x, y);
    JSAMPROW pointer = row.data();
    jpeg_write_scanlines(&jpeg, &pointer, 1);
  }
  jpeg_finish_compress(&jpeg);
  jpeg_destroy_compress(&jpeg);
  std::fclose(file);
}

/// Cyan, magenta, yellow, black; `full` is the byte for full ink.
Pack Inks(int full) {
  return [=](Bytes& row, int x, int y) {
    const Rgba c = Colours(x, y);
    for (const int light : {c.r, c.g, c.b, 204})
      row.push_back(static_cast<unsigned char>(full ? 255 - light : light));
  };
}

void WriteWebp(const std::string& path, bool lossless) {
  Bytes pixels;
  const Pack pack = Channels(Translucent, "rgba", 1);
  for (int y = 0; y < kPictureHeight; ++y)
    for (int x = 0; x < kPictureWidth; ++x) pack(pixels, x, y);
  uint8_t* out = nullptr;
  constexpr int kPitch = kPictureWidth * 4;
  const size_t size =
      lossless ? WebPEncodeLosslessRGBA(pixels.data(), kPictureWidth, kPictureHeight, kPitch, &out)
               : WebPEncodeRGBA(pixels.data(), kPictureWidth, kPictureHeight, kPitch, 98, &out);
  FILE* file = Create(path);
  std::fwrite(out, 1, size, file);
  std::fclose(file);
  WebPFree(out);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : ".";
  const auto at = [&](const char* name) { return folder + "/" + name; };
  const int plain = PNG_INTERLACE_NONE;
  WritePng(at("rgb8.png"), {8, PNG_COLOR_TYPE_RGB, plain}, Channels(Colours, "rgb", 1));
  WritePng(at("rgb8key.png"), {8, PNG_COLOR_TYPE_RGB, plain}, Channels(Colours, "rgb", 1), AddKey);
  WritePng(at("rgba8.png"), {8, PNG_COLOR_TYPE_RGBA, plain}, Channels(Translucent, "rgba", 1));
  WritePng(at("rgba8interlaced.png"), {8, PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_ADAM7},
           Channels(Translucent, "rgba", 1));
  WritePng(at("rgba16.png"), {16, PNG_COLOR_TYPE_RGBA, plain}, Channels(Translucent, "rgba", 2));
  WritePng(at("grey8.png"), {8, PNG_COLOR_TYPE_GRAY, plain}, Channels(Grey, "r", 1));
  WritePng(at("greyalpha16.png"), {16, PNG_COLOR_TYPE_GA, plain},
           Channels(TranslucentGrey, "ra", 2));
  WritePng(at("grey1.png"), {1, PNG_COLOR_TYPE_GRAY, plain},
           [](Bytes& row, int x, int y) { row.push_back(BlackAndWhite(x, y).r ? 1 : 0); });
  constexpr int kBlocksAcross = (kPictureWidth + 3) / 4;
  WritePng(
      at("palette8.png"), {8, PNG_COLOR_TYPE_PALETTE, plain},
      [](Bytes& row, int x, int y) {
        row.push_back(static_cast<unsigned char>(y / 4 * kBlocksAcross + x / 4));
      },
      AddPalette);
  WriteJpeg(at("rgb.jpg"), {JCS_RGB, JCS_YCbCr, false, false}, Channels(Colours, "rgb", 1));
  WriteJpeg(at("progressive.jpg"), {JCS_RGB, JCS_YCbCr, false, true}, Channels(Colours, "rgb", 1));
  WriteJpeg(at("grey.jpg"), {JCS_GRAYSCALE, JCS_GRAYSCALE, false, false}, Channels(Grey, "r", 1));
  WriteJpeg(at("cmyk.jpg"), {JCS_CMYK, JCS_CMYK, false, false}, Inks(255));
  WriteJpeg(at("cmykinverted.jpg"), {JCS_CMYK, JCS_CMYK, true, false}, Inks(0));
  WriteJpeg(at("ycck.jpg"), {JCS_CMYK, JCS_YCCK, true, false}, Inks(0));
  WriteWebp(at("lossless.webp"), true);
  WriteWebp(at("lossy.webp"), false);
}
