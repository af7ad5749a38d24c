#pragma once

#include <zirk/kit/pictures.h>

#include <optional>
#include <set>
#include <string>
#include <utility>

#include "player.h"

namespace ZIRK::trace {

/// Two backends that draw the same trace.
class Comparison {
 public:
  /// Differences of up to `worst` steps of a channel are none.
  Comparison(const std::string& a, const std::string& b, int worst) : a_(a), b_(b), worst_(worst) {}

  /// Carries out one operation by both. False where one cannot: see Failed().
  bool Play(const Record& record);
  /// The player that could not carry out the operation.
  const Player& Failed() const { return *failed_; }

  /// Nothing where the surfaces of this number agree, or are not there.
  std::optional<kit::Difference> Differ(Id surface);
  /// The same surface as both have it; null where it is not there.
  std::pair<VuBitmap*, VuBitmap*> Find(Id surface) { return {a_.Find(surface), b_.Find(surface)}; }

  /// Whether a surface differs that was drawn on since a screen was shown. To be called before each
  /// record is played; looks where the record shows a screen or ends a surface, if `looks`.
  bool DiffersBefore(const Record& record, bool looks = true);
  /// The same after the last record.
  bool DiffersAtEnd();

 private:
  Player a_, b_;
  const int worst_;
  const Player* failed_ = nullptr;
  std::set<Id> drawn_;
};

}  // namespace ZIRK::trace
