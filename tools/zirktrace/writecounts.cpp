#include "writecounts.h"

#include <algorithm>
#include <numeric>

namespace ZIRK::trace {

void WriteCounts::Add(const Written& written) {
  const VuRect& part = written.part;
  const auto width = static_cast<size_t>(part.width);
  for (size_t row = 0; row < static_cast<size_t>(part.height) && !written.pixels.empty(); ++row) {
    const uint8_t* const pixels = &written.pixels[row * width];
    uint32_t* const counts =
        &counts_[(static_cast<size_t>(part.y) + row) * static_cast<size_t>(width_) +
                 static_cast<size_t>(part.x)];
    for (size_t i = 0; i < width; ++i) counts[i] += pixels[i] != 0;
  }
}

uint64_t WriteCounts::Sum() const {
  return std::accumulate(counts_.begin(), counts_.end(), uint64_t{0});
}

uint32_t WriteCounts::Most() const {
  return counts_.empty() ? 0 : *std::max_element(counts_.begin(), counts_.end());
}

double WriteCounts::Mean() const {
  return counts_.empty() ? 0 : static_cast<double>(Sum()) / static_cast<double>(counts_.size());
}

std::optional<uint64_t> FrameCounts::Count(const Record& record, Player& player,
                                           Coverage& coverage) {
  const bool isWriting = ChangesPixels(record.operation);
  if (!isWriting && record.operation != Operation::SwapBuffers) return 0;
  const Id object = ObjectOf(record);
  const VuBitmap* const surface = player.Find(object);
  if (!surface) return 0;
  shown_ = object;
  const VuRect bounds = surface->GetBounds();
  WriteCounts& counts = surfaces_[object];
  if (counts.Width() != bounds.width || counts.Height() != bounds.height)
    counts = WriteCounts(bounds.width, bounds.height);
  if (!isWriting) return 0;
  Written written;
  if (!coverage.Find(record, written)) return std::nullopt;
  counts.Add(written);
  return written.Count();
}

}  // namespace ZIRK::trace
