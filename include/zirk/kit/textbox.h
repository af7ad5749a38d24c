#pragma once

/// @file
/// Paragraphs: text broken into lines and aligned.

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

/// Where the lines of a box stand between its left and its right edge.
enum class TextAlign : int32_t {
  Left = 0,     ///< At the left edge.
  Center = 1,   ///< In the middle.
  Right = 2,    ///< At the right edge.
  Justify = 3,  ///< Spaces are widened up to the right edge, but in the last line of a paragraph.
};

/// Where the lines stand between the box's upper and lower edge.
enum class VerticalAlign : int32_t {
  Top = 0,     ///< At the upper edge.
  Middle = 1,  ///< In the middle.
  Bottom = 2,  ///< At the lower edge.
};

/// A width or height that ends nothing: the box is as large as its text.
constexpr int32_t kUnlimited = std::numeric_limits<int32_t>::max();

/// How text is set in a box. Measures are in pixels.
struct TextStyle {
  /// Lines are broken to fit. Less than a character is wide gives lines of one character each; 0
  /// and less are as 1.
  int32_t width = kUnlimited;
  /// Lines that do not fit are left out, but the first. 0 and less are as 1.
  int32_t height = kUnlimited;
  TextAlign align = TextAlign::Left;                 ///< Of each line.
  VerticalAlign verticalAlign = VerticalAlign::Top;  ///< Of all lines together.
  /// How many lines there may be; 0 and less for any number.
  int32_t maxLines = 0;
  /// Added between two lines; may be negative.
  int32_t lineGap = 0;
  /// From one tab stop to the next; 0 and less for eight spaces of the font at the tab.
  int32_t tabWidth = 0;
  /// Ends the last line where visible text is left out; the line gives up as many characters as it
  /// takes. Drawn in the font of the last of them. Empty for none.
  std::string_view ellipsis = "\u2026";
};

/// A stretch of a text in one font and colour. The font has to outlive the box's use of it: nothing
/// of it is copied.
struct TextRun {
  std::string_view text;           ///< UTF-8, copied.
  const VuFont* font = nullptr;    ///< Not null.
  VuColor color = VuColor{white};  ///< Not premultiplied.
};

/// One line of a box.
struct TextLine {
  size_t begin;      ///< Offset of its first character.
  size_t end;        ///< Offset after its last; spaces at its end belong to it, what ends it not.
  VuRect box;        ///< As wide as what is seen of it; relative to the top-left corner of the box.
  int32_t baseline;  ///< From the top of the box down to the line's base line.
};

/// Text set into a box: broken into lines, aligned and measured once, then drawn any number of
/// times without allocating.
///
///     kit::TextStyle style;
///     style.width = 300;
///     kit::TextBox box;
///     box.SetText(*font, "A paragraph, as wide as it may be.", 0xFFFFFFFF, style);
///     box.Draw(*screen, {20, 20});
///
/// Lines are broken where Unicode's rules allow it (UAX #14): at spaces, after hyphens, between
/// ideographs. A word that is wider than the box is broken between characters. Spaces at a line's
/// end hang over. A line ends at U+000A, U+000B, U+000C, U+000D, the last two in this order as one,
/// at U+0085, U+2028 and U+2029; what ends in one of these has an empty line after it. A text that
/// is empty has one empty line. A character is a code point: accents that follow a letter as
/// characters of their own count as such. As in the library, text runs from left to right, a glyph
/// for a character, with kerning within a run: no shaping, no reordering. Soft hyphens and other
/// characters that are not seen are drawn as the font has them.
///
/// Offsets count bytes of the text, that of all runs together. Null bytes, and bytes that are no
/// UTF-8, are characters without width or picture.
///
/// Several threads may use one box at the same time, but for SetText().
class ZIRK_API TextBox {
 public:
  /// A box without lines.
  TextBox() noexcept;
  ~TextBox();
  /// What is moved from has no lines.
  TextBox(TextBox&& other) noexcept;
  /// As the constructor; the lines that the box had are gone.
  TextBox& operator=(TextBox&& other) noexcept;

  /// Sets `text`, which is copied, in one font and colour. False, with an error line, where memory
  /// runs out or the text has 2^31 bytes or more; the box has no lines then. Where it runs out
  /// while a character is measured, that has no width, as in VuFont::GetOneLineWidth().
  bool SetText(const VuFont& font, std::string_view text, VuColor color,
               const TextStyle& style = TextStyle());
  /// The same for a text of `count` runs, which are read during the call only. Lines are broken
  /// without regard to where runs meet; a line is as high as the fonts on it need. False also for
  /// a run without a font. Without a run there are no lines.
  bool SetText(const TextRun* runs, size_t count, const TextStyle& style = TextStyle());

  /// Draws the box with its top-left corner at `pos`. Lines beyond the clipping rectangle cost
  /// nothing. The fonts are those of SetText(), with the outline that they have now.
  void Draw(VuBitmap& target, VuPoint pos) const;
  /// The same, mapped to the surface by `t`.
  void Draw(VuBitmap& target, VuPoint pos, VuTransform t) const;

  /// Width of the widest line in pixels; 0 without lines.
  int GetWidth() const;
  /// Height of all lines in pixels, gaps included; 0 without lines.
  int GetHeight() const;
  /// Whether visible text was left out.
  bool IsCut() const;
  /// Number of lines.
  size_t GetLineCount() const;
  /// Line number `index`, from 0; zeros for one that there is not.
  TextLine GetLine(size_t index) const;

  /// Where the character at `offset` stands, relative to the top-left corner of the box: as wide as
  /// its advance and as high as its line. Its left edge is where a caret before it stands. What
  /// ends a line, and the end of the text, is at the end of the line, without width; an offset
  /// inside a character counts as its beginning, one of what was left out as the end. Zeros without
  /// lines.
  VuRect GetCharacter(size_t offset) const;

  /// No character.
  static constexpr size_t npos = static_cast<size_t>(-1);
  /// Offset of the character at `p`, relative to the top-left corner of the box; npos outside of
  /// all characters.
  size_t FindCharacter(VuPoint p) const;
  /// Offset before which a caret stands that is set at `p`, wherever that is: the nearest in the
  /// nearest line. It stays in the line, also where that goes on in the next one after a space.
  size_t FindCaret(VuPoint p) const;

 private:
  struct ZIRK_LOCAL State;
  std::unique_ptr<const State> state_;
};

}  // namespace ZIRK::kit
