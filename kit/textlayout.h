#pragma once

#include <zirk/kit/textbox.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ZIRK::kit {

/// The font and colour of a run, and the end of its text.
struct LaidRun {
  uint32_t end;  ///< Offset after its last byte.
  const VuFont* font;
  VuColor color;
  int32_t ascent;
  int32_t height;
};

enum class PieceKind : uint16_t { Text, Spaces, Tab, Ellipsis };

/// A part of a line with characters of one kind and one run.
struct Piece {
  uint32_t begin, end;  ///< Offsets of the first byte, and after the last one.
  int32_t x;            ///< Relative to the left end of the line.
  int32_t width;
  uint32_t run;
  PieceKind kind;
};

struct Line {
  uint32_t begin;       ///< Offset of the first byte.
  uint32_t end;         ///< Offset after the last byte, line end excluded.
  uint32_t firstPiece;  ///< Its pieces end where those of the next line begin.
  bool isWrapped;       ///< Whether the next word did not fit, rather than the paragraph ending.
  int32_t x, y;         ///< Top-left corner, relative to the box.
  int32_t width;        ///< Without trailing spaces.
  int32_t height;
  int32_t ascent;
};

/// A text laid out in a box.
struct TextLayout {
  std::string text;      ///< Of all runs. kNoCharacter replaces bytes that are not UTF-8.
  std::string ellipsis;  ///< With the same replacement.
  std::vector<LaidRun> runs;
  std::vector<Piece> pieces;
  std::vector<Line> lines;
  int32_t width = 0, height = 0;  ///< Of all lines together.
  bool isCut = false;

  /// The first piece of a line, and the end of its pieces.
  const Piece* PiecesBegin(size_t line) const { return pieces.data() + lines[line].firstPiece; }
  const Piece* PiecesEnd(size_t line) const {
    return line + 1 < lines.size() ? PiecesBegin(line + 1) : pieces.data() + pieces.size();
  }
  std::string_view TextOf(const Piece& piece) const {
    if (piece.kind == PieceKind::Ellipsis) return ellipsis;
    return std::string_view(text).substr(piece.begin, piece.end - piece.begin);
  }
};

/// Lays out the text of runs. All runs must have fonts, and fewer than 2^31 bytes together. Throws
/// std::bad_alloc.
TextLayout SetText(const TextRun* runs, size_t count, const TextStyle& style);

}  // namespace ZIRK::kit
