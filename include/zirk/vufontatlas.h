#pragma once

#include <zirk/export.h>
#include <zirk/glyph.h>
#include <zirk/impl/vufontimpl.h>

#include <cstdint>
#include <memory>

// Only callers of VuFontAtlas::GetKerning() need the fields of FT_Vector, which FreeType's headers
// define. Everything else compiles without them.
#if __has_include(<ft2build.h>)
#include <ft2build.h>
#include FT_FREETYPE_H
#else
using FT_Vector = struct FT_Vector_;
#endif

namespace ZIRK {

class VuBitmapImpl;
class VuGraphicsImpl;
class VuTextureAtlasImpl;

/// A walk along one line of UTF-8 text, from glyph to glyph. See VuFontAtlas::NextGlyph().
struct TextCursor {
  /// A cursor at the beginning of `text_`, which must live as long as the walk.
  explicit TextCursor(const char* text_) : text(text_), next(text_) {}

  const char* text;                 ///< The whole string. Null is an empty one.
  const char* next;                 ///< The next byte to read.
  const Glyph* previous = nullptr;  ///< The glyph that was returned last.
  int64_t pen = 0;    ///< Pen position of that glyph, in pixels from the line's beginning.
  int64_t width = 0;  ///< Pen position after that glyph: the width so far.
};

/// What a face was opened from, and how it was asked for. The pointers are the font's own: they are
/// valid until the font is deleted or gets another fallback font.
struct FontSource {
  const char* path = nullptr;     ///< The font file's; null for a file in memory.
  const uint8_t* data = nullptr;  ///< The file in memory; null for one with a path.
  uint32_t size = 0;              ///< Bytes of `data`.
  int32_t faceIndex = 0;          ///< Which face of the file.
  int32_t pixelSize = 0;          ///< As it was asked for.
  bool bold = false;              ///< As it was asked for, whatever the face is.
  bool italic = false;            ///< As it was asked for, whatever the face is.
};

/// The library's own font implementation: a FreeType face at one size, its glyphs, and the atlas
/// from which they are drawn.
///
///     TextCursor cursor(text);
///     while (const Glyph* glyph = font.NextGlyph(cursor, true)) {
///       Place(*glyph, cursor.pen + glyph->left);
///     }
///
/// A font that could not be opened has no face: its metrics are 0 and it has no glyphs.
///
/// **Threads**: any thread may call GetGlyph(), NextGlyph(), GetKerning(), GetOneLineWidth(),
/// GetAtlas() and the metrics. The setters, and what is marked as being for the font's own use,
/// must not run at the same time as another call. A backend that draws on several threads lets only
/// one of them draw from an atlas at a time: the position of a glyph is read after GetGlyph()
/// returns, and rendering another glyph may move it.
class ZIRK_API VuFontAtlas : public VuFontImpl {
 public:
  /// Free pixels to the right of each glyph in the atlas, and below it.
  static const int margin_ = 2;

  /// Opens a face of the font file `path`; the arguments are those of VuFont::CreateFontEx(). Logs
  /// an error if the file does not open. A null path raises std::logic_error.
  VuFontAtlas(const char* path, int faceIndex, int pixelSize, bool bold, bool italic);
  /// Opens a face of the font file of `size` bytes at `data`, which is copied. Logs an error if it
  /// does not open or `data` is null.
  VuFontAtlas(const unsigned char* data, unsigned int size, int faceIndex, int pixelSize, bool bold,
              bool italic);
  ~VuFontAtlas() override;

  void GetFontMetrics(int& height, int& ascender, int& descender, int& maxAdvance) const override;
  int GetOneLineWidth(const char* text) const override;
  [[nodiscard]] int GetOneLineHeight() const override;
  [[nodiscard]] int GetAscent() const override;
  [[nodiscard]] int GetDescent() const override;
  [[nodiscard]] int GetMaxAdvance() const override;
  void GetUnderlineMetrics(int& position, int& thickness) const override;

  /// Opens a second face on the file of `font`, at its size. Null, and a font that is not a
  /// VuFontAtlas, leave this font without a fallback. All cached glyphs are dropped.
  void SetFallbackFont(const VuFontImpl* font) override;

  /// The main face, owned by the font; null if the font could not be opened.
  [[nodiscard]] FT_Face GetFontFace() const;

