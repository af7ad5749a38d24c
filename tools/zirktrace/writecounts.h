#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "coverage.h"

namespace ZIRK::trace {

/// How often each pixel of a surface was written.
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
  /// Per pixel.
  double Mean() const;

 private:
  int width_ = 0, height_ = 0;
  std::vector<uint32_t> counts_;
};

/// How often the pixels of each surface were written in a frame.
class FrameCounts {
 public:
  /// To be called for each record of the frame before it is played. Gives how many pixels it
  /// writes, nothing where that cannot be found out: the player knows the problem.
  std::optional<uint64_t> Count(const Record& record, Player& player, Coverage& coverage);

  const std::map<Id, WriteCounts>& Surfaces() const { return surfaces_; }
  /// The screen that ends the frame, or else the surface that was drawn on last. None if nothing
  /// was.
  Id Shown() const { return shown_; }

 private:
  std::map<Id, WriteCounts> surfaces_;
  Id shown_ = Id::None;
};

}  // namespace ZIRK::trace
