#include "shapepainter.h"

#include <algorithm>

#include "gradientrenderer.h"
#include "rects.h"

namespace ZIRK::kit {

namespace {

/// The side of a cell, unless the shape ends before it.
constexpr int kCellSide = 128;

/// The side of a gradient's cell in the direction in which the gradient is constant, if the shape
/// is no longer than this.
constexpr int kNarrow = 16;

/// Calls `use(x, y)` with the corner of each cell of `bounds` that intersects `visible`, relative
/// to the bounds. Stops when it returns false: if memory is short for one cell, it is for the
/// others.
template <typename F>
void ForEachCell(const VuRect& bounds, const VuRect& visible, F&& use) {
  if (visible.width == 0) return;
  const auto firstOf = [](int from) { return from / kCellSide * kCellSide; };
  const int left = visible.x - bounds.x, top = visible.y - bounds.y;
  for (int y = firstOf(top); y < top + visible.height; y += kCellSide)
    for (int x = firstOf(left); x < left + visible.width; x += kCellSide)
      if (!use(x, y)) return;
}

}  // namespace

ShapePainter::ShapePainter(CellCache& cache, Recipe& gradient, VuBitmap& target, const Paint& paint,
                           const VuRect& bounds)
    : cache_(cache),
      gradient_(gradient),
      target_(target),
      paint_(paint),
      bounds_(bounds),
      visible_(Intersect(bounds, Intersect(target.GetClippingRect(), target.GetBounds()))) {
  if (paint.GetKind() != Paint::Kind::Plain)
    WriteGradient(gradient_, paint, bounds.width, bounds.height);
}

void ShapePainter::Fill(const VuRect& rect) {
  if (paint_.GetKind() == Paint::Kind::Plain)
    target_.DrawRect(rect, paint_.GetFrom());
  else
    FillByGradient(rect, nullptr);
}

void ShapePainter::Draw(const Recipe& recipe) {
  ForEachCell(bounds_, visible_, [&](int x, int y) {
    const Division width{std::min(kCellSide, bounds_.width - x)};
    const Division height{std::min(kCellSide, bounds_.height - y)};
    const Cells* const cells = cache_.Coverage(recipe, {x, y, width, height});
    if (cells) DrawCells(*cells, {bounds_.x + x, bounds_.y + y}, width, height);
    return cells != nullptr;
  });
}

void ShapePainter::DrawStretched(const Recipe& recipe, const Window& window) {
  if (visible_.width == 0) return;
  const Cells* const cells = cache_.Coverage(recipe, window);
  Division widths = window.across, heights = window.down;
  widths[1] = bounds_.width - widths[0] - widths[2];
  heights[1] = bounds_.height - heights[0] - heights[2];
  if (cells) DrawCells(*cells, {bounds_.x, bounds_.y}, widths, heights);
}

void ShapePainter::DrawCells(const Cells& cells, VuPoint at, const Division& widths,
                             const Division& heights) {
  const Cell* cell = cells.data();
  for (size_t row = 0; row < 3; ++row) {
    VuRect full{};  // Adjacent parts with full coverage are drawn together.
    VuPoint corner = at;
    for (size_t column = 0; column < 3; ++column, ++cell) {
      VuRect rect = cell->place;
      // The stretched part is one pixel long: if that is covered, the whole length is.
      if (column == 1 && rect.width > 0) rect.width = widths[1];
      if (row == 1 && rect.height > 0) rect.height = heights[1];
      rect.x += corner.x;
      rect.y += corner.y;
      corner.x += widths[column];
      if (cell->bitmap) {
        FillThrough(*cell->bitmap, rect);
      } else if (full.width > 0 && full.x + full.width == rect.x && full.y == rect.y &&
                 full.height == rect.height) {
        full.width += rect.width;
      } else if (rect.width > 0) {
        if (full.width > 0) Fill(full);
        full = rect;
      }
    }
    if (full.width > 0) Fill(full);
    at.y += heights[row];
  }
}

void ShapePainter::FillThrough(const VuBitmap& coverage, const VuRect& rect) {
  if (paint_.GetKind() == Paint::Kind::Plain)
    target_.DrawObject(rect, coverage, coverage.GetBounds(), VuTransform(), paint_.GetFrom());
  else
    FillByGradient(rect, &coverage);
}

void ShapePainter::FillByGradient(const VuRect& rect, const VuBitmap* mask) {
  // A gradient that is constant in one direction needs one cell in it.
  const bool level = IsLevel(paint_), upright = IsUpright(paint_);
  const auto sideOf = [](int length) { return length <= kNarrow ? kNarrow : kCellSide; };
  ForEachCell(bounds_, Intersect(rect, visible_), [&](int x, int y) {
    const Window window{
        level ? 0 : x,
        upright ? 0 : y,
        {level ? sideOf(bounds_.width) : std::min(kCellSide, bounds_.width - x)},
        {upright ? sideOf(bounds_.height) : std::min(kCellSide, bounds_.height - y)}};
    const Cells* const cells = cache_.Gradient(gradient_, window);
    if (!cells) return false;
    const VuPoint corner{bounds_.x + x, bounds_.y + y};
    const VuRect piece = Intersect(rect, {corner.x, corner.y, window.Width(), window.Height()});
    DrawPiece(piece, *cells->front().bitmap, {piece.x - corner.x, piece.y - corner.y}, rect, mask);
    return true;
  });
}

void ShapePainter::DrawPiece(const VuRect& piece, const VuBitmap& gradient, VuPoint from,
                             const VuRect& rect, const VuBitmap* mask) {
  const VuRect source{from.x, from.y, piece.width, piece.height};
  if (!mask) return target_.DrawObject(piece, gradient, source);
  const VuRect bounds = mask->GetBounds();
  const auto across = [&](int x) {
    return static_cast<float>(x - rect.x) * static_cast<float>(bounds.width) /
           static_cast<float>(rect.width);
  };
  const auto down = [&](int y) {
    return static_cast<float>(y - rect.y) * static_cast<float>(bounds.height) /
           static_cast<float>(rect.height);
  };
  const float left = across(piece.x), right = across(piece.x + piece.width);
  const float top = down(piece.y), bottom = down(piece.y + piece.height);
  VuTVector2D<float> corners[] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
  target_.DrawObject(piece, gradient, source, VuTransform(), white, *mask, corners);
}

}  // namespace ZIRK::kit
