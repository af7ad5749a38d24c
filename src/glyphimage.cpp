#include "glyphimage.h"

#include <zirk/impl/log.h>
#include <zirk/vufont.h>

#include FT_BITMAP_H

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "fontfile.h"
#include "freetypeerror.h"

namespace ZIRK {

namespace {

struct StrokerDone {
  void operator()(FT_Stroker stroker) const { FT_Stroker_Done(stroker); }
};
using StrokerHandle = std::unique_ptr<FT_StrokerRec_, StrokerDone>;

/// A FreeType bitmap that is always released.
struct GreyBitmap {
  explicit GreyBitmap(FT_Library library_) : library(library_) { FT_Bitmap_Init(&bitmap); }
  ~GreyBitmap() { FT_Bitmap_Done(library, &bitmap); }
  GreyBitmap(const GreyBitmap&) = delete;
  GreyBitmap& operator=(const GreyBitmap&) = delete;

  FT_Library library;
  FT_Bitmap bitmap;
};

/// Whether some glyph of the face, at its size and with an outline of `radius`, may have a side of
/// more than `limit` pixels.
bool HasGlyphsBeyond(int limit, FT_Face face, FT_Pos radius) {
  if (!FT_IS_SCALABLE(face)) return false;
  const FT_Size_Metrics& scale = face->size->metrics;
  const auto extent = [&](FT_Pos least, FT_Pos most, FT_Fixed factor) {
    return (int64_t{most} - least) * factor / 65536 + 2 * std::abs(int64_t{radius});
  };
  const FT_BBox& box = face->bbox;
  return std::max(extent(box.xMin, box.xMax, scale.x_scale),
                  extent(box.yMin, box.yMax, scale.y_scale)) > int64_t{limit} * 64;
}

}  // namespace

GlyphImage::~GlyphImage() {
  FT_Done_Glyph(outlined_);
}

/// Logs an error and returns false, for use as "return Failed(...)".
bool GlyphImage::Failed(const char* format, FT_Error error) {
  error_ = error;
  const FreeTypeError entry(error);
  ZIRK_LOG_ERROR(format, "LoadGlyph", entry.code, entry.message);
  return false;
}

bool GlyphImage::Render(const Glyph& glyph, bool isKnown) {
  const bool isFilled = glyph.outlineType == 0;
  const FT_Pos radius = isFilled ? 0 : glyph.outlineThickness;
  const bool look = isKnown || HasGlyphsBeyond(limit_, glyph.face, radius);
  return isFilled ? RenderFilled(glyph, look) : RenderOutlined(glyph, look);
}

bool GlyphImage::Load(const Glyph& glyph, FT_Int32 kind) {
  const FT_Error error =
      FT_Load_Glyph(glyph.face, glyph.index, kind | FT_Int32{FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH});
  if (!error) return true;
  error_ = error;
  const FreeTypeError entry(error);
  ZIRK_LOG_ERROR("%s: failed to load glyph from face %s %s glyph %d FT_Error (0x%02x) : %s",
                 "LoadGlyph", NameOrEmpty(glyph.face->family_name),
                 NameOrEmpty(glyph.face->style_name), static_cast<int>(glyph.index), entry.code,
                 entry.message);
  return false;
}

bool GlyphImage::RenderFilled(const Glyph& glyph, bool look) {
  FT_GlyphSlot const slot = glyph.face->glyph;
  if (look) {
    if (!Load(glyph, FT_LOAD_DEFAULT)) return false;
    FT_BBox box{};
    if (slot->format == FT_GLYPH_FORMAT_OUTLINE) FT_Outline_Get_CBox(&slot->outline, &box);
    if (TakeBoxIfTooLarge(box)) return true;
  }
  if (!Load(glyph, FT_LOAD_RENDER)) return false;
  TakeBitmap(slot->bitmap, slot->bitmap_left, slot->bitmap_top);
  return true;
}

bool GlyphImage::RenderOutlined(const Glyph& glyph, bool look) {
  if (!Load(glyph, FT_LOAD_NO_BITMAP)) return false;
  FT_Stroker made = nullptr;
  if (const FT_Error error = FT_Stroker_New(library_, &made))
    return Failed("%s: failed to allocate stroker FT_Error (0x%02x) : %s", error);
  const StrokerHandle stroker(made);
  FT_Stroker_Set(made, glyph.outlineThickness, FT_STROKER_LINECAP_ROUND, FT_STROKER_LINEJOIN_ROUND,
                 0);
  if (const FT_Error error = FT_Get_Glyph(glyph.face->glyph, &outlined_))
    return Failed("%s: failed to get glyph FT_Error (0x%02x) : %s", error);
  if (!Stroke(made, glyph.outlineType)) return false;
  if (look) {
    FT_BBox box;
    FT_Glyph_Get_CBox(outlined_, FT_GLYPH_BBOX_UNSCALED, &box);
    if (TakeBoxIfTooLarge(box)) return true;
  }
  if (const FT_Error error = FT_Glyph_To_Bitmap(&outlined_, FT_RENDER_MODE_NORMAL, nullptr, true))
    return Failed("%s: FT_Error (0x%02x) : %s", error);
  const auto rendered = reinterpret_cast<FT_BitmapGlyph>(outlined_);
  TakeBitmap(rendered->bitmap, rendered->left, rendered->top);
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

/// Takes the measures of an outline from its box, in 1/64 pixel, unless it fits. An outline that
/// FreeType would refuse to render is left to FreeType.
bool GlyphImage::TakeBoxIfTooLarge(const FT_BBox& box) {
  const auto down = [](FT_Pos at) { return at >> 6; };
  const auto up = [](FT_Pos at) { return (at + 63) >> 6; };
  const FT_Pos left = down(box.xMin), right = up(box.xMax);
  const FT_Pos bottom = down(box.yMin), top = up(box.yMax);
  if (std::min(left, bottom) < -0x8000 || std::max(right, top) > 0x7FFF) return false;
  left_ = static_cast<int>(left);
  top_ = static_cast<int>(top);
  width_ = right - left;
  height_ = top - bottom;
  return IsTooLarge();
}

void GlyphImage::TakeBitmap(FT_Bitmap& bitmap, int left, int top) {
  bitmap_ = &bitmap;
  left_ = left;
  top_ = top;
  width_ = bitmap.width;
  height_ = bitmap.rows;
}

void GlyphImage::Embolden(const Glyph& glyph) {
  const FT_Pos strength = glyph.face->size->metrics.height / 50;
  // FreeType rounds it to whole pixels.
  const auto added = static_cast<int>((strength + 32) >> 6);
  width_ += added;
  height_ += added;
  if (IsTooLarge()) return;
  // Otherwise the slot's bitmap may belong to the rasteriser.
  if (!FT_GlyphSlot_Own_Bitmap(glyph.face->glyph))
    FT_Bitmap_Embolden(library_, bitmap_, strength, strength);
  width_ = bitmap_->width;
  height_ = bitmap_->rows;
}

std::optional<GlyphImage::Coverage> GlyphImage::ToCoverage() {
  const FT_Bitmap& bitmap = *bitmap_;
  const bool isCoverage = bitmap.pixel_mode == FT_PIXEL_MODE_GRAY && bitmap.num_grays == 256;
  if (isCoverage && bitmap.pitch >= 0)
    return Coverage{bitmap.buffer, static_cast<unsigned>(bitmap.pitch)};
  // Converts bitmaps of 1, 2 or 4 bits and coloured ones.
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
