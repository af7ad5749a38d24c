#include <zirk/impl/log.h>
#include <zirk/maxrectsbinpack.h>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace ZIRK {

// --- Rectangles -------------------------------------------------------------------------------

namespace {

// Edges and scores have 64 bits, so that no size that a caller can pass overflows them. Extents are
// not checked, and nothing below depends on their being positive.

int64_t Right(const BinRect& r) {
  return int64_t{r.x} + r.width;
}

int64_t Bottom(const BinRect& r) {
  return int64_t{r.y} + r.height;
}

int32_t Saturate(int64_t v) {
  using Limits = std::numeric_limits<int32_t>;
  return static_cast<int32_t>(std::clamp<int64_t>(v, Limits::min(), Limits::max()));
}

// Most pairs are apart, on any of four sides, so a branch per side would often be mispredicted.

bool Touches(const BinRect& node, const BinRect& f) {
  return int{node.x <= Right(f)} & int{Right(node) >= f.x} & int{node.y <= Bottom(f)} &
         int{Bottom(node) >= f.y};
}

bool Intersects(const BinRect& node, const BinRect& f) {
  return int{node.x < Right(f)} & int{Right(node) > f.x} & int{node.y < Bottom(f)} &
         int{Bottom(node) > f.y};
}

bool LiesInside(const BinRect& a, const BinRect& b) {
  return a.x >= b.x && a.y >= b.y && Right(a) <= Right(b) && Bottom(a) <= Bottom(b);
}

bool LiesInsideAny(const BinRect& a, const std::vector<BinRect>& list) {
  return std::any_of(list.begin(), list.end(), [&](const BinRect& b) { return LiesInside(a, b); });
}

/// Adds `added`, and removes rectangles from `list` that are inside another one. Of equal
/// rectangles the later one stays.
void AddPruned(std::vector<BinRect>& list, const BinRect& added) {
  const auto inside = [&](const BinRect& r) { return LiesInside(r, added); };
  list.erase(std::remove_if(list.begin(), list.end(), inside), list.end());
  if (!LiesInsideAny(added, list)) list.push_back(added);
}

/// Calls `add` with the parts of `f` above, below, left and right of `node`, which intersects it.
template <typename Add>
void Split(const BinRect& f, const BinRect& node, Add add) {
  // These parts are smaller than `f`, so 32 bits are enough for them.
  const auto right = static_cast<int32_t>(Right(node));
  const auto bottom = static_cast<int32_t>(Bottom(node));
  if (node.y > f.y) add(BinRect{f.x, f.y, f.width, node.y - f.y});
  if (bottom < Bottom(f))
    add(BinRect{f.x, bottom, f.width, static_cast<int32_t>(Bottom(f) - bottom)});
  if (node.x > f.x) add(BinRect{f.x, f.y, node.x - f.x, f.height});
  if (right < Right(f)) add(BinRect{right, f.y, static_cast<int32_t>(Right(f) - right), f.height});
}

/// Removes the elements at `positions`, in ascending order, from `list`.
void EraseAt(std::vector<BinRect>& list, const std::vector<size_t>& positions) {
  if (positions.empty()) return;
  const auto at = [&](size_t i) { return list.begin() + static_cast<std::ptrdiff_t>(i); };
  auto end = at(positions[0]);
  for (size_t i = 0; i < positions.size(); ++i) {
    const size_t next = i + 1 < positions.size() ? positions[i + 1] : list.size();
    end = std::copy(at(positions[i] + 1), at(next), end);
  }
  list.erase(end, list.end());
}

/// The length that the intervals [a1, a2] and [b1, b2] have in common.
int64_t CommonLength(int64_t a1, int64_t a2, int64_t b1, int64_t b2) {
  if (a2 < b1 || b2 < a1) return 0;
  return std::min(a2, b2) - std::max(a1, b1);
}

}  // namespace

// --- Scores -----------------------------------------------------------------------------------

/// A lower score is better.
struct MaxRectsBinPack::Score {
  int64_t primary;
  int64_t secondary;

  bool operator<(const Score& other) const {
    if (primary != other.primary) return primary < other.primary;
    return secondary < other.secondary;
  }
};

/// A place and its score. The height of `node` is 0 until a place is found.
struct MaxRectsBinPack::Position {
  BinRect node;
  Score score;
};

int64_t MaxRectsBinPack::ContactLength(const BinRect& node) const {
  int64_t length = 0;
  if (node.x == 0 || Right(node) == binWidth) length += node.height;
  if (node.y == 0 || Bottom(node) == binHeight) length += node.width;
  for (const BinRect& used : usedRects) {
    if (used.x == Right(node) || Right(used) == node.x)
      length += CommonLength(used.y, Bottom(used), node.y, Bottom(node));
    if (used.y == Bottom(node) || Bottom(used) == node.y)
      length += CommonLength(used.x, Right(used), node.x, Right(node));
  }
  return length;
}

/// The place with the lowest score below `worst`, the earliest of several.
template <typename ScoreOf>
MaxRectsBinPack::Position MaxRectsBinPack::FindBest(int32_t width, int32_t height, Score worst,
                                                    ScoreOf scoreOf) const {
  Position best{{}, worst};
  const auto consider = [&](const BinRect& f, int32_t w, int32_t h) {
    if (f.width < w || f.height < h) return;
    const BinRect node{f.x, f.y, w, h};
    const Score score = scoreOf(node, f);
    if (score < best.score) best = {node, score};
  };
  for (const BinRect& f : freeRects) {
    consider(f, width, height);
    if (allowRotation) consider(f, height, width);
  }
  return best;
}

