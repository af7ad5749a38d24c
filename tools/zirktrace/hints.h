#pragma once

#include <zirk/vufontatlas.h>

#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "coverage.h"

namespace ZIRK::trace {

/// A measured waste of time in a trace.
struct Hint {
  std::string what;
  uint64_t times = 0, frames = 0;  ///< The number of occurrences, and of frames with one.
  uint64_t first = 0;              ///< The first operation that caused it.
};

/// An observer of a player that finds operations that waste time.
class Hints {
 public:
  Hints(Player& player, Coverage& coverage) : player_(player), coverage_(coverage) {}

  /// Call Before() and After() with each record before and after it is played. Before() returns
  /// false on failure; see the player's Problem().
  bool Before(const Record& record);
  void After(const Record& record);

  /// Returns the hints, the most frequent first.
  std::vector<Hint> Found() const;
  /// Returns a description of a surface for people, even if the surface has been deleted.
  std::string Describe(Id surface) const;

 private:
  struct Seen {
    uint64_t times = 0, frames = 0, lastFrame = 0, first = 0;
    void Add(const Record& record);
  };
  /// The visible rest of a clear.
  struct Cleared {
    uint64_t operation = 0;
    uint64_t left = 0;
    std::vector<uint8_t> pixels;  ///< Of the surface, 1 if not drawn over.
  };
  struct Use {
    Seen drawn;
    uint64_t writes = 0;  ///< Operations that had changed its pixels when it was first drawn.
    bool changes = false;
  };
  /// A source and its scale factors in thousandths.
  using Scaling = std::tuple<Id, int, int>;

  bool WatchClears(const Record& record);
  bool DrawOnCleared(const Record& record, Cleared& cleared);
  void WatchSources(const Record& record);
  void WatchAtlas(const Record& record);
  void Name(const Record& record);

  Player& player_;
  Coverage& coverage_;
  std::map<Id, Cleared> cleared_;
  std::map<Id, Seen> clears_;  ///< Clears that were drawn over completely, by surface.
  std::map<Id, uint64_t> writes_;
  std::map<Id, Use> sources_;
  std::map<Scaling, Seen> scalings_;
  std::map<std::pair<Id, Id>, Seen> conversions_;  ///< By source and target.
  /// The positions of glyphs in each font's atlas.
  std::map<Id, std::map<const Glyph*, std::pair<int, int>>> inAtlas_;
  std::map<Id, Seen> emptied_;
  std::map<Id, std::string> kinds_, names_;
};

}  // namespace ZIRK::trace
