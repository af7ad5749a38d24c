#include <zirk/kit/text.h>
#include <zirk/kit/textbox.h>

#include <algorithm>
#include <new>
#include <optional>

#include "error.h"
#include "textlayout.h"
#include "utf8.h"

namespace ZIRK::kit {

struct TextBox::State : TextLayout {
  explicit State(TextLayout layout) : TextLayout(std::move(layout)) {}

  /// The line that contains an offset: the last one that begins at or before it.
  size_t LineWith(size_t offset) const {
    const auto after =
        std::upper_bound(lines.begin() + 1, lines.end(), offset,
                         [](size_t at, const Line& line) { return at < line.begin; });
    return static_cast<size_t>(after - lines.begin()) - 1;
  }

  /// The line nearest to `y`.
  size_t LineAt(int y) const {
    const auto after = std::upper_bound(lines.begin() + 1, lines.end(), y,
                                        [](int at, const Line& line) { return at < line.y; });
    return static_cast<size_t>(after - lines.begin()) - 1;
  }

  int WidthOf(const Piece& piece, size_t begin, size_t end) const {
    return kit::GetWidth(*runs[piece.run].font, std::string_view(text).substr(begin, end - begin));
  }

  /// The distance from the left edge of a piece to a character; the width of the piece for its end.
  int PenAt(const Piece& piece, size_t offset) const {
    if (offset <= piece.begin) return 0;
    if (offset >= piece.end) return piece.width;
    if (piece.kind != PieceKind::Text)
      return static_cast<int>(int64_t{piece.width} * static_cast<int64_t>(offset - piece.begin) /
                              (piece.end - piece.begin));
    // The width with this character less the character's own accounts for kerning.
    const size_t next = NextChar(text, offset);
    return WidthOf(piece, piece.begin, next) - WidthOf(piece, offset, next);
  }

  size_t CharBegin(size_t offset, size_t least) const {
    while (offset > least && ContinuesChar(text[offset])) --offset;
    return offset;
  }

  /// The character of a piece at the distance `x` from its left edge.
  size_t CharAt(const Piece& piece, int x) const {
    size_t found = piece.begin, end = piece.end;
    for (;;) {
      const size_t next = NextChar(text, found);
      if (next >= end) return found;
      const size_t middle = std::max(CharBegin(found + (end - found) / 2, found + 1), next);
      if (PenAt(piece, middle) <= x) {
        found = middle;
      } else {
        end = middle;
      }
    }
  }

  /// The piece at the distance `x` from the left end of a line. Null if there is none, or if it is
  /// the ellipsis.
  const Piece* PieceAt(size_t line, int64_t x) const {
    const auto is = [x](const Piece& piece) {
      return x >= piece.x && x < int64_t{piece.x} + piece.width && piece.begin < piece.end;
    };
    const Piece* const end = PiecesEnd(line);
    const Piece* const found = std::find_if(PiecesBegin(line), end, is);
    return found != end ? found : nullptr;
  }

  /// The offset of a caret at the end of a line.
  size_t CaretAtEnd(size_t index) const {
    const Line& line = lines[index];
    return line.isWrapped && line.end > line.begin && text[line.end - 1] == ' ' ? line.end - 1
                                                                                : line.end;
  }

