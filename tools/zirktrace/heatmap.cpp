#include "heatmap.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace ZIRK::trace {

namespace {

constexpr int kSteps = static_cast<int>(std::size(kHeatColors));
constexpr VuColor kPaper{0xFFFFFFFF}, kInk{0xFF10141C};

size_t StepOf(uint32_t count) {
  return std::min<size_t>(count, kSteps - 1);
}

/// Returns the dots of a character of the legend, which is drawn without fonts: three columns by
/// five rows, the top left dot in the highest bit.
uint32_t DotsOf(char character) {
  static constexpr char kCharacters[] = "0123456789%+<";
  static constexpr uint32_t kDots[] = {075557, 026227, 071747, 071717, 055711, 074717, 074757,
                                       071111, 075757, 075717, 051245, 002720, 012421};
  const char* const found =
      std::find(std::begin(kCharacters), std::end(kCharacters) - 1, character);
  return found == std::end(kCharacters) - 1 ? 0 : kDots[found - kCharacters];
}

/// Draws a text in the middle of `place`, with dots of `dot` x `dot` pixels.
void DrawLabel(VuBitmap& picture, const std::string& text, const VuRect& place, int dot,
               VuColor color) {
  constexpr int kColumns = 3, kRows = 5;
  const int width = (static_cast<int>(text.size()) * (kColumns + 1) - 1) * dot;
  int left = place.x + (place.width - width) / 2;
  const int top = place.y + (place.height - kRows * dot) / 2;
  for (const char character : text) {
    for (int i = 0; i < kColumns * kRows; ++i)
      if (DotsOf(character) >> (kColumns * kRows - 1 - i) & 1)
        picture.DrawRect({left + i % kColumns * dot, top + i / kColumns * dot, dot, dot}, color);
    left += (kColumns + 1) * dot;
  }
}

/// Returns the percentage as a whole number, or "<1%" if it is between 0 and 1.
std::string PercentOf(uint64_t part, uint64_t all) {
  if (part > 0 && part * 100 < all) return "<1%";
  return std::to_string(all > 0 ? part * 100 / all : 0) + '%';
}

void DrawLegend(VuBitmap& picture, const VuRect& place, const WriteCounts& counts) {
  uint64_t pixels[kSteps] = {};
  for (const uint32_t count : counts.Counts()) ++pixels[StepOf(count)];
  constexpr int kGap = 4, kLabelHeight = 28, kBright = 2;
  for (int step = 0; step < kSteps; ++step) {
    const int left = place.x + kGap + step * (place.width - kGap) / kSteps;
    const int right = place.x + (step + 1) * (place.width - kGap) / kSteps;
    const VuRect swatch{left, place.y + kGap, right - left, kLabelHeight};
    const bool isLast = step == kSteps - 1;
    picture.DrawRect(swatch, kHeatColors[step]);
    DrawLabel(picture, std::to_string(step) + (isLast ? "+" : ""), swatch, 3,
              step > kBright && step != kSteps - 2 ? kInk : kPaper);
    const VuRect below{left, swatch.y + swatch.height, swatch.width,
                       place.height - kGap - swatch.height};
    DrawLabel(picture, PercentOf(pixels[step], counts.Counts().size()), below, 2, kInk);
  }
}

}  // namespace

void PutHeat(VuBitmap& picture, const WriteCounts& counts) {
  std::vector<uint32_t> colors(counts.Counts().size());
  std::transform(counts.Counts().begin(), counts.Counts().end(), colors.begin(),
                 [](uint32_t count) { return kHeatColors[StepOf(count)]; });
  picture.SetPixels({0, 0, counts.Width(), counts.Height()}, colors.data(),
                    static_cast<unsigned>(counts.Width()) * sizeof colors[0]);
}

std::unique_ptr<VuBitmap> DrawHeatWithLegend(VuGraphics& graphics, const WriteCounts& counts) {
  constexpr int kLeastWidth = 360, kLegendHeight = 56;
  const int width = std::max(counts.Width(), kLeastWidth);
  std::unique_ptr<VuBitmap> picture(
      graphics.CreateBitmap(width, counts.Height() + kLegendHeight, VuPixelFormat::XRGB8888));
  if (!picture) return nullptr;
  picture->Clear(kPaper);
  PutHeat(*picture, counts);
  DrawLegend(*picture, {0, counts.Height(), width, kLegendHeight}, counts);
  return picture;
}

}  // namespace ZIRK::trace
