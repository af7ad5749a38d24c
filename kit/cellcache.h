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

/// The parts into which the width or height of a window is divided: the fixed part before the
/// stretched one, the stretched part, which is 1 or 0 pixels long, and the fixed part after it.
using Division = std::array<int, 3>;

/// A window of a shape, and its division into nine parts.
struct Window {
  int x, y;
  Division across, down;

  int Width() const { return across[0] + across[1] + across[2]; }
  int Height() const { return down[0] + down[1] + down[2]; }
};

/// One part of a window.
struct Cell {
  VuRect place{};                    ///< The box of the covered pixels; empty if there are none.
  std::unique_ptr<VuBitmap> bitmap;  ///< The coverage in that box; null if it is full everywhere.
};
using Cells = std::array<Cell, 9>;

/// Keeps cells by the recipe of their shape and their window, and drops the least recently used.
class CellCache {
 public:
  CellCache(VuGraphics& graphics, uint32_t limit) : graphics_(graphics), limit_(limit) {}

  /// The coverage of a window. Null if the backend refused a bitmap, which it logged. Throws
  /// std::bad_alloc.
  const Cells* Coverage(const Recipe& recipe, const Window& window);
  /// The pixels of a gradient in a window that is not divided. The last result of Coverage() stays
  /// valid. Fails as Coverage() does.
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

  /// Makes the cells of an entry. Returns false if the backend refused a bitmap.
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
  const Cells* inUse_ = nullptr;  ///< The last result of Coverage(), which is not dropped.
  Recipe key_;
  bool hasOpaqueFormat_ = true;
  FigureRenderer figures_;
  SoftRenderer softs_;
  std::vector<uint8_t> coverage_;
  std::vector<uint32_t> pixels_;
};

}  // namespace ZIRK::kit
