#pragma once

/// @file
/// Pictures of what was drawn: saved as files, and compared.

#include <zirk/export.h>
#include <zirk/vubitmap.h>
#include <zirk/vupoint.h>
#include <zirk/vurect.h>

#include <optional>

namespace ZIRK::kit {

/// Saves what `bitmap`, a screen or another bitmap, shows as a PNG file: not premultiplied, eight
/// bits a channel, without alpha where the format has none; `sBIT` tells of fewer bits. A bitmap of
/// alpha alone becomes white of that alpha. Of a screen the drawing counts that is not shown yet,
/// so save before SwapBuffers().
///
/// A part lies inside the bounds. An existing file is overwritten. False, with one error line,
/// where that cannot be, memory runs out, the pixels cannot be read, or the kit was built without
/// libpng; what was written of the file is removed. One thread at a time for each context.
ZIRK_API bool SavePng(VuBitmap& bitmap, const char* path);
/// The same for `part` of the bitmap alone, in pixels of the bitmap.
ZIRK_API bool SavePng(VuBitmap& bitmap, VuRect part, const char* path);

/// How far two pictures are apart.
struct Difference {
  int worst = 0;      ///< The largest of all channels, alpha included, in steps of 255.
  double mean = 0;    ///< Of all channels of all pixels.
  VuPoint worstAt{};  ///< The first pixel with the worst difference, from the parts' corners.
};

/// Compares two bitmaps of the same size pixel by pixel, premultiplied as they are seen, each
/// channel brought to eight bits. They may be of different contexts, backends and formats.
/// `picture`, where it is not null, gets eight times the difference of the colours, opaque, at its
/// top-left corner; it is of ARGB8888 and large enough. Nothing, with one error line, for different
/// sizes, where memory runs out, and where pixels cannot be read or set. One thread at a time for
/// each context.
ZIRK_API std::optional<Difference> Compare(VuBitmap& a, VuBitmap& b, VuBitmap* picture = nullptr);
/// The same for parts of two bitmaps, which lie inside their bounds.
ZIRK_API std::optional<Difference> Compare(VuBitmap& a, VuRect partOfA, VuBitmap& b, VuRect partOfB,
                                           VuBitmap* picture = nullptr);

}  // namespace ZIRK::kit
