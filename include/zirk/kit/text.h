#pragma once

/// @file
/// Lines of text from strings that need not be terminated.

#include <zirk/export.h>
#include <zirk/vubitmap.h>
#include <zirk/vufont.h>

#include <string_view>

namespace ZIRK::kit {

/// Draws one line of UTF-8 as VuBitmap::DrawText() does, kerning included. `pos` is the top-left
/// corner of the line's box. Null bytes are passed over like bytes that are no UTF-8. Allocates
/// nothing. Threads as for VuBitmap::DrawText().
ZIRK_API void DrawText(VuBitmap& target, const VuFont& font, std::string_view text, VuPoint pos,
                       VuColor color);
/// The same, mapped to the surface by `t`.
ZIRK_API void DrawText(VuBitmap& target, const VuFont& font, std::string_view text, VuPoint pos,
                       VuColor color, VuTransform t);

/// Width in pixels of what DrawText() draws, as VuFont::GetOneLineWidth() measures it; the largest
/// or smallest number there is where it is beyond that. Allocates nothing but what the font keeps
/// of characters that are new to it. Any thread may call.
ZIRK_API int GetWidth(const VuFont& font, std::string_view text);

}  // namespace ZIRK::kit
