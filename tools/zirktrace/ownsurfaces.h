#pragma once

#include <set>

#include "player.h"

namespace ZIRK::trace {

/// Bitmaps that are not the trace's, made by the player's backend. They are gone with the context
/// that made them, and made again when they are asked for.
class OwnSurfaces {
 public:
  /// Their numbers go down from `last`, which is far above kLastId.
  OwnSurfaces(Player& player, uint32_t last) : player_(player), last_(last) {}

  /// To be called with each record of the trace, which open and close contexts.
  void Follow(const Record& record);

  /// The number of the bitmap in records.
  Id IdOf(uint32_t which) const { return Id{last_ - which}; }
  /// The bitmap of this size and format; what it shows is left from before. Null where it cannot be
  /// made: the player knows the problem.
  VuBitmap* Get(uint32_t which, int width, int height, VuPixelFormat format);
  void Drop(uint32_t which);

 private:
  Player& player_;
  const uint32_t last_;
  std::set<Id> contexts_;
};

}  // namespace ZIRK::trace
