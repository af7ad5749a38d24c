#pragma once

#include <zirk/binpack.h>

#include <cstddef>

namespace ZIRK {

/// Packs by the algorithm MaxRects (Jukka Jylänki, "A Thousand Ways to Pack the Bin", 2010). It
/// keeps a list of the maximal free rectangles, splits each around what is placed, and prunes those
/// that lie inside others.
///
///     MaxRectsBinPack bin(256, 64);
///     const BinRect place = bin.Insert(100, 30);
///     if (place.height == 0) return false;  // No room.
///
/// **Threads**: one at a time.
class ZIRK_API MaxRectsBinPack : public BinPack {
 public:
  /// Values of `rule`: how the best free rectangle is chosen. With any other value nothing is
  /// placed.
  enum Rule : int32_t {
    BestShortSideFit = 0,  ///< The least left over on the shorter side, then on the longer.
    BestLongSideFit = 1,   ///< The least left over on the longer side, then on the shorter.
    BestAreaFit = 2,       ///< The least area left over, then on the shorter side.
    BottomLeft = 3,        ///< The lowest bottom edge, then the lowest x.
    ContactPoint = 4,      ///< The longest contact with the bin's edges and with what was placed.
  };

  /// An empty bin of `width` x `height` pixels.
  MaxRectsBinPack(int width, int height);
  ~MaxRectsBinPack() override;

  void Insert(std::vector<BinSize>& rects, std::vector<BinRect>& dst) override;
  BinRect Insert(int width, int height) override;
  [[nodiscard]] std::pair<int, int> GetUsedSize() override;
  void Resize(int width, int height) override;

  /// A Rule. It may be changed between two calls of Insert().
  int32_t rule = BestShortSideFit;
  /// Whether a rectangle may be turned by 90 degrees; its place then has width and height
  /// exchanged.
  bool allowRotation = false;
  /// The placed rectangles in the order of placement. Read only.
  std::vector<BinRect> usedRects;
  /// The maximal free rectangles. Of two that fit equally well the earlier one is used. Read only.
  std::vector<BinRect> freeRects;

 private:
  struct Score;
  struct Position;
  /// Working memory of one placement, kept so that placements do not allocate it again.
  struct Scratch {
    std::vector<size_t> split;
    std::vector<BinRect> touching;
    std::vector<BinRect> pieces;
  };

  ZIRK_LOCAL int64_t ContactLength(const BinRect& node) const;
  template <typename ScoreOf>
  Position FindBest(int32_t width, int32_t height, Score worst, ScoreOf scoreOf) const;
  ZIRK_LOCAL Position Find(int32_t width, int32_t height) const;
  ZIRK_LOCAL void Place(const BinRect& node);
  ZIRK_LOCAL void SplitAround(const BinRect& node);

  Scratch scratch;
};

}  // namespace ZIRK