  /// What the font was made of, whether or not that could be opened.
  [[nodiscard]] FontSource GetSource() const;
  /// What the fallback font's face was opened from, as neither bold nor italic; without a path and
  /// data where there is none.
  [[nodiscard]] FontSource GetFallbackSource() const;

  /// @name For backends that draw text
  /// @{

  /// The font's atlas, of VuPixelFormat::A8, shared with the font. The first call creates it with
  /// `graphics`, which must outlive the atlas's bitmap, and places all glyphs that were measured so
  /// far. Later calls return the same atlas, whatever `graphics` is. Empty without a face. Any
  /// thread may call.
  std::shared_ptr<VuTextureAtlasImpl> GetAtlas(VuGraphicsImpl* graphics) const;

  /// The glyph for a code point with the present outline, owned by the font. With `render` it is
  /// also placed in the atlas, if there is one and it has room. A code point that neither this font
  /// nor the fallback font has gives the fallback glyph, or the font's shape for missing glyphs.
  /// Returns null without a face, and if a stand-in that was found earlier cannot be loaded again.
  /// A glyph that FreeType cannot load has no bitmap and logs an error. Any thread may call.
  const Glyph* GetGlyph(unsigned long charcode, bool render) const;

  /// Kerning between two glyphs in 1/64 pixel, added to the advance of `left`. Zeros for glyphs of
  /// different faces and for a face without the table "kern". A caller compiles with FreeType's
  /// headers (`pkg-config --cflags zirk freetype2`). Any thread may call.
  FT_Vector GetKerning(const Glyph& left, const Glyph& right) const;

  /// Moves `cursor` to the line's next glyph and returns it, or null at the end of the line. Pen
  /// positions include kerning, exactly as GetOneLineWidth() measures them. Bytes that are not
  /// UTF-8 are skipped, with an info line. With `render` the glyph is placed as by GetGlyph(), but
  /// one that a full atlas left out is not tried again. Any thread may call, each with a cursor of
  /// its own.
  const Glyph* NextGlyph(TextCursor& cursor, bool render) const;

  /// Makes room for a glyph that NextGlyph() left out of the full atlas.
  ///
  /// Usually it empties the atlas, which moves all glyphs: the caller must complete the drawing of
  /// earlier glyphs first. The glyph is then placed, its `inAtlas` is set, and the result is empty.
  /// If most glyphs of the atlas would only have to be placed again, the atlas stays as it is and
  /// the result is a bitmap of this glyph alone, of the glyph's size. The result is empty, and
  /// `inAtlas` unset, for a glyph that no atlas can hold. Throws std::bad_alloc.
  [[nodiscard]] std::shared_ptr<VuBitmapImpl> PlaceLeftOut(const Glyph& glyph) const;

  /// @}

  /// @name For the font's own use
  /// @{

  /// Opens face number `faceIndex` of the file `path` at `pixelSize`. Returns 0, or FreeType's
  /// error after an error line. Stores the face, or null, in `*face`; the caller frees it with
  /// FT_Done_Face().
  int NewFace(const char* path, int faceIndex, int pixelSize, FT_Face* face);
  /// The same for the font file in memory that the font was made from.
  int NewFaceFromMemory(int faceIndex, int pixelSize, FT_Face* face);
  /// Looks up a code point and caches its glyph with the present outline. With `render`, also
  /// places it in the atlas.
  void AddGlyph(unsigned int charcode, bool render) const;
  /// Reads a glyph's metrics from its face and, with `render`, places its bitmap in the atlas.
  void LoadGlyph(Glyph& glyph, bool render) const;
  /// Marks all glyphs as not in the atlas, and empties the atlas.
  void ResetGlyphs() const;
  /// Drops all glyphs, kerning and the font's share in the atlas.
  void ClearGlyphs() const;

  /// @}

 private:
  struct ZIRK_LOCAL State;

  ZIRK_LOCAL const Glyph* Find(uint32_t code, bool render, bool insist) const;
  ZIRK_LOCAL const Glyph* FindOrLoad(uint32_t code, bool render, bool insist) const;
  ZIRK_LOCAL int Measure(const char* text) const;

  std::unique_ptr<State> state_;
};

}  // namespace ZIRK
