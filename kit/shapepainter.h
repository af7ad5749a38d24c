#pragma once

#include <zirk/kit/paint.h>

#include "cellcache.h"
#include "recipe.h"

namespace ZIRK::kit {

/// Draws the shape of a recipe on a surface, cell by cell. It skips cells outside the clipping
/// rectangle.
class ShapePainter {
 public:
  /// `bounds` is the rectangle of the shape on `target`, which a gradient of `paint` covers. The
  /// painter writes the recipe of that gradient to `gradient`.
  ShapePainter(CellCache& cache, Recipe& gradient, VuBitmap& target, const Paint& paint,
               const VuRect& bounds);

  /// Fills a rectangle inside the bounds.
  void Fill(const VuRect& rect);
  /// Draws the shape at its own size.
  void Draw(const Recipe& recipe);
  /// Draws a shape that is kept divided, and stretches its middle parts to fill the bounds.
  void DrawStretched(const Recipe& recipe, const Window& window);

 private:
  /// Draws the nine parts with these widths and heights on the target.
  void DrawCells(const Cells& cells, VuPoint at, const Division& widths, const Division& heights);
  void FillThrough(const VuBitmap& coverage, const VuRect& rect);
  /// Fills `rect` from the cells of the gradient, through the mask if there is one.
  void FillByGradient(const VuRect& rect, const VuBitmap* mask);
  void DrawPiece(const VuRect& piece, const VuBitmap& gradient, VuPoint from, const VuRect& rect,
                 const VuBitmap* mask);

  CellCache& cache_;
  Recipe& gradient_;
  VuBitmap& target_;
  const Paint& paint_;
  const VuRect bounds_, visible_;
};

}  // namespace ZIRK::kit
