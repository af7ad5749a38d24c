#pragma once

#include <zirk/export.h>
#include <zirk/vufont.h>

namespace ZIRK {

/// A font implementation, as a VuFont holds it. The order of the operations is fixed.
class ZIRK_API VuFontImpl {
 public:
  VuFontImpl() = default;
  virtual ~VuFontImpl();  // slots 1 and 2
  VuFontImpl(const VuFontImpl&) = delete;
  VuFontImpl& operator=(const VuFontImpl&) = delete;

  /// Slots 3 to 9: metrics in pixels, as VuFont describes them. `text` may be null.
  virtual void GetFontMetrics(int& height, int& ascender, int& descender,
                              int& maxAdvance) const = 0;
  virtual int GetOneLineWidth(const char* text) const = 0;
  virtual int GetOneLineHeight() const = 0;
  virtual int GetAscent() const = 0;
  virtual int GetDescent() const = 0;
  virtual int GetMaxAdvance() const = 0;
  virtual void GetUnderlineMetrics(int& position, int& thickness) const = 0;

  /// Slots 10 to 12: store what the fields below hold.
  virtual void SetOutlineType(VuFont::OutlineType type);
  virtual void SetOutlineThickness(float thickness);
  virtual void SetFallbackGlyph(unsigned int charcode);

  /// Slot 13: the font that is asked for what this one lacks, valid during the call only; null for
  /// none.
  virtual void SetFallbackFont(const VuFontImpl* font) = 0;

 protected:
  VuFont::OutlineType outlineType_ = VuFont::OutlineType::None;  ///< Of glyphs asked for next.
  int outlineThickness_ = 0;                                     ///< In 1/64 pixel.
  unsigned int fallbackGlyph_ = 0;                               ///< A code point; 0 for none.
};

}  // namespace ZIRK
