#include "textlayout.h"

#include <zirk/kit/text.h>

#include <algorithm>
#include <limits>

#include "linebreaks.h"
#include "utf8.h"

namespace ZIRK::kit {

namespace {

constexpr int kSpacesToTab = 8;
constexpr int64_t kNoLimit = std::numeric_limits<int64_t>::max();

int32_t Clamped(int64_t value) {
  return static_cast<int32_t>(std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(),
                                                  std::numeric_limits<int32_t>::max()));
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

bool IsCharacter(std::string_view text, size_t at) {
  const size_t length = SequenceLength(text[at]);
  if (text[at] == '\0' || length == 0 || length > text.size() - at) return false;
  const std::string_view rest = text.substr(at + 1, length - 1);
  return std::all_of(rest.begin(), rest.end(), ContinuesChar);
}

/// Appends `source`, with kNoCharacter in place of bytes that belong to no character.
void AppendCharacters(std::string& text, std::string_view source) {
  for (size_t at = 0; at < source.size();) {
    if (IsCharacter(source, at)) {
      const size_t next = NextChar(source, at);
      text.append(source, at, next - at);
      at = next;
    } else {
      text += kNoCharacter;
      ++at;
    }
  }
}

/// Breaks the text of a layout, which already has its text and runs, into lines.
class Setter {
 public:
  Setter(TextLayout& layout, const TextStyle& style)
      : text_(layout.text),
        layout_(layout),
        style_(style),
        width_(style.width == kUnlimited ? kNoLimit : std::max(style.width, 1)),
        height_(style.height == kUnlimited ? kNoLimit : std::max(style.height, 1)),
        breaks_(FindLineBreaks(layout.text)) {}

  void Set();

 private:
  size_t RunAt(size_t offset) const;
  int MeasureText(size_t begin, size_t end) const {
    return GetWidth(*layout_.runs[run_].font, std::string_view(text_).substr(begin, end - begin));
  }

  void SetNext();
  size_t StretchEnd() const;
  void AddBlank(size_t end);
  bool AddWord(size_t end, int64_t limit);
  const Piece* PieceBefore() const;
  void GoOn(size_t end);
  void BreakLine(size_t end);
  void SplitWord(size_t end);

  void BeginLine(size_t begin);
  void EndLine(size_t end, size_t next, bool isWrapped);
  void CloseLine(size_t end, bool isWrapped);
  void JoinPieces();
  void Justify(Line& line);
  void CutLastLine(size_t rest);
  void AddEllipsis();
  void Align();

  const std::string& text_;
  TextLayout& layout_;
  const TextStyle& style_;
  const int64_t width_, height_;
  const std::vector<char> breaks_;
  bool isDone_ = false;

