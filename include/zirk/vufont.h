#pragma once

#include <zirk/export.h>

#include <cstdint>
#include <functional>

namespace ZIRK {

class VuFontImpl;

/// A font to draw text with: one face of a font file at one size. A handle that owns one
/// implementation. All measures are in pixels.
///
///     std::unique_ptr<VuFont> font(VuFont::CreateFont("/usr/share/fonts/sans.ttf", 0, 24));
///     screen->DrawText(*font, "Hello", VuPoint{10, 10}, 0xFFFFFFFF);
///     const int right = 10 + font->GetOneLineWidth("Hello");
///     screen->DrawLine(VuPoint{10, 40}, VuPoint{right, 40}, 0xFFFFFFFF);
///
/// If the font file cannot be opened, an error is logged; the font then reports 0 for every metric
/// and draws nothing. It has no colour glyphs, no kerning by the table GPOS, and no shaping: each
/// code point is one glyph, from left to right.
///
/// **Threads**: any thread may measure and draw with a font. The setters must not run at the same
/// time as another call.
class ZIRK_API VuFont {
 public:
  /// What is drawn of a glyph: its area, or a stroke along its edge.
  enum class OutlineType : int32_t {
    None = 0,     ///< Filled glyphs.
    Stroked = 1,  ///< Both borders of the stroke.
    Outer = 2,    ///< The outer border only.
    Inner = 3,    ///< The inner border only.
  };

  /// @name Creating a font
  /// @{

  /// The same as CreateFontEx(), neither bold nor italic.
  [[nodiscard]] static VuFont* CreateFont(const char* path, int faceIndex, int pixelSize);
  /// Creates a font from a file. The caller owns it. An override set by SetFontOverride() is called
  /// instead, if there is one.
  ///
  /// `faceIndex` is the number of the face in the file, from 0. `pixelSize` is the nominal height
  /// of the letters in pixels, from 1; FreeType takes 0 as 1 and a negative number as 65535. `bold`
  /// emboldens a face that is not bold when it is drawn, but not when it is measured. It does so by
  /// whole pixels, so it has no effect below a size of about 20. `italic` is recorded and has no
  /// effect. A file that cannot be opened gives a font without glyphs, with an error line. Returns
  /// null, with an error line, if memory runs out. A null path raises std::logic_error.
  [[nodiscard]] static VuFont* CreateFontEx(const char* path, int faceIndex, int pixelSize,
                                            bool bold, bool italic);
  /// The same as CreateFontFromMemoryEx(), neither bold nor italic.
  [[nodiscard]] static VuFont* CreateFontFromMemory(const unsigned char* data, unsigned int size,
                                                    int faceIndex, int pixelSize);
  /// Creates a font from the font file of `size` bytes at `data`, which is copied. The rest is as
  /// for CreateFontEx(), but no override is called, and null `data` give a font without glyphs.
  [[nodiscard]] static VuFont* CreateFontFromMemoryEx(const unsigned char* data, unsigned int size,
                                                      int faceIndex, int pixelSize, bool bold,
                                                      bool italic);

  /// Makes CreateFont() and CreateFontEx() return what `fn` returns, null included; an empty `fn`
  /// removes the override. CreateFont() passes false for `bold` and `italic`. Set it before several
  /// threads create fonts, and not from within `fn`.
  static void SetFontOverride(
      std::function<VuFont*(const char* path, int faceIndex, int pixelSize, bool bold, bool italic)>
          fn);

  /// A font from a file as CreateFont() makes it, without the override. Raises std::bad_alloc if
  /// memory runs out.
  VuFont(const char* path, int faceIndex, int pixelSize);
  /// A font from a file as CreateFontEx() makes it, without the override. Raises std::bad_alloc if
  /// memory runs out.
  VuFont(const char* path, int faceIndex, int pixelSize, bool bold, bool italic);
  /// A font from memory as CreateFontFromMemory() makes it. Raises std::bad_alloc if memory runs
  /// out.
  VuFont(const unsigned char* data, unsigned int size, int faceIndex, int pixelSize);
  /// A font from memory as CreateFontFromMemoryEx() makes it. Raises std::bad_alloc if memory runs
  /// out.
  VuFont(const unsigned char* data, unsigned int size, int faceIndex, int pixelSize, bool bold,
         bool italic);
  /// Wraps `impl`, which must not be null, and owns it.
  explicit VuFont(VuFontImpl* impl);
  /// Deletes the implementation. Bitmaps on which the font was drawn keep what was drawn.
  ~VuFont();
  VuFont(const VuFont&) = delete;
  VuFont& operator=(const VuFont&) = delete;

  /// @}

  /// @name Measuring
  /// @{

  /// Stores the values of GetOneLineHeight(), GetAscent() and GetMaxAdvance(), and the descender
  /// with its sign: negative if the line reaches below the baseline.
  void GetFontMetrics(int& height, int& ascender, int& descender, int& maxAdvance) const;
  /// Width of a UTF-8 string set on one line, kerning included: where the pen is after the last
  /// glyph. 0 for null. Bytes that are not UTF-8 have no width, with an info line. Returns 0, with
  /// an error line, if memory runs out.
  int GetOneLineWidth(const char* text) const;
  /// Height of a line's box: ascent + descent + 1.
  [[nodiscard]] int GetOneLineHeight() const;
  /// Distance from the top of the line down to the baseline.
  [[nodiscard]] int GetAscent() const;
  /// Distance from the baseline down to the bottom of the line, never negative.
  [[nodiscard]] int GetDescent() const;
  /// The widest advance of any glyph.
  [[nodiscard]] int GetMaxAdvance() const;
  /// Stores where an underline goes: `position` is the distance of its middle from the baseline,
  /// negative below it, and `thickness` its height. Both are 0 for a font that has bitmaps only.
  void GetUnderlineMetrics(int& position, int& thickness) const;

  /// @}

  /// @name How glyphs are drawn
  /// @{

  /// Sets what is drawn of each glyph from now on. None at first.
  void SetOutlineType(OutlineType type);
  /// Sets the radius of the outline's stroke in pixels, kept to 1/64. 0 at first.
  void SetOutlineThickness(float thickness);
  /// Sets the code point to draw for one that neither this font nor its fallback font has; 0 for
  /// none, which draws the font's own shape for missing glyphs. Set it before text is measured or
  /// drawn: code points that were looked up keep their glyph until the fallback font is set.
  void SetFallbackGlyph(unsigned int charcode);
  /// Sets the font that supplies glyphs which this one lacks, at that font's size; null for none.
  /// Its file is opened a second time, so `font` may be deleted afterwards. All cached glyphs are
  /// dropped. If the file does not open, or `font` was made from memory, an error is logged and
  /// this font has no fallback.
  void SetFallbackFont(const VuFont* font);

  /// @}

 private:
  friend class VuBitmap;

  VuFontImpl* impl;
};

}  // namespace ZIRK
