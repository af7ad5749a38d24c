#pragma once

#include <zirk/glyph.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_GLYPH_H
#include FT_STROKER_H

#include <cstdint>
#include <optional>
#include <vector>

namespace ZIRK {

/// One glyph as FreeType renders it.
class GlyphImage {
 public:
  explicit GlyphImage(FT_Library library) : library_(library) {}
  ~GlyphImage();
  GlyphImage(const GlyphImage&) = delete;
  GlyphImage& operator=(const GlyphImage&) = delete;

  /// Renders what `glyph` names. False after an error line.
  bool Render(const Glyph& glyph);
  /// Makes the strokes bolder, by an amount that goes with the face's size. A bitmap that would
  /// exceed `limit` on a side only gets the size: the pixels could take minutes.
  void Embolden(const Glyph& glyph, int limit);

  const FT_Bitmap& Bitmap() const { return *bitmap_; }
  /// Of the bitmap; where it was too large to be made bolder, what it would have then.
  int64_t Width() const { return int64_t{bitmap_->width} + missing_; }
  int64_t Height() const { return int64_t{bitmap_->rows} + missing_; }
  int Left() const { return left_; }
  int Top() const { return top_; }

  /// The bitmap in 8 bits of coverage a pixel.
  struct Coverage {
    const uint8_t* pixels;
    unsigned pitch;
  };
  /// Valid while the image is. Nothing after an error line.
  std::optional<Coverage> ToCoverage();

 private:
  bool RenderOutlined(const Glyph& glyph);
  bool Stroke(FT_Stroker stroker, int outlineType);

  FT_Library library_;
  FT_Glyph outlined_ = nullptr;  ///< Set for outlined glyphs, whose bitmap it holds.
  FT_Bitmap* bitmap_ = nullptr;
  int left_ = 0;
  int top_ = 0;
  int missing_ = 0;  ///< Columns and rows that emboldening would have added.
  std::vector<uint8_t> converted_;
};

}  // namespace ZIRK
