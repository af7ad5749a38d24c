#pragma once

#include <map>
#include <utility>
#include <vector>

#include "ownsurfaces.h"

namespace ZIRK::trace {

/// The part of a rectangle that lies inside another one at the origin; all zeros if there is none.
VuRect Inside(const VuRect& rect, const VuRect& bounds);

/// Which pixels of its surface an operation writes or blends.
struct Written {
  VuRect part{0, 0, 0, 0};      ///< Inside the surface.
  std::vector<uint8_t> pixels;  ///< Of the part, row by row; 0 where nothing is written.

  uint64_t Count() const;
};

/// Finds out which pixels operations write, by having them drawn elsewhere.
class Coverage {
 public:
  explicit Coverage(Player& player) : player_(player), own_(player, UINT32_MAX) {}

  /// To be called with each record before it is played.
  void Follow(const Record& record);

  /// What an operation that changes pixels writes, to be asked before it is played. A pixel counts
  /// where the shape, the mask or the glyph covers it inside the clipping rectangle, whatever its
  /// colour and alpha, and also where it gets the value that it has. False where that cannot be
  /// found out: the player knows the problem.
  bool Find(const Record& record, Written& written);

  /// The same for a drawing operation as it is, with its colours and its surface's blending. The
  /// pixels are kReplaced where what was there before does not matter, else kBlended.
  bool FindReplaced(const Record& record, Written& written);
  static constexpr uint8_t kBlended = 1, kReplaced = 2;

 private:
  /// Pixels of a part before and after an operation.
  struct Drawn {
    std::vector<uint8_t> before, after;
  };

  bool PlayOn(Id target, const Record& record, bool isWhite);
  Id WhiteLike(Id source);
  bool DrawWhite(const Record& record, const VuBitmap& target, Written& written);
  bool DrawOver(size_t background, const Record& record, const VuBitmap& target, const VuRect& part,
                Drawn& drawn);

  Player& player_;
  OwnSurfaces own_;                                 ///< Fewer than a hundred.
  std::map<std::pair<int, int>, uint32_t> whites_;  ///< Opaque bitmaps by their size.
  /// The latest record of each operation that sets a state of a surface.
  std::map<Id, std::map<Operation, std::vector<uint8_t>>> states_;
};

}  // namespace ZIRK::trace
