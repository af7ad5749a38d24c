#pragma once

#include <zirk/kit/pictures.h>

#include <optional>
#include <set>
#include <string>
#include <utility>

#include "player.h"

namespace ZIRK::trace {

/// A comparison of two backends that draw the same trace.
class Comparison {
 public:
  /// Ignores differences of up to `worst` steps of a channel.
  Comparison(const std::string& a, const std::string& b, int worst) : a_(a), b_(b), worst_(worst) {}

  /// Runs one operation on both backends. Returns false if either fails; see Failed().
  bool Play(const Record& record);
  /// Returns the player on which the operation failed.
  const Player& Failed() const { return *failed_; }

  /// Returns the difference between the surfaces of this number, or nullopt if they agree or
  /// either does not exist.
  std::optional<kit::Difference> Differ(Id surface);
  /// Returns the surface of each backend, or null if it does not exist.
  std::pair<VuBitmap*, VuBitmap*> Find(Id surface) { return {a_.Find(surface), b_.Find(surface)}; }

  /// Returns whether any surface drawn on since the last SwapBuffers() differs. Call it before each
  /// record is played. It compares only if `looks` is set and the record shows a screen or deletes
  /// a surface.
  bool DiffersBefore(const Record& record, bool looks = true);
  /// Does the same after the last record.
  bool DiffersAtEnd();

 private:
  Player a_, b_;
  const int worst_;
  const Player* failed_ = nullptr;
  std::set<Id> drawn_;
};

}  // namespace ZIRK::trace
