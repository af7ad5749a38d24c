#pragma once

#include <map>
#include <utility>
#include <vector>

#include "ownsurfaces.h"

namespace ZIRK::trace {

/// Returns the part of `rect` inside `bounds`, which starts at the origin. Returns all zeros if
/// they do not overlap.
VuRect Inside(const VuRect& rect, const VuRect& bounds);

/// The pixels of its surface that an operation writes or blends.
struct Written {
  VuRect part{0, 0, 0, 0};      ///< Inside the surface.
  std::vector<uint8_t> pixels;  ///< Of the part, row by row; 0 if not written.

  uint64_t Count() const;
};

/// The part that finds which pixels operations write, by drawing them on other surfaces.
class Coverage {
 public:
  explicit Coverage(Player& player) : player_(player), own_(player, UINT32_MAX) {}

  /// Call it with each record before it is played.
  void Follow(const Record& record);

  /// Finds the pixels that an operation writes. Call it before the operation is played. A pixel
  /// counts if the shape, the mask or the glyph covers it inside the clipping rectangle, regardless
  /// of colour and alpha, and even if its value does not change. Returns false on failure; see the
  /// player's Problem().
  bool Find(const Record& record, Written& written);

  /// Does the same for a drawing operation with its own colours and its surface's blending. The
  /// pixels are kReplaced if the result does not depend on their old values, otherwise kBlended.
  bool FindReplaced(const Record& record, Written& written);
  static constexpr uint8_t kBlended = 1, kReplaced = 2;

 private:
  /// The pixels of a part before and after an operation.
  struct Drawn {
    std::vector<uint8_t> before, after;
  };

  bool PlayOn(Id target, const Record& record, bool isWhite);
  Id WhiteLike(Id source);
  bool DrawWhite(const Record& record, const VuBitmap& target, Written& written);
  bool DrawOver(size_t background, const Record& record, const VuBitmap& target, const VuRect& part,
                Drawn& drawn);

  Player& player_;
  OwnSurfaces own_;                                 ///< Fewer than 100 bitmaps.
  std::map<std::pair<int, int>, uint32_t> whites_;  ///< Opaque bitmaps by size.
  /// The latest record of each operation that sets a part of a surface's state.
  std::map<Id, std::map<Operation, std::vector<uint8_t>>> states_;
};

}  // namespace ZIRK::trace
