#pragma once

#include <zirk/vubitmap.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace ZIRK::support {

/// Pixels as PNG files have them: 0xAARRGGBB, not premultiplied, rows top down without gaps.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels;
};

/// What a bitmap of any format shows; empty, without extent, if its pixels cannot be read.
Picture PictureOf(VuBitmap& bitmap);

/// False, with a line on standard error, if the file cannot be written.
bool WritePng(const char* path, const Picture& picture);
bool WritePng(const char* path, VuBitmap& bitmap);

/// Nothing, with a line on standard error, if the file cannot be read.
std::optional<Picture> ReadPng(const char* path);

}  // namespace ZIRK::support
