#pragma once

/// @file
/// Draws and measures lines of text in strings that need no terminating zero.

#include <zirk/export.h>
#include <zirk/vubitmap.h>
#include <zirk/vufont.h>

#include <string_view>

namespace ZIRK::kit {

/// Draws one line of UTF-8 as VuBitmap::DrawText() does, kerning included. `pos` is the top-left
/// corner of the line's box. Null bytes and bytes that are not UTF-8 are skipped. Allocates
/// nothing. Threads as for VuBitmap::DrawText().
ZIRK_API void DrawText(VuBitmap& target, const VuFont& font, std::string_view text, VuPoint pos,
                       VuColor color);
/// The same, mapped to the surface by `t`.
ZIRK_API void DrawText(VuBitmap& target, const VuFont& font, std::string_view text, VuPoint pos,
                       VuColor color, VuTransform t);

/// The width in pixels of the text that DrawText() draws, as VuFont::GetOneLineWidth() measures it.
/// A width outside the range of `int` becomes the nearest `int`. Only characters that are new to
/// the font make it allocate memory. Any thread may call.
[[nodiscard]] ZIRK_API int GetWidth(const VuFont& font, std::string_view text);

}  // namespace ZIRK::kit