  // The current line.
  size_t begin_ = 0;  ///< Offset of its first byte.
  size_t at_ = 0;     ///< Offset of the next character to set.
  size_t run_ = 0;    ///< Run of that character.
  size_t first_ = 0;  ///< First piece.
  int64_t pen_ = 0;
  size_t mark_ = 0;        ///< Offset of the last possible break; begin_ if there is none.
  size_t markPieces_ = 0;  ///< Number of pieces before that break.
};

void Setter::Set() {
  BeginLine(0);
  while (at_ < text_.size() && !isDone_) SetNext();
  if (!isDone_) EndLine(at_, at_, false);
  Align();
}

/// The run that contains an offset; the last one for the end of the text.
size_t Setter::RunAt(size_t offset) const {
  const auto& runs = layout_.runs;
  const auto found = std::upper_bound(runs.begin(), runs.end() - 1, offset,
                                      [](size_t at, const LaidRun& run) { return at < run.end; });
  return static_cast<size_t>(found - runs.begin());
}

/// Sets the next word, spaces, tab or line end.
void Setter::SetNext() {
  if (const size_t length = LineEndLength(text_, at_)) {
    EndLine(at_, at_ + length, false);
    return;
  }
  while (layout_.runs[run_].end <= at_) ++run_;
  const size_t end = StretchEnd();
  if (IsBlank(text_[at_])) {
    AddBlank(end);
    GoOn(end);
  } else if (AddWord(end, width_)) {
    GoOn(end);
  } else {
    BreakLine(end);
  }
}

void Setter::GoOn(size_t end) {
  at_ = end;
  if (breaks_[end - 1] != kMayBreak) return;
  mark_ = end;
  markPieces_ = layout_.pieces.size();
}

/// The end of what is set next: a tab, spaces, or characters without a break between them.
size_t Setter::StretchEnd() const {
  const size_t runEnd = layout_.runs[run_].end;
  if (text_[at_] == '\t') return at_ + 1;
  if (text_[at_] == ' ') return std::min(text_.find_first_not_of(' ', at_), runEnd);
  size_t end = at_;
  while (end < runEnd) {
    const char c = text_[end];
    const bool isPlain = c > ' ' && c < '\x7F';
    if (!isPlain && (IsBlank(c) || LineEndLength(text_, end) > 0)) break;
    end = NextChar(text_, end);
    if (breaks_[end - 1] == kMayBreak) break;
  }
  return end;
}

/// Adds spaces or a tab, even if they do not fit.
void Setter::AddBlank(size_t end) {
  const int64_t space = GetWidth(*layout_.runs[run_].font, " ");
  const bool isTab = text_[at_] == '\t';
  int64_t width = space * static_cast<int64_t>(end - at_);
  if (isTab) {
    const int64_t stop = style_.tabWidth > 0 ? style_.tabWidth : space * kSpacesToTab;
    width = stop > 0 ? stop - pen_ % stop : 0;
  }
  layout_.pieces.push_back({static_cast<uint32_t>(at_), static_cast<uint32_t>(end), Clamped(pen_),
                            Clamped(width), static_cast<uint32_t>(run_),
                            isTab ? PieceKind::Tab : PieceKind::Spaces});
  pen_ += width;
}

/// The piece that a word at the pen will be joined to; null if there is none.
const Piece* Setter::PieceBefore() const {
  const auto& pieces = layout_.pieces;
  size_t end = pieces.size();
  const bool maySpacesJoin = style_.align != TextAlign::Justify;
  if (maySpacesJoin && end > first_ && pieces[end - 1].kind == PieceKind::Spaces &&
      pieces[end - 1].run == run_)
    --end;
  if (end == first_ || pieces[end - 1].kind != PieceKind::Text || pieces[end - 1].run != run_)
    return nullptr;
  return &pieces[end - 1];
}

/// Adds the text up to `end`. Returns false and does nothing if it would exceed `limit`.
bool Setter::AddWord(size_t end, int64_t limit) {
  int64_t right = pen_;
  if (const Piece* const before = PieceBefore()) {
    // Includes the last character of that piece, for kerning.
    size_t last = before->end - 1;
    while (last > before->begin && (ContinuesChar(text_[last]) || text_[last] == kNoCharacter))
      --last;
    right = int64_t{before->x} + before->width + MeasureText(last, end) -
            MeasureText(last, before->end);
  } else {
    right += MeasureText(at_, end);
  }
  if (right > limit) return false;
  layout_.pieces.push_back({static_cast<uint32_t>(at_), static_cast<uint32_t>(end), Clamped(pen_),
                            Clamped(right - pen_), static_cast<uint32_t>(run_), PieceKind::Text});
  pen_ = right;
  return true;
}

/// Ends the line at the last possible break. If there is none, splits the word that ends at `end`.
void Setter::BreakLine(size_t end) {
  if (mark_ == begin_) {
    SplitWord(end);
    return;
  }
  layout_.pieces.resize(markPieces_);
  EndLine(mark_, mark_, true);
}

/// Sets the text up to `end` character by character, on as many lines as it needs.
void Setter::SplitWord(size_t end) {
  while (at_ < end && !isDone_) {
    const size_t next = NextChar(text_, at_);
    if (AddWord(next, width_)) {
      at_ = next;
      continue;
    }
    if (at_ > begin_) {
      EndLine(at_, at_, true);
    } else {
      AddWord(next, kNoLimit);
      at_ = next;
    }
  }
  if (!isDone_) GoOn(end);
}

void Setter::BeginLine(size_t begin) {
  begin_ = at_ = mark_ = begin;
  run_ = RunAt(begin);
  first_ = markPieces_ = layout_.pieces.size();
  pen_ = 0;
}

/// Ends the line at `end`; the next one begins at `next`, if there is room for it.
void Setter::EndLine(size_t end, size_t next, bool isWrapped) {
  CloseLine(end, isWrapped);
  const Line line = layout_.lines.back();
  if (layout_.lines.size() > 1 && int64_t{line.y} + line.height > height_) {
    layout_.pieces.resize(line.firstPiece);
    layout_.lines.pop_back();
    CutLastLine(line.begin);
  } else if (style_.maxLines > 0 && layout_.lines.size() >= static_cast<size_t>(style_.maxLines)) {
    CutLastLine(next);
  } else {
    BeginLine(next);
  }
}

/// Makes a line of the current pieces.
void Setter::CloseLine(size_t end, bool isWrapped) {
  JoinPieces();
  const auto& pieces = layout_.pieces;
  Line line{};
  line.begin = static_cast<uint32_t>(begin_);
  line.end = static_cast<uint32_t>(end);
  line.firstPiece = static_cast<uint32_t>(first_);
  line.isWrapped = isWrapped;
  int32_t below = 0;
  const auto makeRoomFor = [&](const LaidRun& run) {
    line.ascent = std::max(line.ascent, run.ascent);
    below = std::max(below, run.height - run.ascent);
  };
  for (size_t i = first_; i < pieces.size(); ++i) {
    makeRoomFor(layout_.runs[pieces[i].run]);
    if (pieces[i].kind == PieceKind::Text || pieces[i].kind == PieceKind::Ellipsis)
      line.width = Clamped(int64_t{pieces[i].x} + pieces[i].width);
  }
  if (pieces.size() == first_) makeRoomFor(layout_.runs[RunAt(begin_)]);
  line.height = line.ascent + below;
  if (!layout_.lines.empty()) {
    const Line& above = layout_.lines.back();
    line.y = Clamped(above.y + std::max<int64_t>(0, int64_t{above.height} + style_.lineGap));
  }
  if (isWrapped && style_.align == TextAlign::Justify) Justify(line);
  layout_.lines.push_back(line);
}

/// Joins adjacent pieces that can be drawn by one call.
void Setter::JoinPieces() {
  auto& pieces = layout_.pieces;
  if (pieces.size() == first_) return;
  size_t kept = first_;
  for (size_t i = first_ + 1; i < pieces.size(); ++i) {
    const Piece piece = pieces[i];
    size_t before = kept;
    const bool maySpacesJoin = style_.align != TextAlign::Justify && kept > first_ &&
                               pieces[kept].kind == PieceKind::Spaces &&
                               pieces[kept].run == piece.run;
    if (maySpacesJoin) --before;
    Piece& last = pieces[before];
    if (last.kind == PieceKind::Text && piece.kind == PieceKind::Text && last.run == piece.run) {
      last.end = piece.end;
      last.width = Clamped(int64_t{piece.x} + piece.width - last.x);
      kept = before;
    } else {
      pieces[++kept] = piece;
    }
  }
  pieces.resize(kept + 1);
}

/// Widens the spaces between words, after the last tab only.
void Setter::Justify(Line& line) {
  auto& pieces = layout_.pieces;
  size_t end = pieces.size();
  while (end > first_ && pieces[end - 1].kind != PieceKind::Text) --end;
  size_t begin = end;
  while (begin > first_ && pieces[begin - 1].kind != PieceKind::Tab) --begin;
  while (begin < end && pieces[begin].kind != PieceKind::Text) ++begin;
  const auto isGap = [](const Piece& piece) { return piece.kind == PieceKind::Spaces; };
  const int64_t gaps = std::count_if(pieces.begin() + static_cast<ptrdiff_t>(begin),
                                     pieces.begin() + static_cast<ptrdiff_t>(end), isGap);
  const int64_t room = width_ - line.width;
  if (gaps == 0 || room <= 0) return;
  int64_t gap = 0, moved = 0;
  for (size_t i = begin; i < pieces.size(); ++i) {
    pieces[i].x = Clamped(pieces[i].x + moved);
    if (i >= end || !isGap(pieces[i])) continue;
    const int64_t next = room * ++gap / gaps;
    pieces[i].width = Clamped(pieces[i].width + next - moved);
    moved = next;
  }
  line.width = Clamped(width_);
}

/// Ends the layout after the last line. If the text from `rest` on has visible characters, appends
/// the ellipsis to that line.
void Setter::CutLastLine(size_t rest) {
  isDone_ = true;
  while (rest < text_.size() && (IsBlank(text_[rest]) || LineEndLength(text_, rest) > 0))
    rest += std::max<size_t>(1, LineEndLength(text_, rest));
  if (rest == text_.size()) return;
  layout_.isCut = true;
  if (layout_.ellipsis.empty()) return;
  const Line line = layout_.lines.back();
  layout_.pieces.resize(line.firstPiece);
  layout_.lines.pop_back();
  BeginLine(line.begin);
  while (at_ < text_.size() && LineEndLength(text_, at_) == 0) {
    while (layout_.runs[run_].end <= at_) ++run_;
    const size_t next = NextChar(text_, at_);
    const int64_t limit = width_ - GetWidth(*layout_.runs[run_].font, layout_.ellipsis);
    if (IsBlank(text_[at_])) {
      AddBlank(next);
    } else if (!AddWord(next, limit)) {
      break;
    }
    at_ = next;
  }
  AddEllipsis();
  CloseLine(at_, false);
}

/// Adds the ellipsis after the last visible character.
void Setter::AddEllipsis() {
  auto& pieces = layout_.pieces;
  while (pieces.size() > first_ && pieces.back().kind != PieceKind::Text) {
    at_ = pieces.back().begin;
    pen_ = pieces.back().x;
    pieces.pop_back();
  }
  const size_t run = pieces.size() > first_ ? pieces.back().run : RunAt(begin_);
  const auto at = static_cast<uint32_t>(at_);
  pieces.push_back({at, at, Clamped(pen_), GetWidth(*layout_.runs[run].font, layout_.ellipsis),
                    static_cast<uint32_t>(run), PieceKind::Ellipsis});
}

/// Moves the lines to their positions in the box.
void Setter::Align() {
  auto& lines = layout_.lines;
  for (const Line& line : lines) layout_.width = std::max(layout_.width, line.width);
  layout_.height = Clamped(int64_t{lines.back().y} + lines.back().height);
  const int64_t width = style_.width == kUnlimited ? layout_.width : width_;
  const int64_t below =
      std::max<int64_t>(0, style_.height == kUnlimited ? 0 : height_ - layout_.height);
  const int64_t down = style_.verticalAlign == VerticalAlign::Middle   ? below / 2
                       : style_.verticalAlign == VerticalAlign::Bottom ? below
                                                                       : 0;
  for (Line& line : lines) {
    const int64_t room = std::max<int64_t>(0, width - line.width);
    if (style_.align == TextAlign::Center) line.x = Clamped(room / 2);
    if (style_.align == TextAlign::Right) line.x = Clamped(room);
    line.y = Clamped(line.y + down);
  }
}

}  // namespace

TextLayout SetText(const TextRun* runs, size_t count, const TextStyle& style) {
  TextLayout layout;
  if (count == 0) return layout;
  size_t size = 0;
  for (size_t i = 0; i < count; ++i) size += runs[i].text.size();
  layout.text.reserve(size);
  for (size_t i = 0; i < count; ++i) {
    AppendCharacters(layout.text, runs[i].text);
    const VuFont& font = *runs[i].font;
    layout.runs.push_back({static_cast<uint32_t>(layout.text.size()), &font, runs[i].color,
                           font.GetAscent(), font.GetOneLineHeight()});
  }
  AppendCharacters(layout.ellipsis, style.ellipsis);
  Setter(layout, style).Set();
  layout.pieces.shrink_to_fit();
  return layout;
}

}  // namespace ZIRK::kit
