#pragma once

#include <zirk/export.h>
#include <zirk/vufont.h>

namespace ZIRK {

/// A font implementation, as a VuFont holds it. VuFont documents the operations; metrics are in
/// pixels. Their order is fixed.
///
/// **Threads**: any thread may measure. The setters do not run at the same time as another call.
class ZIRK_API VuFontImpl {
 public:
  VuFontImpl() = default;
  virtual ~VuFontImpl();  // slots 1 and 2
  VuFontImpl(const VuFontImpl&) = delete;
  VuFontImpl& operator=(const VuFontImpl&) = delete;

  /// Slot 3: stores height, ascender, descender (negative below the baseline) and widest advance.
  virtual void GetFontMetrics(int& height, int& ascender, int& descender,
                              int& maxAdvance) const = 0;
  /// Slot 4: the width of a UTF-8 string on one line. `text` may be null.
  virtual int GetOneLineWidth(const char* text) const = 0;
  /// Slot 5: the height of a line's box.
  [[nodiscard]] virtual int GetOneLineHeight() const = 0;
  /// Slot 6: from the top of the line down to the baseline.
  [[nodiscard]] virtual int GetAscent() const = 0;
  /// Slot 7: from the baseline down to the bottom of the line, never negative.
  [[nodiscard]] virtual int GetDescent() const = 0;
  /// Slot 8: the widest advance of any glyph.
  [[nodiscard]] virtual int GetMaxAdvance() const = 0;
  /// Slot 9: stores the underline's position and thickness.
  virtual void GetUnderlineMetrics(int& position, int& thickness) const = 0;

  /// Slot 10: stores the outline type in `outlineType_`.
  virtual void SetOutlineType(VuFont::OutlineType type);
  /// Slot 11: stores the stroke's radius, given in pixels, in `outlineThickness_`.
  virtual void SetOutlineThickness(float thickness);
  /// Slot 12: stores the code point in `fallbackGlyph_`.
  virtual void SetFallbackGlyph(unsigned int charcode);

  /// Slot 13: sets the font that supplies missing glyphs, valid during the call only; null for
  /// none.
  virtual void SetFallbackFont(const VuFontImpl* font) = 0;

 protected:
  VuFont::OutlineType outlineType_ = VuFont::OutlineType::None;  ///< Of the glyphs looked up next.
  int outlineThickness_ = 0;                                     ///< Radius in 1/64 pixel.
  unsigned int fallbackGlyph_ = 0;                               ///< A code point; 0 for none.
};

}  // namespace ZIRK
