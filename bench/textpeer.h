#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "inputs.h"

namespace ZIRK::bench {

constexpr int kTextSize = 16;      ///< Pixels, FreeType's nominal height.
constexpr int kLineLength = 40;    ///< Characters.
constexpr int kOpenedGlyphs = 95;  ///< The printable characters of ASCII.
constexpr VuColor kTextColor{0xFF336699};

/// The font that every peer opens.
std::string TextFont();

struct TextLine {
  std::string text;
  int x, y;  ///< Top-left corner of the line's box.
};
using TextLines = std::vector<TextLine>;

/// The same lines for every peer and in every run.
TextLines MakeTextLines();

constexpr int kParagraphLength = 500;  ///< Characters.
constexpr int kParagraphWidth = 300;   ///< Pixels.

/// A paragraph of kParagraphLength characters, Latin and plain.
std::string MakeParagraph();

/// All of the printable characters of ASCII.
std::string OpenedCharacters();

/// A library that sets text. Each has the font open, and a surface of kWidth x kHeight that is
/// black at first. An operation that a library does not have returns nothing or false.
class TextPeer {
 public:
  virtual ~TextPeer() = default;
  virtual const char* Name() const = 0;

  /// The sum of the lines' widths in pixels; negative if there is no such operation. The glyphs
  /// may be cached.
  virtual double Measure(const TextLines&) { return -1; }
  /// Draws the lines in kTextColor, from glyphs that may be cached.
  virtual bool Draw(const TextLines&) { return false; }
  /// Opens the font once more, sets a line of OpenedCharacters() with it, rendered and kerned but
  /// not drawn, and closes it.
  virtual bool Open() { return false; }
  /// Breaks a paragraph into lines of a width in pixels, anew each time, and returns how many they
  /// are; negative if there is no such operation.
  virtual int Wrap(const std::string&, int) { return -1; }
  /// Copies the surface to kWidth * kHeight pixels.
  virtual bool Read(uint32_t*) { return false; }
};

using TextPeers = std::vector<std::unique_ptr<TextPeer>>;

/// This library's own; null if the backend does not open.
std::unique_ptr<TextPeer> MakeZirkText();
std::unique_ptr<TextPeer> MakeZirkTextOn565();
/// FreeType called for every glyph anew.
std::unique_ptr<TextPeer> MakeFreeTypeText();
std::unique_ptr<TextPeer> MakePixmanText();
std::unique_ptr<TextPeer> MakePixmanTextOn565();
std::unique_ptr<TextPeer> MakeCairoText();
std::unique_ptr<TextPeer> MakeSdlText();
std::unique_ptr<TextPeer> MakeDirectFbText();
std::unique_ptr<TextPeer> MakePangoText();

/// Registers the benchmarks "TextMeasure/Peer", "TextDraw/Peer", "TextOpen/Peer" and
/// "TextWrap/Peer".
void RegisterText(const TextPeers& peers);

/// Compares widths and pictures with the first peer's, one line each on the standard output.
/// False if one is not the same work.
bool VerifyText(const TextPeers& peers);

}  // namespace ZIRK::bench
