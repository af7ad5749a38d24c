#pragma once

#include <zirk/kit/textbox.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ZIRK::kit {

/// A run's font, and how far its text goes.
struct LaidRun {
  uint32_t end;  ///< Offset after it.
  const VuFont* font;
  VuColor color;
  int32_t ascent;
  int32_t height;
};

enum class PieceKind : uint16_t { Text, Spaces, Tab, Ellipsis };

/// Part of a line whose characters are of one kind and one run.
struct Piece {
  uint32_t begin, end;  ///< Offsets.
  int32_t x;            ///< From the line's left end.
  int32_t width;
  uint32_t run;
  PieceKind kind;
};

struct Line {
  uint32_t begin;       ///< Offset.
  uint32_t end;         ///< Offset after it, without what ends it.
  uint32_t firstPiece;  ///< Its pieces go on to the next line's.
  bool isWrapped;       ///< Whether it ends because nothing more fitted.
  int32_t x, y;         ///< Top-left corner in the box.
  int32_t width;        ///< Without spaces at the end.
  int32_t height;
  int32_t ascent;
};

/// A text set into a box.
struct TextLayout {
  std::string text;      ///< That of all runs, with kNoCharacter for what is none.
  std::string ellipsis;  ///< The same.
  std::vector<LaidRun> runs;
  std::vector<Piece> pieces;
  std::vector<Line> lines;
  int32_t width = 0, height = 0;  ///< Of the lines together.
  bool isCut = false;

  /// The pieces of a line: from this one on, and up to that.
  const Piece* PiecesBegin(size_t line) const { return pieces.data() + lines[line].firstPiece; }
  const Piece* PiecesEnd(size_t line) const {
    return line + 1 < lines.size() ? PiecesBegin(line + 1) : pieces.data() + pieces.size();
  }
  std::string_view TextOf(const Piece& piece) const {
    if (piece.kind == PieceKind::Ellipsis) return ellipsis;
    return std::string_view(text).substr(piece.begin, piece.end - piece.begin);
  }
};

/// Sets the text of runs, all of which have fonts; together it has less than 2^31 bytes. Throws
/// std::bad_alloc.
TextLayout SetText(const TextRun* runs, size_t count, const TextStyle& style);

}  // namespace ZIRK::kit