  template <class DrawPiece>
  void DrawLine(size_t index, DrawPiece draw) const {
    const Line& line = lines[index];
    for (const Piece* piece = PiecesBegin(index); piece != PiecesEnd(index); ++piece) {
      if (piece->kind == PieceKind::Spaces || piece->kind == PieceKind::Tab) continue;
      const LaidRun& run = runs[piece->run];
      draw(run, TextOf(*piece), int64_t{line.x} + piece->x,
           int64_t{line.y} + line.ascent - run.ascent);
    }
  }
};

namespace {

/// Moves a point; returns nothing if a coordinate overflows.
std::optional<VuPoint> Moved(VuPoint point, int64_t x, int64_t y) {
  const int64_t newX = point.x + x, newY = point.y + y;
  const VuPoint moved{static_cast<int32_t>(newX), static_cast<int32_t>(newY)};
  if (moved.x != newX || moved.y != newY) return std::nullopt;
  return moved;
}

}  // namespace

TextBox::TextBox() noexcept = default;
TextBox::~TextBox() = default;
TextBox::TextBox(TextBox&& other) noexcept = default;
TextBox& TextBox::operator=(TextBox&& other) noexcept = default;

bool TextBox::SetText(const VuFont& font, std::string_view text, VuColor color,
                      const TextStyle& style) {
  const TextRun run{text, &font, color};
  return SetText(&run, 1, style);
}

bool TextBox::SetText(const TextRun* runs, size_t count, const TextStyle& style) {
  state_.reset();
  size_t size = 0;
  for (size_t i = 0; i < count; ++i) {
    if (!runs[i].font) {
      ZIRK_KIT_ERROR("TextBox: run %zu has no font", i);
      return false;
    }
    // Tested before the addition, which could overflow.
    if (runs[i].text.size() > static_cast<size_t>(kUnlimited) - size) {
      ZIRK_KIT_ERROR("TextBox: the text is too long");
      return false;
    }
    size += runs[i].text.size();
  }
  try {
    state_ = std::make_unique<const State>(kit::SetText(runs, count, style));
  } catch (const std::bad_alloc&) {
    ZIRK_KIT_ERROR("no memory for a text box");
    return false;
  }
  return true;
}

void TextBox::Draw(VuBitmap& target, VuPoint pos) const {
  if (!state_ || state_->lines.empty()) return;
  const VuRect clip = target.GetClippingRect();
  const int64_t top = int64_t{clip.y} - pos.y, bottom = top + clip.height;
  const auto& lines = state_->lines;
  // Glyphs may extend above and below their line, but by less than its height.
  const auto first = std::partition_point(lines.begin(), lines.end(), [&](const Line& line) {
    return line.y + 2 * int64_t{line.height} <= top;
  });
  for (auto line = first; line != lines.end() && line->y - int64_t{line->height} < bottom; ++line)
    state_->DrawLine(static_cast<size_t>(line - lines.begin()),
                     [&](const LaidRun& run, std::string_view text, int64_t x, int64_t y) {
                       if (const auto at = Moved(pos, x, y))
                         DrawText(target, *run.font, text, *at, run.color);
                     });
}

void TextBox::Draw(VuBitmap& target, VuPoint pos, VuTransform t) const {
  if (!state_) return;
  for (size_t i = 0; i < state_->lines.size(); ++i)
    state_->DrawLine(i, [&](const LaidRun& run, std::string_view text, int64_t x, int64_t y) {
      if (const auto at = Moved(pos, x, y)) DrawText(target, *run.font, text, *at, run.color, t);
    });
}

int TextBox::GetWidth() const {
  return state_ ? state_->width : 0;
}

int TextBox::GetHeight() const {
  return state_ ? state_->height : 0;
}

bool TextBox::IsCut() const {
  return state_ && state_->isCut;
}

size_t TextBox::GetLineCount() const {
  return state_ ? state_->lines.size() : 0;
}

TextLine TextBox::GetLine(size_t index) const {
  if (index >= GetLineCount()) return {};
  const Line& line = state_->lines[index];
  return {line.begin, line.end, {line.x, line.y, line.width, line.height}, line.y + line.ascent};
}

VuRect TextBox::GetCharacter(size_t offset) const {
  if (GetLineCount() == 0) return {};
  const State& s = *state_;
  const size_t index = s.LineWith(offset);
  const Line& line = s.lines[index];
  int32_t x = 0, end = 0;
  for (const Piece* piece = s.PiecesBegin(index); piece != s.PiecesEnd(index); ++piece) {
    x = end = piece->x + piece->width;
    if (offset >= piece->end || piece->kind == PieceKind::Ellipsis) continue;
    const size_t begin = s.CharBegin(offset, piece->begin);
    x = piece->x + s.PenAt(*piece, begin);
    end = piece->x + s.PenAt(*piece, NextChar(s.text, begin));
    break;
  }
  return {line.x + x, line.y, end - x, line.height};
}

size_t TextBox::FindCharacter(VuPoint p) const {
  if (GetLineCount() == 0) return npos;
  const State& s = *state_;
  const size_t index = s.LineAt(p.y);
  const Line& line = s.lines[index];
  const int64_t x = int64_t{p.x} - line.x;
  if (p.y < line.y || p.y >= int64_t{line.y} + line.height) return npos;
  const Piece* const piece = s.PieceAt(index, x);
  return piece ? s.CharAt(*piece, static_cast<int>(x - piece->x)) : npos;
}

size_t TextBox::FindCaret(VuPoint p) const {
  if (GetLineCount() == 0) return 0;
  const State& s = *state_;
  const size_t index = s.LineAt(p.y);
  const int64_t x = int64_t{p.x} - s.lines[index].x;
  if (x < 0) return s.lines[index].begin;
  const size_t last = s.CaretAtEnd(index);
  const Piece* const piece = s.PieceAt(index, x);
  if (!piece) return last;
  const size_t found = s.CharAt(*piece, static_cast<int>(x - piece->x));
  const size_t next = std::min<size_t>(NextChar(s.text, found), piece->end);
  const int64_t twice = int64_t{s.PenAt(*piece, found)} + s.PenAt(*piece, next);
  return std::min(2 * (x - piece->x) < twice ? found : next, last);
}

}  // namespace ZIRK::kit
