#pragma once

/// @file
/// Sets paragraphs: breaks text into lines and aligns them.

#include <zirk/export.h>
#include <zirk/vubitmap.h>
#include <zirk/vucolor.h>
#include <zirk/vufont.h>
#include <zirk/vurect.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string_view>

namespace ZIRK::kit {

/// Horizontal alignment of the lines in a box.
enum class TextAlign : int32_t {
  Left = 0,     ///< At the left edge.
  Center = 1,   ///< Centred.
  Right = 2,    ///< At the right edge.
  Justify = 3,  ///< At both edges, by wider spaces; the last line of a paragraph as Left.
};

/// Vertical alignment of the lines in a box.
enum class VerticalAlign : int32_t {
  Top = 0,     ///< At the top edge.
  Middle = 1,  ///< Centred.
  Bottom = 2,  ///< At the bottom edge.
};

/// A width or height without a limit: the box is as large as its text.
constexpr int32_t kUnlimited = std::numeric_limits<int32_t>::max();

/// The layout of text in a box. All lengths are in pixels.
struct TextStyle {
  /// The width to which lines are broken. If it is less than the width of a character, lines have
  /// one character each. 0 and negative values count as 1.
  int32_t width = kUnlimited;
  /// Lines below this height are left out, except the first line. 0 and negative values count as 1.
  int32_t height = kUnlimited;
  TextAlign align = TextAlign::Left;                 ///< Horizontal, line by line.
  VerticalAlign verticalAlign = VerticalAlign::Top;  ///< Vertical, of all lines together.
  /// The largest number of lines; 0 or less for no limit.
  int32_t maxLines = 0;
  /// Extra distance between two lines; may be negative.
  int32_t lineGap = 0;
  /// Distance between tab stops; 0 or less for the width of eight spaces in the font of the tab.
  int32_t tabWidth = 0;
  /// Appended to the last line if visible text was left out, in place of as many characters as it
  /// needs. It is drawn in the font of the last character that it replaces. Empty for none.
  std::string_view ellipsis = "\u2026";
};

/// A part of a text in one font and colour. The font is not copied: it must live as long as a box
/// uses it.
struct TextRun {
  std::string_view text;           ///< UTF-8. The box copies it.
  const VuFont* font = nullptr;    ///< Must not be null.
  VuColor color = VuColor{white};  ///< Colour of the text, not premultiplied.
};

/// One line of a box.
struct TextLine {
  size_t begin;      ///< Offset of the first character.
  size_t end;        ///< Offset after the last one, trailing spaces included, line end excluded.
  VuRect box;        ///< Visible width and height, relative to the top-left corner of the text box.
  int32_t baseline;  ///< Distance from the top of the text box down to the baseline.
};

/// Text laid out in a box. SetText() breaks it into lines, aligns and measures them once; Draw()
/// then allocates nothing.
///
///     kit::TextStyle style;
///     style.width = 300;
///     kit::TextBox box;
///     box.SetText(*font, "A paragraph, as wide as it may be.", 0xFFFFFFFF, style);
///     box.Draw(*screen, {20, 20});
///
/// **Lines** are broken where Unicode allows it (UAX #14): at spaces, after hyphens, between
/// ideographs. A word wider than the box is broken between characters. Spaces at the end of a line
/// may extend beyond the box. These characters end a line: U+000A, U+000B, U+000C, U+000D (U+000D
/// U+000A counts as one), U+0085, U+2028 and U+2029. A text that ends with one of them has an empty
/// last line; an empty text has one empty line.
///
/// **Characters** are code points; a combining accent is a character of its own. As everywhere in
/// the library, each character is one glyph, from left to right, with kerning within a run: there
/// is no shaping and no reordering. Soft hyphens and other invisible characters are drawn as the
/// font defines them. Null bytes and bytes that are not UTF-8 are characters without width or
/// glyph. Offsets count bytes from the beginning of the first run.
///
/// **Threads**: several threads may use a box at the same time, except while SetText() runs.
class ZIRK_API TextBox {
 public:
  /// A box without lines.
  TextBox() noexcept;
  ~TextBox();
  /// Takes the lines of `other`, which then has none.
  TextBox(TextBox&& other) noexcept;
  /// Replaces the lines of this box by those of `other`, which then has none.
  TextBox& operator=(TextBox&& other) noexcept;

  /// Lays out a copy of `text` in one font and colour. If memory runs out, or the text has 2^31
  /// bytes or more, returns false with an error line, and the box has no lines. A character for
  /// which the font itself has no memory gets the width 0, as in VuFont::GetOneLineWidth().
  bool SetText(const VuFont& font, std::string_view text, VuColor color,
               const TextStyle& style = TextStyle());
  /// The same for a text of `count` runs; the array is read during the call only. Boundaries
  /// between runs do not affect where lines break. A line is as high as the tallest font on it.
  /// Also returns false for a run without a font. Without runs the box has no lines.
  bool SetText(const TextRun* runs, size_t count, const TextStyle& style = TextStyle());

  /// Draws the box with its top-left corner at `pos`. Lines outside the clipping rectangle cost
  /// nothing. Glyphs have the outline that their fonts have at the time of this call.
  void Draw(VuBitmap& target, VuPoint pos) const;
  /// The same, mapped to the surface by `t`.
  void Draw(VuBitmap& target, VuPoint pos, VuTransform t) const;

  /// Width of the widest line in pixels; 0 without lines.
  [[nodiscard]] int GetWidth() const;
  /// Height of all lines in pixels, gaps included; 0 without lines.
  [[nodiscard]] int GetHeight() const;
  /// Whether visible text was left out.
  [[nodiscard]] bool IsCut() const;
  /// Number of lines.
  [[nodiscard]] size_t GetLineCount() const;
  /// Line number `index`, from 0; all zeros if there is no such line.
  [[nodiscard]] TextLine GetLine(size_t index) const;

  /// The rectangle of the character at `offset`, relative to the top-left corner of the box. It is
  /// as wide as the character's advance and as high as its line; a caret before the character is at
  /// its left edge. The end of a line and the end of the text are at the end of the line and have
  /// no width. An offset inside a character counts as its beginning, an offset into text that was
  /// left out as the end. All zeros without lines.
  [[nodiscard]] VuRect GetCharacter(size_t offset) const;

  /// The result of FindCharacter() if there is no character.
  static constexpr size_t npos = static_cast<size_t>(-1);
  /// The offset of the character at `p`, a position relative to the top-left corner of the box;
  /// npos if no character is there.
  [[nodiscard]] size_t FindCharacter(VuPoint p) const;
  /// The offset of the caret for a click at `p`, inside the box or outside: the nearest position in
  /// the nearest line. The result belongs to that line, even if the line was broken after a space.
  [[nodiscard]] size_t FindCaret(VuPoint p) const;

 private:
  struct ZIRK_LOCAL State;
  std::unique_ptr<const State> state_;
};

}  // namespace ZIRK::kit
