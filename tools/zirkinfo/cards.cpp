#include <unistd.h>
#include <zirk/zirk.h>

#include <cstdio>
#include <memory>
#include <optional>

#include "commands.h"
#include "machinefont.h"
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

bool IsFont(const std::string& file) {
  return VuFont(file.c_str(), 0, 16).GetOneLineHeight() != 0;
}

/// The font of the card's text, empty for none; nothing if the one that was named does not open.
std::optional<std::string> ChooseFont(const CommandLine& line) {
  if (!line.hasText) return "";
  if (!line.fontFile.empty() && !IsFont(line.fontFile))
    return Failed(line.fontFile, "cannot be opened as a font");
  if (!line.fontFile.empty()) return line.fontFile;
  const std::string found = FindMachineFont();
  if (found.empty() || !IsFont(found)) {
    std::fputs("zirkinfo: no font found, so no text is drawn; name one with --font\n", stderr);
    return "";
  }
  return found;
}

/// The card as `backend`, empty for the default, draws it.
std::optional<Picture> DrawCard(const std::string& backend, const std::string& fontFile,
                                const CommandLine& line) {
  const std::string name = backend.empty() ? "the default backend" : backend;
  const std::unique_ptr<VuGraphics> graphics(
      backend.empty() ? VuGraphics::Create() : VuGraphics::Create(backend.c_str(), false));
  if (!graphics) return Failed(name, "does not open here");
  const std::unique_ptr<VuBitmap> target(
      line.isOnScreen ? graphics->CreateScreen(kCardWidth, kCardHeight, true)
                      : graphics->CreateBitmap(kCardWidth, kCardHeight, VuPixelFormat::ARGB8888));
  if (!target) return Failed(name, "has no surface to draw the card on");
  const VuRect bounds = target->GetBounds();
  if (bounds.width < kCardWidth || bounds.height < kCardHeight)
    return Failed(name, "has a screen that is smaller than the card");

  if (!DrawTestCard(*graphics, *target, fontFile))
    return Failed(name, "has no bitmaps to draw the card with");
  // Before it is shown: what a screen holds afterwards is not the same on every backend.
  const Picture drawn = support::PictureOf(*target);
  target->SwapBuffers();
  if (line.hold > 0) sleep(static_cast<unsigned>(line.hold));
  if (drawn.pixels.empty()) return Failed(name, "does not give its pixels back");
  return support::Crop(drawn, {0, 0, kCardWidth, kCardHeight});
}

bool IsPngFile(const std::string& name) {
  constexpr char kEnding[] = ".png";
  constexpr size_t kLength = sizeof kEnding - 1;
  return name.size() > kLength && name.compare(name.size() - kLength, kLength, kEnding) == 0;
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
  const std::optional<Picture> card = DrawCard(line.backend, *font, line);
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
