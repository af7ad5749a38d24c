#pragma once

#include <zirk/glyph.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_GLYPH_H
#include FT_OUTLINE_H
#include FT_STROKER_H

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace ZIRK {

/// One glyph as FreeType renders it.
class GlyphImage {
 public:
  /// A bitmap with a side above `limit` is too large.
  GlyphImage(FT_Library library, int limit) : library_(library), limit_(limit) {}
  ~GlyphImage();
  GlyphImage(const GlyphImage&) = delete;
  GlyphImage& operator=(const GlyphImage&) = delete;

  /// Renders `glyph`. Returns false after an error line. If the face has glyphs beyond the limit,
  /// or this one `isKnown` to be, the outline's box is tested first; a glyph that would exceed the
  /// limit gets its measures but no bitmap, which could take a second and a gigabyte.
  bool Render(const Glyph& glyph, bool isKnown);
  /// Makes the strokes bolder, in proportion to the face's size. A glyph that would exceed the
  /// limit gets only its measures.
  void Embolden(const Glyph& glyph);

  /// These are valid unless the image is too large.
  const FT_Bitmap& Bitmap() const { return *bitmap_; }
  int64_t Width() const { return width_; }
  int64_t Height() const { return height_; }
  bool IsTooLarge() const { return std::max(width_, height_) > limit_; }
  /// Whether Render() or ToCoverage() failed because memory ran out.
  bool LacksMemory() const { return error_ == FT_Err_Out_Of_Memory; }
  int Left() const { return left_; }
  int Top() const { return top_; }

  /// The bitmap in 8 bits of coverage a pixel.
  struct Coverage {
    const uint8_t* pixels;
    unsigned pitch;
  };
  /// Valid as long as the image. Empty after an error line.
  std::optional<Coverage> ToCoverage();

 private:
  bool Load(const Glyph& glyph, FT_Int32 kind);
  bool RenderFilled(const Glyph& glyph, bool look);
  bool RenderOutlined(const Glyph& glyph, bool look);
  bool Stroke(FT_Stroker stroker, int outlineType);
  bool TakeBoxIfTooLarge(const FT_BBox& box);
  void TakeBitmap(FT_Bitmap& bitmap, int left, int top);
  bool Failed(const char* format, FT_Error error);

  FT_Library library_;
  const int limit_;
  FT_Error error_ = 0;
  FT_Glyph outlined_ = nullptr;  ///< Set for outlined glyphs, whose bitmap it holds.
  FT_Bitmap* bitmap_ = nullptr;
  int left_ = 0;
  int top_ = 0;
  int64_t width_ = 0;
  int64_t height_ = 0;
  std::vector<uint8_t> converted_;
};

}  // namespace ZIRK
