#pragma once

#include <zirk/vubitmap.h>
#include <zirk/vugraphics.h>

#include <array>
#include <list>
#include <memory>
#include <unordered_map>

#include "figurerenderer.h"
#include "recipe.h"
#include "softrenderer.h"

namespace ZIRK::kit {

/// How the width or height of a window is divided: what is kept before, a pixel that stretches or
/// none, what is kept behind.
using Division = std::array<int, 3>;

/// A window of a shape, and the nine parts that it is divided into, row by row.
struct Window {
  int x, y;
  Division across, down;

  int Width() const { return across[0] + across[1] + across[2]; }
  int Height() const { return down[0] + down[1] + down[2]; }
};

/// One part, ready to be drawn from.
struct Cell {
  VuRect place{};                    ///< All of the part that is covered; empty where nothing is.
  std::unique_ptr<VuBitmap> bitmap;  ///< Of that size; null where all of it is covered fully.
};
using Cells = std::array<Cell, 9>;

/// Cells by the recipe of their shape and their window; the least recently used are dropped.
class CellCache {
 public:
  CellCache(VuGraphics& graphics, uint32_t limit) : graphics_(graphics), limit_(limit) {}

  /// How a window is covered. Null where that could not be made; the backend has logged why, or a
  /// request for memory throws.
  const Cells* Coverage(const Recipe& recipe, const Window& window);
  /// The pixels of a gradient in a window that is not divided. What Coverage() gave before stays.
  const Cells* Gradient(const Recipe& recipe, const Window& window);

  uint32_t Bytes() const { return bytes_; }
  void Clear();

 private:
  struct Entry {
    Recipe key;
    uint64_t hash;
    uint32_t bytes;
    Cells cells;
  };
  using Entries = std::list<Entry>;

  /// Makes an entry's cells; false where a bitmap was refused.
  using Make = bool (CellCache::*)(const Recipe&, const Window&, Cells&);

  const Cells* Find(const Recipe& recipe, const Window& window, Make make);
  const Cells* Add(uint64_t hash, const Recipe& recipe, const Window& window, Make make);
  bool MakeCoverage(const Recipe& recipe, const Window& window, Cells& cells);
  bool MakeGradient(const Recipe& recipe, const Window& window, Cells& cells);
  bool MakeCell(const uint8_t* coverage, int pitch, const VuRect& part, Cell& cell);
  void Drop(Entries::iterator entry);

  VuGraphics& graphics_;
  const uint32_t limit_;
  uint32_t bytes_ = 0;
  Entries entries_;  ///< The most recently used first.
  std::unordered_multimap<uint64_t, Entries::iterator> index_;
  const Cells* inUse_ = nullptr;  ///< The coverage that is drawn at the moment.
  Recipe key_;
  bool hasOpaqueFormat_ = true;
  FigureRenderer figures_;
  SoftRenderer softs_;
  std::vector<uint8_t> coverage_;
  std::vector<uint32_t> pixels_;
};

}  // namespace ZIRK::kit
