#pragma once

#include <set>

#include "player.h"

namespace ZIRK::trace {

/// Bitmaps that are not part of the trace, made by the player's backend. They are deleted with the
/// context that made them, and made again on request.
class OwnSurfaces {
 public:
  /// The bitmaps' numbers count down from `last`, which must be far above kLastId.
  OwnSurfaces(Player& player, uint32_t last) : player_(player), last_(last) {}

  /// Call it with each record of the trace, since records open and close contexts.
  void Follow(const Record& record);

  /// Returns the number of the bitmap in records.
  Id IdOf(uint32_t which) const { return Id{last_ - which}; }
  /// Returns the bitmap with this size and format. Its pixels are those of its last use. Returns
  /// null if it cannot be made; see the player's Problem().
  VuBitmap* Get(uint32_t which, int width, int height, VuPixelFormat format);
  void Drop(uint32_t which);

 private:
  Player& player_;
  const uint32_t last_;
  std::set<Id> contexts_;
};

}  // namespace ZIRK::trace
