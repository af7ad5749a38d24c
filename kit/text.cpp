#include <zirk/kit/text.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

#include "utf8.h"

namespace ZIRK::kit {

namespace {

/// Longer text is passed to the library in pieces.
constexpr size_t kPieceBytes = 512;
constexpr size_t kLongestChar = 4;

/// The length of the next piece of a text that is longer than one. It ends before a character, if
/// possible.
size_t PieceEnd(std::string_view text) {
  size_t end = 0;
  for (size_t at = 0; at <= kPieceBytes; at = NextChar(text, at))
    if (at > 0 && CharLength(text, at) > 0) end = at;
  return end > 0 ? end : kPieceBytes;
}

/// A copy of a piece of text, terminated by a zero and without others.
class Terminated {
 public:
  explicit Terminated(std::string_view text) {
    text.copy(bytes_, text.size());
    bytes_[text.size()] = '\0';
    for (char* null = bytes_; (null += std::strlen(null)) < bytes_ + text.size();)
      *null = kNoCharacter;
  }
  const char* Text() const { return bytes_; }
  void CutAt(size_t end) { bytes_[end] = '\0'; }

 private:
  char bytes_[kPieceBytes + kLongestChar + 1];
};

/// Calls `visit(text, pen)` with each piece of the text, and returns the final pen position.
template <class Visit>
int64_t VisitPieces(const VuFont& font, std::string_view text, Visit visit) {
  int64_t pen = 0;
  while (text.size() > kPieceBytes) {
    const size_t end = PieceEnd(text), next = CharLength(text, end);
    // Includes the next character, for kerning.
    Terminated piece(text.substr(0, end + next));
    const int width = font.GetOneLineWidth(piece.Text());
    piece.CutAt(end);
    visit(piece.Text(), pen);
    pen += width - font.GetOneLineWidth(Terminated(text.substr(end, next)).Text());
    text.remove_prefix(end);
  }
  const Terminated piece(text);
  visit(piece.Text(), pen);
  return pen + font.GetOneLineWidth(piece.Text());
}

template <class Draw>
void DrawPieces(const VuFont& font, std::string_view text, VuPoint pos, Draw draw) {
  if (text.size() <= kPieceBytes) {
    draw(Terminated(text).Text(), pos);
    return;
  }
  VisitPieces(font, text, [&](const char* piece, int64_t pen) {
    const int64_t x = pos.x + pen;
    if (const auto whole = static_cast<int32_t>(x); whole == x) draw(piece, VuPoint{whole, pos.y});
  });
}

}  // namespace

void DrawText(VuBitmap& target, const VuFont& font, std::string_view text, VuPoint pos,
              VuColor color) {
  DrawPieces(font, text, pos,
             [&](const char* piece, VuPoint at) { target.DrawText(font, piece, at, color); });
}

void DrawText(VuBitmap& target, const VuFont& font, std::string_view text, VuPoint pos,
              VuColor color, VuTransform t) {
  DrawPieces(font, text, pos,
             [&](const char* piece, VuPoint at) { target.DrawText(font, piece, at, color, t); });
}

int GetWidth(const VuFont& font, std::string_view text) {
  const int64_t width = VisitPieces(font, text, [](const char*, int64_t) {});
  return static_cast<int>(
      std::clamp<int64_t>(width, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

}  // namespace ZIRK::kit
