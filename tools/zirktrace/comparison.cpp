#include "comparison.h"

#include <algorithm>

namespace ZIRK::trace {

bool Comparison::Play(const Record& record) {
  for (Player* const player : {&a_, &b_})
    if (!player->Play(record)) {
      failed_ = player;
      return false;
    }
  return true;
}

std::optional<kit::Difference> Comparison::Differ(Id surface) {
  const auto [a, b] = Find(surface);
  if (!a || !b) return std::nullopt;
  const auto difference = kit::Compare(*a, *b);
  if (difference && difference->worst <= worst_) return std::nullopt;
  return difference ? difference : kit::Difference{255, 255, {}};
}

bool Comparison::DiffersBefore(const Record& record, bool looks) {
  if (ChangesPixels(record.operation)) drawn_.insert(ObjectOf(record));
  // Before surfaces go, and before the next picture covers this one.
  const bool isShown = record.operation == Operation::SwapBuffers;
  const bool isLastLook = isShown || record.operation == Operation::Close;
  const bool differs = looks && isLastLook && DiffersAtEnd();
  if (isShown) drawn_.clear();
  return differs;
}

bool Comparison::DiffersAtEnd() {
  return std::any_of(drawn_.begin(), drawn_.end(),
                     [this](Id id) { return Differ(id).has_value(); });
}

}  // namespace ZIRK::trace
