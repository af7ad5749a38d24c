#pragma once

/// @file
/// Saves what was drawn as PNG files, and compares bitmaps.

#include <zirk/export.h>
#include <zirk/vubitmap.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>

#include <optional>

namespace ZIRK::kit {

/// Saves the pixels of `bitmap`, which may be a screen, as a PNG file. Pixels are stored without
/// premultiplication and with eight bits per channel; the chunk `sBIT` records formats with fewer
/// bits. The file has an alpha channel only if the format does. A bitmap of format A8 is saved as
/// white with that alpha. For a screen, the pixels are those of the frame being drawn, so save
/// before SwapBuffers().
///
/// An existing file is overwritten. Returns false, with one error line, if the file cannot be
/// written, memory runs out, the pixels cannot be read, or the kit was built without libpng; an
/// incomplete file is removed. Call it from one thread per context at a time.
ZIRK_API bool SavePng(VuBitmap& bitmap, const char* path);
/// The same for `part` of the bitmap, in its pixels. It must lie inside the bounds.
ZIRK_API bool SavePng(VuBitmap& bitmap, VuRect part, const char* path);

/// How much two bitmaps differ.
struct Difference {
  int worst = 0;      ///< The largest difference in any channel, alpha included, from 0 to 255.
  double mean = 0;    ///< The mean difference over all channels of all pixels.
  VuPoint worstAt{};  ///< The first pixel that differs by `worst`, relative to the parts.
};

/// Compares two bitmaps of the same size pixel by pixel, in premultiplied colours with eight bits
/// per channel. They may belong to different contexts and backends, and have different formats.
///
/// If `picture` is not null, the differences of the colours, multiplied by eight and opaque, are
/// written to its top-left corner. It must have the format ARGB8888 and be large enough. Returns
/// nothing, with one error line, if the sizes differ, if memory runs out, or if pixels cannot be
/// read or written. Call it from one thread per context at a time.
ZIRK_API std::optional<Difference> Compare(VuBitmap& a, VuBitmap& b, VuBitmap* picture = nullptr);
/// The same for parts of two bitmaps. Each must lie inside the bounds of its bitmap.
ZIRK_API std::optional<Difference> Compare(VuBitmap& a, VuRect partOfA, VuBitmap& b, VuRect partOfB,
                                           VuBitmap* picture = nullptr);

}  // namespace ZIRK::kit
