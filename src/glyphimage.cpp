#include "glyphimage.h"

#include <zirk/impl/log.h>
#include <zirk/vufont.h>

#include FT_BITMAP_H

#include <algorithm>
#include <memory>

#include "fontfile.h"
#include "freetypeerror.h"

namespace ZIRK {

namespace {

struct StrokerDone {
  void operator()(FT_Stroker stroker) const { FT_Stroker_Done(stroker); }
};
using StrokerHandle = std::unique_ptr<FT_StrokerRec_, StrokerDone>;

/// A bitmap of FreeType's that is given back whatever happens.
struct GreyBitmap {
  explicit GreyBitmap(FT_Library library_) : library(library_) { FT_Bitmap_Init(&bitmap); }
  ~GreyBitmap() { FT_Bitmap_Done(library, &bitmap); }
  GreyBitmap(const GreyBitmap&) = delete;
  GreyBitmap& operator=(const GreyBitmap&) = delete;

  FT_Library library;
  FT_Bitmap bitmap;
};

/// For "return Failed(...)": false, after the line.
bool Failed(const char* format, FT_Error error) {
  const FreeTypeError entry(error);
  ZIRK_LOG_ERROR(format, "LoadGlyph", entry.code, entry.message);
  return false;
}

}  // namespace

GlyphImage::~GlyphImage() {
  FT_Done_Glyph(outlined_);
}

bool GlyphImage::Render(const Glyph& glyph) {
  const FT_Int32 kind = glyph.outlineType == 0 ? FT_LOAD_RENDER : FT_LOAD_NO_BITMAP;
  const FT_Error error =
      FT_Load_Glyph(glyph.face, glyph.index, kind | FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH);
  if (error) {
    const FreeTypeError entry(error);
    ZIRK_LOG_ERROR("%s: failed to load glyph from face %s %s glyph %d FT_Error (0x%02x) : %s",
                   "LoadGlyph", NameOrEmpty(glyph.face->family_name),
                   NameOrEmpty(glyph.face->style_name), static_cast<int>(glyph.index), entry.code,
                   entry.message);
    return false;
  }
  if (glyph.outlineType != 0) return RenderOutlined(glyph);
  FT_GlyphSlot const slot = glyph.face->glyph;
  bitmap_ = &slot->bitmap;
  left_ = slot->bitmap_left;
  top_ = slot->bitmap_top;
  return true;
}

bool GlyphImage::RenderOutlined(const Glyph& glyph) {
  FT_Stroker made = nullptr;
  if (const FT_Error error = FT_Stroker_New(library_, &made))
    return Failed("%s: failed to allocate stroker FT_Error (0x%02x) : %s", error);
  const StrokerHandle stroker(made);
  FT_Stroker_Set(made, glyph.outlineThickness, FT_STROKER_LINECAP_ROUND, FT_STROKER_LINEJOIN_ROUND,
                 0);
  if (const FT_Error error = FT_Get_Glyph(glyph.face->glyph, &outlined_))
    return Failed("%s: failed to get glyph FT_Error (0x%02x) : %s", error);
  if (!Stroke(made, glyph.outlineType)) return false;
  if (const FT_Error error = FT_Glyph_To_Bitmap(&outlined_, FT_RENDER_MODE_NORMAL, nullptr, true))
    return Failed("%s: FT_Error (0x%02x) : %s", error);
  const auto rendered = reinterpret_cast<FT_BitmapGlyph>(outlined_);
  bitmap_ = &rendered->bitmap;
  left_ = rendered->left;
  top_ = rendered->top;
  return true;
}

bool GlyphImage::Stroke(FT_Stroker stroker, int outlineType) {
  FT_Error error = 0;
  switch (static_cast<VuFont::OutlineType>(outlineType)) {
    case VuFont::OutlineType::Stroked:
      error = FT_Glyph_Stroke(&outlined_, stroker, true);
      break;
    case VuFont::OutlineType::Outer:
      error = FT_Glyph_StrokeBorder(&outlined_, stroker, false, true);
      break;
    case VuFont::OutlineType::Inner:
      error = FT_Glyph_StrokeBorder(&outlined_, stroker, true, true);
      break;
    default:
      break;
  }
  return error == 0 || Failed("%s: failed to FT_Error (0x%02x) : %s", error);
}

void GlyphImage::Embolden(const Glyph& glyph, int limit) {
  const FT_Pos strength = glyph.face->size->metrics.height / 50;
  // In whole pixels, as FreeType rounds it.
  const auto added = static_cast<int>((strength + 32) >> 6);
  if (std::max(Width(), Height()) + added > limit) {
    missing_ = added;
    return;
  }
  // Otherwise the slot's bitmap may belong to the rasteriser.
  if (FT_GlyphSlot_Own_Bitmap(glyph.face->glyph)) return;
  FT_Bitmap_Embolden(library_, bitmap_, strength, strength);
}

std::optional<GlyphImage::Coverage> GlyphImage::ToCoverage() {
  const FT_Bitmap& bitmap = *bitmap_;
  const bool isCoverage = bitmap.pixel_mode == FT_PIXEL_MODE_GRAY && bitmap.num_grays == 256;
  if (isCoverage && bitmap.pitch >= 0)
    return Coverage{bitmap.buffer, static_cast<unsigned>(bitmap.pitch)};
  // Bitmaps of 1, 2 or 4 bits, and of colours.
  GreyBitmap converted(library_);
  FT_Bitmap& grey = converted.bitmap;
  if (const FT_Error error = FT_Bitmap_Convert(library_, bitmap_, &grey, 1)) {
    Failed("%s: FT_Error (0x%02x) : %s", error);
    return std::nullopt;
  }
  converted_.resize(size_t(grey.width) * grey.rows);
  const uint8_t* row =
      grey.pitch < 0 ? grey.buffer - ptrdiff_t(grey.pitch) * (int(grey.rows) - 1) : grey.buffer;
  for (unsigned y = 0; y < grey.rows; ++y, row += grey.pitch)
    for (unsigned x = 0; x < grey.width; ++x)
      converted_[size_t(y) * grey.width + x] =
          static_cast<uint8_t>(row[x] * 255 / (grey.num_grays - 1));
  return Coverage{converted_.data(), grey.width};
}

}  // namespace ZIRK
