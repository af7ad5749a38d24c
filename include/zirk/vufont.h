#pragma once

#include <zirk/export.h>

#include <cstdint>

namespace ZIRK {

class VuFontImpl;

/// A font to draw text with: a handle that owns one implementation. All measures are in pixels.
class ZIRK_API VuFont {
 public:
  enum class OutlineType : int32_t {
    None = 0,     ///< Filled glyphs.
    Stroked = 1,  ///< Both borders of the stroke.
    Outer = 2,    ///< The outer border only.
    Inner = 3,    ///< The inner border only.
  };

  /// Wraps `impl` and owns it.
  explicit VuFont(VuFontImpl* impl);
  ~VuFont();
  VuFont(const VuFont&) = delete;
  VuFont& operator=(const VuFont&) = delete;

  void GetFontMetrics(int& height, int& ascender, int& descender, int& maxAdvance) const;
  /// Width of a UTF-8 string set on one line.
  int GetOneLineWidth(const char* text) const;
  int GetOneLineHeight() const;
  int GetAscent() const;
  int GetDescent() const;
  int GetMaxAdvance() const;
  void GetUnderlineMetrics(int& position, int& thickness) const;

  /// These apply to every glyph drawn afterwards. Thickness is in pixels, kept to 1/64.
  void SetOutlineType(OutlineType type);
  void SetOutlineThickness(float thickness);
  /// The code point drawn in place of one that neither font has.
  void SetFallbackGlyph(unsigned int charcode);
  /// The font asked for glyphs that this one lacks; null for none. `font` may be deleted after.
  void SetFallbackFont(const VuFont* font);

 private:
  friend class VuBitmap;

  VuFontImpl* impl;
};

}  // namespace ZIRK
