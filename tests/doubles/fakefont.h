#pragma once

#include "doubles/recorder.h"

namespace ZIRK::doubles {

/// A font without glyphs: every line measures 30 x 12. Keeps the standard outline operations, and
/// shows what they store.
class FakeFont : public VuFontImpl {
 public:
  explicit FakeFont(Recorder& r) : record(r) {}
  ~FakeFont() override { record("destroyed"); }

  void GetFontMetrics(int& height, int& ascender, int& descender, int& advance) const override {
    record("GetFontMetrics", &height, &ascender, &descender, &advance);
    height = 1;
    ascender = 2;
    descender = 3;
    advance = 4;
  }
  int GetOneLineWidth(const char* text) const override {
    return record("GetOneLineWidth", text), 30;
  }
  int GetOneLineHeight() const override { return record("GetOneLineHeight"), 12; }
  int GetAscent() const override { return record("GetAscent"), 5; }
  int GetDescent() const override { return record("GetDescent"), 6; }
  int GetMaxAdvance() const override { return record("GetMaxAdvance"), 7; }
  void GetUnderlineMetrics(int& position, int& thickness) const override {
    record("GetUnderlineMetrics", &position, &thickness);
    position = 8;
    thickness = 9;
  }
  void SetFallbackFont(const VuFontImpl* font) override { record("SetFallbackFont", font); }

  VuFont::OutlineType outlineType() const { return outlineType_; }
  int outlineThickness() const { return outlineThickness_; }
  unsigned fallbackGlyph() const { return fallbackGlyph_; }

  Recorder& record;
};

}  // namespace ZIRK::doubles
