#include <zirk/kit/pictures.h>

#include <algorithm>

#include "commands.h"
#include "heatmap.h"
#include "openedtrace.h"

namespace ZIRK::trace {

namespace {

/// Counts the pixels that one frame writes. Prints a line and returns false on failure.
bool CountFrame(const CommandLine& line, FrameCounts& counts) {
  OpenedTrace trace(line.operands[0]);
  Player player("FB");
  Coverage coverage(player);
  uint64_t frames = 0;
  for (Record record; trace.Next(record) && record.frame <= line.lastFrame;) {
    frames = record.frame;
    coverage.Follow(record);
    const bool isCounted =
        record.frame < line.firstFrame || counts.Count(record, player, coverage).has_value();
    if (isCounted && player.Play(record)) continue;
    trace.Report(record, player);
    return false;
  }
  if (!trace.Report()) return false;
  if (frames == line.lastFrame && !counts.Surfaces().empty()) return true;
  std::fprintf(stderr, "zirktrace: %s: nothing is drawn in frame %llu\n", line.operands[0].c_str(),
               static_cast<unsigned long long>(line.lastFrame));
  return false;
}

/// Prints how much was written on which surfaces, the most first.
void PrintWritten(const FrameCounts& frame) {
  constexpr size_t kMostSurfaces = 10;
  std::vector<std::pair<uint64_t, Id>> sums;
  for (const auto& [id, counts] : frame.Surfaces()) sums.emplace_back(counts.Sum(), id);
  std::sort(sums.rbegin(), sums.rend());
  uint64_t others = 0;
  for (size_t i = 0; i < sums.size(); ++i) {
    const auto [sum, id] = sums[i];
    if (i >= kMostSurfaces)
      others += sum;
    else
      std::printf("written on %u: %llu\n", static_cast<uint32_t>(id),
                  static_cast<unsigned long long>(sum));
  }
  if (sums.size() > kMostSurfaces)
    std::printf("written on %zu others: %llu\n", sums.size() - kMostSurfaces,
                static_cast<unsigned long long>(others));
}

bool SaveMap(const WriteCounts& counts, const std::string& path) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  const std::unique_ptr<VuBitmap> picture(graphics ? DrawHeatWithLegend(*graphics, counts)
                                                   : nullptr);
  if (picture && kit::SavePng(*picture, path.c_str())) return true;
  std::fprintf(stderr, "zirktrace: %s: cannot be written\n", path.c_str());
  return false;
}

}  // namespace

int ShowOverdraw(const CommandLine& line) {
  FrameCounts frame;
  if (!CountFrame(line, frame)) return kFailed;
  const Id asked = line.surface > 0 ? Id{line.surface} : frame.Shown();
  const auto found = frame.Surfaces().find(asked);
  if (found == frame.Surfaces().end()) {
    std::fprintf(stderr, "zirktrace: nothing is drawn on surface %u in this frame\n", line.surface);
    return kFailed;
  }
  const WriteCounts& counts = found->second;
  std::printf("surface: %u\nmean: %.4f\nmost: %u\n", static_cast<uint32_t>(asked), counts.Mean(),
              counts.Most());
  PrintWritten(frame);
  return SaveMap(counts, line.output) ? kDone : kFailed;
}

}  // namespace ZIRK::trace
