#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "coverage.h"

namespace ZIRK::trace {

/// The number of writes to each pixel of a surface.
class WriteCounts {
 public:
  WriteCounts() = default;
  WriteCounts(int width, int height)
      : width_(width),
        height_(height),
        counts_(static_cast<size_t>(width) * static_cast<size_t>(height)) {}

  void Add(const Written& written);

  int Width() const { return width_; }
  int Height() const { return height_; }
  const std::vector<uint32_t>& Counts() const { return counts_; }
  uint64_t Sum() const;
  uint32_t Most() const;
  /// Returns the mean per pixel.
  double Mean() const;

 private:
  int width_ = 0, height_ = 0;
  std::vector<uint32_t> counts_;
};

/// The numbers of writes to the pixels of each surface in a frame.
class FrameCounts {
 public:
  /// Counts the writes of a record and returns how many pixels it writes. Call it with each record
  /// of the frame before the record is played. Returns nullopt on failure; see the player's
  /// Problem().
  std::optional<uint64_t> Count(const Record& record, Player& player, Coverage& coverage);

  const std::map<Id, WriteCounts>& Surfaces() const { return surfaces_; }
  /// Returns the screen that ends the frame, or otherwise the surface drawn on last, or None if
  /// nothing was drawn.
  Id Shown() const { return shown_; }

 private:
  std::map<Id, WriteCounts> surfaces_;
  Id shown_ = Id::None;
};

}  // namespace ZIRK::trace
