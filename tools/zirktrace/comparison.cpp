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
  const Id object = ObjectOf(record);
  if (ChangesPixels(record.operation)) drawn_.insert(object);
  const bool isShown = record.operation == Operation::SwapBuffers;
  const bool goes = record.operation == Operation::Close;
  // Compare what the record deletes: one surface, or a context with its surfaces.
  const bool goesAlone = goes && a_.Find(object);
  const bool differs = looks && (goesAlone ? drawn_.count(object) > 0 && Differ(object)
                                           : (isShown || goes) && DiffersAtEnd());
  // The next frame starts here.
  if (isShown) drawn_.clear();
  if (goes) drawn_.erase(object);
  return differs;
}

bool Comparison::DiffersAtEnd() {
  return std::any_of(drawn_.begin(), drawn_.end(),
                     [this](Id id) { return Differ(id).has_value(); });
}

}  // namespace ZIRK::trace