MaxRectsBinPack::Position MaxRectsBinPack::Find(int32_t width, int32_t height) const {
  constexpr Score kWorst{std::numeric_limits<int64_t>::max(), std::numeric_limits<int64_t>::max()};
  const auto shorter = [](const BinRect& node, const BinRect& f) {
    return std::min(int64_t{f.width} - node.width, int64_t{f.height} - node.height);
  };
  const auto longer = [](const BinRect& node, const BinRect& f) {
    return std::max(int64_t{f.width} - node.width, int64_t{f.height} - node.height);
  };
  const auto area = [](const BinRect& r) { return int64_t{r.width} * r.height; };
  switch (rule) {
    case BestShortSideFit:
      return FindBest(width, height, kWorst, [&](const BinRect& node, const BinRect& f) {
        return Score{shorter(node, f), longer(node, f)};
      });
    case BestLongSideFit:
      return FindBest(width, height, kWorst, [&](const BinRect& node, const BinRect& f) {
        return Score{longer(node, f), shorter(node, f)};
      });
    case BestAreaFit:
      return FindBest(width, height, kWorst, [&](const BinRect& node, const BinRect& f) {
        return Score{area(f) - area(node), shorter(node, f)};
      });
    case BottomLeft:
      return FindBest(width, height, kWorst, [](const BinRect& node, const BinRect&) {
        return Score{Bottom(node), node.x};
      });
    case ContactPoint:
      // Only negative extents make a contact negative; such a place does not count.
      return FindBest(width, height, {1, 0}, [this](const BinRect& node, const BinRect&) {
        return Score{-ContactLength(node), 0};
      });
    default:
      return {};
  }
}

// --- The bin ----------------------------------------------------------------------------------

BinPack::~BinPack() = default;

MaxRectsBinPack::MaxRectsBinPack(int width, int height)
    : BinPack(width, height), freeRects{{0, 0, width, height}} {}

MaxRectsBinPack::~MaxRectsBinPack() = default;

/// Replaces the free rectangles that `node` intersects by the parts that it leaves of them, at the
/// end of the list, and prunes as if by comparing all with all. Few comparisons are needed, since
/// no free rectangle lies inside another:
/// - A whole rectangle cannot lie inside a piece: it would lie inside the rectangle that was split.
/// - A whole rectangle that contains a piece touches the node, as the piece does.
void MaxRectsBinPack::SplitAround(const BinRect& node) {
  std::vector<size_t>& split = scratch.split;
  std::vector<BinRect>& touching = scratch.touching;
  std::vector<BinRect>& pieces = scratch.pieces;
  split.clear();
  touching.clear();
  pieces.clear();
  for (size_t i = 0; i < freeRects.size(); ++i) {
    if (!Touches(node, freeRects[i])) continue;
    if (Intersects(node, freeRects[i]))
      split.push_back(i);
    else
      touching.push_back(freeRects[i]);
  }
  for (const size_t i : split) {
    Split(freeRects[i], node, [&](const BinRect& piece) {
      if (!LiesInsideAny(piece, touching)) AddPruned(pieces, piece);
    });
  }
  EraseAt(freeRects, split);
  freeRects.insert(freeRects.end(), pieces.begin(), pieces.end());
}

void MaxRectsBinPack::Place(const BinRect& node) {
  SplitAround(node);
  usedRects.push_back(node);
}

void MaxRectsBinPack::Insert(std::vector<BinSize>& rects, std::vector<BinRect>& dst) {
  dst.clear();
  while (!rects.empty()) {
    Position best{};
    auto bestRequest = rects.begin();
    for (auto request = rects.begin(); request != rects.end(); ++request) {
      const Position position = Find(request->width, request->height);
      if (position.node.height == 0) continue;
      if (best.node.height != 0 && !(position.score < best.score)) continue;
      best = position;
      bestRequest = request;
    }
    if (best.node.height == 0) return;
    Place(best.node);
    rects.erase(bestRequest);
  }
}

BinRect MaxRectsBinPack::Insert(int width, int height) {
  const BinRect node = Find(width, height).node;
  if (node.height == 0) return node;
  Place(node);
  ZIRK_LOG_DEBUG("%s: %d,%d %dx%d", "Insert", node.x, node.y, node.width, node.height);
  return node;
}

std::pair<int, int> MaxRectsBinPack::GetUsedSize() {
  if (usedRects.empty()) return {0, 0};
  int64_t right = Right(usedRects[0]);
  int64_t bottom = Bottom(usedRects[0]);
  for (const BinRect& used : usedRects) {
    right = std::max(right, Right(used));
    bottom = std::max(bottom, Bottom(used));
  }
  return {Saturate(right), Saturate(bottom)};
}

void MaxRectsBinPack::Resize(int width, int height) {
  ZIRK_LOG_DEBUG("%s: resizing from %dx%d to %dx%d", "Resize", binWidth, binHeight, width, height);
  if (height > binHeight) {
    AddPruned(freeRects, {0, binHeight, width, Saturate(int64_t{height} - binHeight)});
    binHeight = height;
  }
  if (width > binWidth) {
    AddPruned(freeRects, {binWidth, 0, Saturate(int64_t{width} - binWidth), binHeight});
    binWidth = width;
  }
}

}  // namespace ZIRK
