#include <unistd.h>
#include <zirk/zirk.h>

#include <cstdio>
#include <memory>
#include <optional>

#include "commands.h"
#include "machinefont.h"
#include "plugins.h"
#include "screens.h"
#include "support/difference.h"
#include "support/pngfile.h"
#include "testcard.h"

namespace ZIRK::zirkinfo {

namespace {

using support::Picture;

std::nullopt_t Failed(const std::string& subject, const char* problem) {
  std::fprintf(stderr, "zirkinfo: %s: %s\n", subject.c_str(), problem);
  return std::nullopt;
}

/// The card on a screen that is smaller than it.
bool DrawSmallerCard(VuGraphics& graphics, VuBitmap& target, const std::string& fontFile) {
  const std::unique_ptr<VuBitmap> card(
      graphics.CreateBitmap(kCardWidth, kCardHeight, VuPixelFormat::ARGB8888));
  if (!card || !DrawTestCard(graphics, *card, fontFile)) return false;
  DrawFitted(target, *card);
  return true;
}

/// The card as `backend`, empty for the default, draws it.
std::optional<Picture> DrawCard(const std::string& backend, const std::string& fontFile,
                                const CommandLine& line) {
  const std::string name = backend.empty() ? "the default backend" : backend;
  const std::unique_ptr<VuGraphics> graphics = OpenBackend(backend);
  if (!graphics) return Failed(name, "does not open here");
  const std::unique_ptr<VuBitmap> target =
      line.isOnScreen ? OpenScreen(*graphics, kCardWidth, kCardHeight)
                      : std::unique_ptr<VuBitmap>(graphics->CreateBitmap(kCardWidth, kCardHeight,
                                                                         VuPixelFormat::ARGB8888));
  if (!target) return Failed(name, "has no surface to draw the card on");
  const VuRect bounds = target->GetBounds();
  const bool isSmaller = bounds.width < kCardWidth || bounds.height < kCardHeight;
  if (isSmaller && line.command == "compare")
    return Failed(name, "has a screen that is smaller than the card");

  if (!(isSmaller ? DrawSmallerCard : DrawTestCard)(*graphics, *target, fontFile))
    return Failed(name, "has no bitmaps to draw the card with");
  // Before it is shown: what a screen holds afterwards is not the same on every backend.
  const Picture drawn = support::PictureOf(*target);
  target->SwapBuffers();
  if (line.hold > 0) sleep(static_cast<unsigned>(line.hold));
  if (drawn.pixels.empty()) return Failed(name, "does not give its pixels back");
  return isSmaller ? drawn : support::Crop(drawn, {0, 0, kCardWidth, kCardHeight});
}

/// A picture of a file, or a card drawn by a backend.
std::optional<Picture> GetPicture(const std::string& operand, const std::string& fontFile,
                                  const CommandLine& line) {
  if (IsPngFile(operand)) return support::ReadPng(operand.c_str());
  return DrawCard(operand, fontFile, line);
}

void ShowPanels(const Picture& a, const Picture& b) {
  for (const PanelPlace& panel : PanelPlaces()) {
    const auto part = support::Compare(Crop(a, panel.area), Crop(b, panel.area), 255);
    std::printf("panel: %s %.1f %.4f\n", panel.name, part.worst, part.mean);
  }
}

}  // namespace

int WriteCard(const CommandLine& line) {
  if (line.operands.empty() && !line.isOnScreen) {
    std::fputs("zirkinfo: 'card' needs a file to write, or --screen; see zirkinfo --help\n",
               stderr);
    return kWrongUsage;
  }
  const std::optional<std::string> font = ChooseFont(line);
  if (!font) return kFailed;
  const std::string& backend = line.backend.empty() ? line.pluginName : line.backend;
  const std::optional<Picture> card = DrawCard(backend, *font, line);
  if (!card) return kFailed;
  if (line.operands.empty()) return kDone;
  return support::WritePng(line.operands[0].c_str(), *card) ? kDone : kFailed;
}

int CompareCards(const CommandLine& line) {
  const std::string &first = line.operands[0], &second = line.operands[1];
  const bool isCardDrawn = !IsPngFile(first) || !IsPngFile(second);
  const std::optional<std::string> font = isCardDrawn ? ChooseFont(line) : "";
  if (!font) return kFailed;
  const std::optional<Picture> a = GetPicture(first, *font, line);
  if (!a) return kFailed;
  const std::optional<Picture> b = GetPicture(second, *font, line);
  if (!b) return kFailed;
  if (a->width != b->width || a->height != b->height) {
    Failed(second, "is not as large as the other picture");
    return kFailed;
  }

  const support::Difference difference = Compare(*a, *b, line.worst);
  const auto width = static_cast<size_t>(a->width);
  std::printf("worst: %.1f\n", difference.worst);
  std::printf("mean: %.4f\n", difference.mean);
  std::printf("worst-at: %zu %zu\n", difference.worstPixel % width, difference.worstPixel / width);
  if (a->width == kCardWidth && a->height == kCardHeight) ShowPanels(*a, *b);
  if (!line.output.empty() && !support::WritePng(line.output.c_str(), difference.picture))
    return kFailed;
  return difference.worst <= line.worst && difference.mean <= line.mean ? kDone : kDiffers;
}

}  // namespace ZIRK::zirkinfo
