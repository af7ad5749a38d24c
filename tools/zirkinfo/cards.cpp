#include <unistd.h>
#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"
#include "librarylog.h"
#include "machinefont.h"
#include "plugins.h"
#include "screens.h"
#include "testcard.h"

namespace ZIRK::zirkinfo {

namespace {

/// A bitmap, and the context that it belongs to.
struct Picture {
  std::unique_ptr<VuGraphics> graphics;
  std::unique_ptr<VuBitmap> bitmap;
};

std::nullopt_t Failed(const std::string& subject, const char* problem) {
  std::fprintf(stderr, "zirkinfo: %s: %s\n", subject.c_str(), problem);
  return std::nullopt;
}

/// Calls `run` and returns its result, after printing the errors that the library logged meanwhile.
template <class Run>
auto ReportingErrors(Run run) {
  std::vector<std::string> errors;
  auto result = [&] {
    const LibraryLog log;
    auto done = run();
    errors = log.Messages("error");
    return done;
  }();
  for (const std::string& error : errors) std::fprintf(stderr, "zirkinfo: %s\n", error.c_str());
  return result;
}

bool Save(VuBitmap& bitmap, const std::string& file) {
  return ReportingErrors([&] { return kit::SavePng(bitmap, file.c_str()); });
}

std::unique_ptr<VuBitmap> NewBitmap(VuGraphics& graphics, int width, int height) {
  return std::unique_ptr<VuBitmap>(graphics.CreateBitmap(width, height, VuPixelFormat::ARGB8888));
}

/// Draws the card on a screen that is smaller than the card.
bool DrawSmallerCard(VuGraphics& graphics, VuBitmap& target, const std::string& fontFile) {
  const std::unique_ptr<VuBitmap> card = NewBitmap(graphics, kCardWidth, kCardHeight);
  if (!card || !DrawTestCard(graphics, *card, fontFile)) return false;
  DrawFitted(target, *card);
  return true;
}

/// Draws the card on a screen, shows it and keeps a copy. Returns null, or the reason of a failure.
const char* DrawOnScreen(Picture& picture, const std::string& fontFile, const CommandLine& line) {
  VuGraphics& graphics = *picture.graphics;
  const std::unique_ptr<VuBitmap> screen = OpenScreen(graphics, kCardWidth, kCardHeight);
  if (!screen) return "has no surface to draw the card on";
  const VuRect bounds = screen->GetBounds();
  const bool isSmaller = bounds.width < kCardWidth || bounds.height < kCardHeight;
  if (isSmaller && line.command == "compare") return "has a screen that is smaller than the card";
  if (!(isSmaller ? DrawSmallerCard : DrawTestCard)(graphics, *screen, fontFile))
    return "has no bitmaps to draw the card with";
  const VuRect part = isSmaller ? bounds : VuRect{0, 0, kCardWidth, kCardHeight};
  picture.bitmap = NewBitmap(graphics, part.width, part.height);
  // Copied before it is shown: what a screen contains afterwards depends on the backend.
  const bool isCopied = picture.bitmap && picture.bitmap->CopyPixels({0, 0}, *screen, part);
  screen->SwapBuffers();
  if (line.hold > 0) sleep(static_cast<unsigned>(line.hold));
  return isCopied ? nullptr : "does not give its pixels back";
}

const char* DrawOnBitmap(Picture& picture, const std::string& fontFile) {
  picture.bitmap = NewBitmap(*picture.graphics, kCardWidth, kCardHeight);
  if (!picture.bitmap) return "has no surface to draw the card on";
  return DrawTestCard(*picture.graphics, *picture.bitmap, fontFile)
             ? nullptr
             : "has no bitmaps to draw the card with";
}

/// The card drawn by `backend`; by the default backend if that is empty.
std::optional<Picture> DrawCard(const std::string& backend, const std::string& fontFile,
                                const CommandLine& line) {
  const std::string name = backend.empty() ? "the default backend" : backend;
  Picture picture{OpenBackend(backend), nullptr};
  if (!picture.graphics) return Failed(name, "does not open here");
  const char* const problem =
      line.isOnScreen ? DrawOnScreen(picture, fontFile, line) : DrawOnBitmap(picture, fontFile);
  if (problem) return Failed(name, problem);
  return picture;
}

/// A context for pictures that no backend draws.
std::unique_ptr<VuGraphics> OpenForPictures() {
  std::unique_ptr<VuGraphics> graphics = OpenBackend("FB");
  return graphics ? std::move(graphics) : OpenBackend("");
}

/// A picture of a file, or a card drawn by a backend.
std::optional<Picture> GetPicture(const std::string& operand, const std::string& fontFile,
                                  const CommandLine& line) {
  if (!IsPngFile(operand)) return DrawCard(operand, fontFile, line);
  Picture picture = ReportingErrors([&] {
    Picture read{OpenForPictures(), nullptr};
    if (read.graphics) read.bitmap.reset(read.graphics->CreateBitmapFromFile(operand.c_str()));
    return read;
  });
  if (!picture.bitmap) return std::nullopt;
  return picture;
}

void ShowPanels(VuBitmap& a, VuBitmap& b) {
  for (const PanelPlace& panel : PanelPlaces())
    if (const auto part = kit::Compare(a, panel.area, b, panel.area))
      std::printf("panel: %s %d %.4f\n", panel.name, part->worst, part->mean);
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
  return Save(*card->bitmap, line.operands[0]) ? kDone : kFailed;
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
  const VuRect bounds = a->bitmap->GetBounds();
  if (bounds != b->bitmap->GetBounds()) {
    Failed(second, "is not as large as the other picture");
    return kFailed;
  }

  Picture shown;
  if (!line.output.empty()) shown.graphics = OpenForPictures();
  if (shown.graphics) shown.bitmap = NewBitmap(*shown.graphics, bounds.width, bounds.height);
  const auto difference =
      ReportingErrors([&] { return kit::Compare(*a->bitmap, *b->bitmap, shown.bitmap.get()); });
  if (!difference) return kFailed;
  std::printf("worst: %d\n", difference->worst);
  std::printf("mean: %.4f\n", difference->mean);
  std::printf("worst-at: %d %d\n", difference->worstAt.x, difference->worstAt.y);
  if (bounds.width == kCardWidth && bounds.height == kCardHeight)
    ShowPanels(*a->bitmap, *b->bitmap);
  if (!line.output.empty() && !(shown.bitmap && Save(*shown.bitmap, line.output))) return kFailed;
  return difference->worst <= line.worst && difference->mean <= line.mean ? kDone : kDiffers;
}

}  // namespace ZIRK::zirkinfo
