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
///     screen->DrawText(*font, "Hello", VuPoint{10, 10}, VuColor{0xFFFFFFFF});
///
/// A font whose file cannot be opened is said so in an error line; its measures are 0 and it draws
/// nothing. Any thread may measure and draw with it; the setters may not run at the same time as
/// another call.
class ZIRK_API VuFont {
 public:
  /// What is drawn of a glyph: its area, or a stroke along its edge.
  enum class OutlineType : int32_t {
    None = 0,     ///< Filled glyphs.
    Stroked = 1,  ///< Both borders of the stroke.
    Outer = 2,    ///< The outer border only.
    Inner = 3,    ///< The inner border only.
  };

  /// Create a font, which the caller owns. Those from a file return what SetFontOverride()
  /// installed instead, if anything.
  ///
  /// `faceIndex` counts the faces of a font file from 0; `pixelSize` is the nominal height of the
  /// letters, from 1: 0 is as 1, and a negative number as 65535, as FreeType has it. `bold` makes a
  /// face that is not bold bolder where it is drawn, but not where it is measured; `italic` slants
  /// nothing. A font file in memory, of `size` bytes, is copied. Null, with an error line, where
  /// memory runs out. A null path raises std::logic_error.
  static VuFont* CreateFont(const char* path, int faceIndex, int pixelSize);
  static VuFont* CreateFontEx(const char* path, int faceIndex, int pixelSize, bool bold,
                              bool italic);
  static VuFont* CreateFontFromMemory(const unsigned char* data, unsigned int size, int faceIndex,
                                      int pixelSize);
  static VuFont* CreateFontFromMemoryEx(const unsigned char* data, unsigned int size, int faceIndex,
                                        int pixelSize, bool bold, bool italic);

  /// Makes CreateFont(), as not bold and not italic, and CreateFontEx() return whatever `fn` does,
  /// null included; an empty `fn` ends that. To be set before several threads create fonts, and not
  /// by `fn` itself.
  static void SetFontOverride(
      std::function<VuFont*(const char* path, int faceIndex, int pixelSize, bool bold, bool italic)>
          fn);

  /// The same as the functions above, without the override. They raise std::bad_alloc where memory
  /// runs out.
  VuFont(const char* path, int faceIndex, int pixelSize);
  VuFont(const char* path, int faceIndex, int pixelSize, bool bold, bool italic);
  VuFont(const unsigned char* data, unsigned int size, int faceIndex, int pixelSize);
  VuFont(const unsigned char* data, unsigned int size, int faceIndex, int pixelSize, bool bold,
         bool italic);
  /// Wraps `impl` and owns it.
  explicit VuFont(VuFontImpl* impl);
  ~VuFont();
  VuFont(const VuFont&) = delete;
  VuFont& operator=(const VuFont&) = delete;

  /// All four at once, as the functions below give them, but the descender with its sign: negative
  /// where the line goes below the base line.
  void GetFontMetrics(int& height, int& ascender, int& descender, int& maxAdvance) const;
  /// Width of a UTF-8 string set on one line: where the pen stands after it. Null is as wide as an
  /// empty string, and bytes that are no UTF-8 have no width. 0, with an error line, where memory
  /// runs out.
  int GetOneLineWidth(const char* text) const;
  /// Height of a line's box: ascent, descent, and one pixel more.
  int GetOneLineHeight() const;
  /// From the top of the line down to the base line.
  int GetAscent() const;
  /// From the base line down to the bottom of the line, never negative.
  int GetDescent() const;
  /// The widest advance of any glyph.
  int GetMaxAdvance() const;
  /// Where an underline goes: `position` is that of its middle from the base line, negative below,
  /// as the font has it; 0 for both in a font of bitmaps alone.
  void GetUnderlineMetrics(int& position, int& thickness) const;

  /// These apply to every glyph drawn afterwards. Thickness is in pixels, kept to 1/64.
  void SetOutlineType(OutlineType type);
  void SetOutlineThickness(float thickness);
  /// The code point drawn in place of one that neither font has. Set it before text is measured or
  /// drawn: characters met before keep what they got, until the fallback font is set.
  void SetFallbackGlyph(unsigned int charcode);
  /// The font asked for glyphs that this one lacks, at its own size; null for none. `font` may be
  /// deleted after.
  void SetFallbackFont(const VuFont* font);

 private:
  friend class VuBitmap;

  VuFontImpl* impl;
};

}  // namespace ZIRK
