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

/// Something in a trace that costs time and could be left out, as it was measured.
struct Hint {
  std::string what;
  uint64_t times = 0, frames = 0;  ///< How often, and in how many frames.
  uint64_t first = 0;              ///< The first operation that did it.
};

/// Watches a player for what costs time in vain.
class Hints {
 public:
  Hints(Player& player, Coverage& coverage) : player_(player), coverage_(coverage) {}

  /// To be called with each record before and after it is played. False where something cannot be
  /// found out: the player knows the problem.
  bool Before(const Record& record);
  void After(const Record& record);

  /// What was found, what happened most often first.
  std::vector<Hint> Found() const;
  /// What a surface is, for people; also of one that there is not any more.
  std::string Describe(Id surface) const;

 private:
  struct Seen {
    uint64_t times = 0, frames = 0, lastFrame = 0, first = 0;
    void Add(const Record& record);
  };
  /// What is left to be seen of a clearing.
  struct Cleared {
    uint64_t operation = 0;
    uint64_t left = 0;
    std::vector<uint8_t> pixels;  ///< Of the surface, 1 where nothing was drawn over it.
  };
  struct Use {
    Seen drawn;
    uint64_t writes = 0;  ///< Operations that changed its pixels, when it was drawn first.
    bool changes = false;
  };
  /// A source and its factors, in thousandths.
  using Scaling = std::tuple<Id, int, int>;

  bool WatchClears(const Record& record);
  bool DrawOnCleared(const Record& record, Cleared& cleared);
  void WatchSources(const Record& record);
  void WatchAtlas(const Record& record);
  void Name(const Record& record);

  Player& player_;
  Coverage& coverage_;
  std::map<Id, Cleared> cleared_;
  std::map<Id, Seen> clears_;  ///< Drawn over whole, by surface.
  std::map<Id, uint64_t> writes_;
  std::map<Id, Use> sources_;
  std::map<Scaling, Seen> scalings_;
  std::map<std::pair<Id, Id>, Seen> conversions_;  ///< By source and target.
  /// Where each font's atlas had its glyphs.
  std::map<Id, std::map<const Glyph*, std::pair<int, int>>> inAtlas_;
  std::map<Id, Seen> emptied_;
  std::map<Id, std::string> kinds_, names_;
};

}  // namespace ZIRK::trace
