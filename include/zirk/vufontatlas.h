#pragma once

#include <zirk/export.h>
#include <zirk/glyph.h>
#include <zirk/impl/vufontimpl.h>

#include <cstdint>
#include <memory>

// FreeType's headers say what FT_Vector holds, which only callers of VuFontAtlas::GetKerning()
// need. Everything else compiles without them.
#if __has_include(<ft2build.h>)
#include <ft2build.h>
#include FT_FREETYPE_H
#else
typedef struct FT_Vector_ FT_Vector;
#endif

namespace ZIRK {

class VuBitmapImpl;
class VuGraphicsImpl;
class VuTextureAtlasImpl;

/// A walk along one line of UTF-8 text, from glyph to glyph. See VuFontAtlas::NextGlyph().
struct TextCursor {
  /// At the beginning of `text_`, which has to live as long as the walk.
  explicit TextCursor(const char* text_) : text(text_), next(text_) {}

  const char* text;                 ///< The whole string. Null is an empty one.
  const char* next;                 ///< What is still to be read.
  const Glyph* previous = nullptr;  ///< The glyph that was returned last.
  int64_t pen = 0;    ///< Where that glyph's pen stands, in pixels from the line's beginning.
  int64_t width = 0;  ///< Where the pen stands after it: the width so far.
};

/// The font that the library makes: a FreeType face at one size, its glyphs, and the atlas that
/// they are drawn from.
///
/// A font that could not be opened has no face: its metrics are 0 and it has no glyphs.
///
/// Any thread may call GetGlyph(), NextGlyph(), GetKerning(), GetOneLineWidth(), GetAtlas() and
/// the metrics; the setters, and what is said to be for the font's own use, may not run at the
/// same time as another call. A backend that draws on several threads keeps those that draw from
/// one atlas apart: where a glyph lies is read after GetGlyph() has returned, and rendering
/// another one may move it.
class ZIRK_API VuFontAtlas : public VuFontImpl {
 public:
  /// Free pixels on the right of and below each glyph in the atlas.
  static const int margin_ = 2;

  /// `pixelSize` is FreeType's nominal height. `bold` emboldens a face that is not bold when its
  /// glyphs are rendered; `italic` is only recorded. `path` is not null.
  VuFontAtlas(const char* path, int faceIndex, int pixelSize, bool bold, bool italic);
  /// A font file in memory, which is copied.
  VuFontAtlas(const unsigned char* data, unsigned int size, int faceIndex, int pixelSize, bool bold,
              bool italic);
  ~VuFontAtlas() override;

  void GetFontMetrics(int& height, int& ascender, int& descender, int& maxAdvance) const override;
  int GetOneLineWidth(const char* text) const override;
  int GetOneLineHeight() const override;
  int GetAscent() const override;
  int GetDescent() const override;
  int GetMaxAdvance() const override;
  void GetUnderlineMetrics(int& position, int& thickness) const override;

  /// Opens a face of this font's own on the other font's file, at its size. A font that is no
  /// VuFontAtlas, or null, leaves this one without. All cached glyphs are forgotten.
  void SetFallbackFont(const VuFontImpl* font) override;

  /// The face, null if there is none.
  FT_Face GetFontFace() const;

  // For backends that draw text.

  /// The font's atlas, of VuPixelFormat::A8. The first call makes it, with `graphics`, which has
  /// to outlive its bitmap, and places all glyphs that were measured so far; later ones return the
  /// same whatever `graphics` is. Empty without a face.
  std::shared_ptr<VuTextureAtlasImpl> GetAtlas(VuGraphicsImpl* graphics) const;

  /// The glyph for a code point with the present outline. With `render` it has been placed in the
  /// atlas, where there is one and it has room. A code point that neither this font nor the
  /// fallback font has gives the fallback glyph or the shape for what is missing. Null without a
  /// face, and where what such a code point once got cannot be loaded any more.
  const Glyph* GetGlyph(unsigned long charcode, bool render) const;

  /// In 1/64 pixel; zeros for glyphs of different faces and in a face without kerning. A caller
  /// compiles with FreeType's headers (`pkg-config --cflags zirk freetype2`).
  FT_Vector GetKerning(const Glyph& left, const Glyph& right) const;

  /// Walks on to the line's next glyph, with kerning, exactly as GetOneLineWidth() measures; null
  /// at its end. Bytes that are no UTF-8 are skipped, with an info line. With `render` the glyph is
  /// as GetGlyph() gives it, but one that a full atlas left out is not tried again.
  const Glyph* NextGlyph(TextCursor& cursor, bool render) const;

  /// What to do with a glyph that NextGlyph() rendered and left out of the atlas. If that is full
  /// and has not been emptied since, it is emptied, which moves all glyphs: those that were drawn
  /// before have to be on their surface, or be put there before the atlas changes. The glyph is
  /// then placed, and its `inAtlas` holds. Where most glyphs would only come back, the atlas is
  /// kept and the result is a bitmap of the glyph alone, of its size. Empty otherwise, and for a
  /// glyph that no atlas can hold. Throws std::bad_alloc.
  std::shared_ptr<VuBitmapImpl> PlaceLeftOut(const Glyph& glyph) const;

  // For the font's own use.

  /// Opens a face, of a file or of the font file in memory, at a size. Returns 0, or FreeType's
  /// error after an error line. `*face` is null if it could not be opened; its owner frees it.
  int NewFace(const char* path, int faceIndex, int pixelSize, FT_Face* face);
  int NewFaceFromMemory(int faceIndex, int pixelSize, FT_Face* face);
  /// Looks a code point up and loads its glyph with the present outline.
  void AddGlyph(unsigned int charcode, bool render) const;
  /// Reads a glyph's metrics from its face and, with `render`, places its bitmap in the atlas.
  void LoadGlyph(Glyph& glyph, bool render) const;
  /// Marks all glyphs as not in the atlas and empties that.
  void ResetGlyphs() const;
  /// Forgets all glyphs, kerning and the atlas.
  void ClearGlyphs() const;

 private:
  struct ZIRK_LOCAL State;

  ZIRK_LOCAL const Glyph* Find(uint32_t code, bool render, bool insist) const;
  ZIRK_LOCAL const Glyph* FindOrLoad(uint32_t code, bool render, bool insist) const;
  ZIRK_LOCAL int Measure(const char* text) const;

  std::unique_ptr<State> state_;
};

}  // namespace ZIRK
