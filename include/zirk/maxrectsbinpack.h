#pragma once

#include <zirk/binpack.h>

#include <cstddef>

namespace ZIRK {

/// Packs by the MaxRects algorithm: a list of the maximal free rectangles is kept; each is split
/// around what is placed, and those that lie in others are pruned.
class ZIRK_API MaxRectsBinPack : public BinPack {
 public:
  /// Values of `rule`: what makes a free rectangle the best one. With any other nothing is placed.
  enum Rule : int32_t {
    BestShortSideFit = 0,  ///< The least left over on the shorter side, then on the longer.
    BestLongSideFit = 1,   ///< The least left over on the longer side, then on the shorter.
    BestAreaFit = 2,       ///< The least area left over, then on the shorter side.
    BottomLeft = 3,        ///< The lowest bottom edge, then the lowest x.
    ContactPoint = 4,      ///< The longest contact with the bin's edges and with what was placed.
  };

  /// An empty bin of that size, in pixels.
  MaxRectsBinPack(int width, int height);
  ~MaxRectsBinPack() override;

  void Insert(std::vector<BinSize>& rects, std::vector<BinRect>& dst) override;
  BinRect Insert(int width, int height) override;
  std::pair<int, int> GetUsedSize() override;
  void Resize(int width, int height) override;

  /// A Rule, which may be changed between two requests.
  int32_t rule = BestShortSideFit;
  /// Whether a request may be turned by 90 degrees; its place then has width and height exchanged.
  bool allowRotation = false;
  /// The placed rectangles, in the order in which they were placed. For reading.
  std::vector<BinRect> usedRects;
  /// The maximal free rectangles; of two that are equally good the earlier one is taken. For
  /// reading.
  std::vector<BinRect> freeRects;

 private:
  struct Score;
  struct Position;
  /// What one placement works with, kept so that not every one allocates it.
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
