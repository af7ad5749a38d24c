// Makes the pictures of docs/backends.md; scripts/backend-gallery runs it.
//
//     zirk_make_gallery scenes BACKEND SHEET.png            all scenes, drawn on screens
//     zirk_make_gallery reduce PICTURE.png WIDTH SMALL.png  a picture brought to a width

#include <zirk/zirk.h>
#include "support/difference.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "gallery/scenes.h"

namespace {

using namespace ZIRK;
using support::Picture;

constexpr int kColumns = 6;

void Paste(Picture& sheet, const Picture& part, int left, int top) {
  for (int y = 0; y < part.height; ++y)
    for (int x = 0; x < part.width; ++x)
      sheet.pixels[static_cast<size_t>((top + y) * sheet.width + left + x)] =
          part.pixels[static_cast<size_t>(y * part.width + x)];
}

/// Nothing, without extent, where the screen is smaller than the scene.
Picture Draw(VuGraphics& graphics, const gallery::Scene& scene) {
  const std::unique_ptr<VuBitmap> screen(
      graphics.CreateScreen(gallery::kWidth, gallery::kHeight, false));
  if (!screen) return {};
  const VuRect bounds = screen->GetBounds();
  if (bounds.width < gallery::kWidth || bounds.height < gallery::kHeight) return {};
  screen->Clear(VuColor{0xFF182838});
  scene.draw(graphics, *screen);
  screen->Finish();
  return support::Crop(support::PictureOf(*screen), {0, 0, gallery::kWidth, gallery::kHeight});
}

int DrawSheet(const char* backend, const char* file) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create(backend, false));
  if (!graphics) return 1;
  const std::vector<gallery::Scene>& all = gallery::Scenes();
  const int rows = (static_cast<int>(all.size()) + kColumns - 1) / kColumns;
  Picture sheet{kColumns * gallery::kWidth, rows * gallery::kHeight, {}};
  sheet.pixels.resize(static_cast<size_t>(sheet.width * sheet.height), 0xFF182838);
  int index = 0;
  for (const gallery::Scene& scene : all) {
    const Picture picture = Draw(*graphics, scene);
    if (picture.pixels.empty()) {
      std::fprintf(stderr, "%s: no screen for %s\n", backend, scene.name);
      return 1;
    }
    Paste(sheet, picture, index % kColumns * gallery::kWidth, index / kColumns * gallery::kHeight);
    ++index;
  }
  return support::WritePng(file, sheet) ? 0 : 1;
}

int Reduce(const char* file, int width, const char* result) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> small(graphics->CreateBitmapFromFile(
      file, width, width, VuScaleMode::Bilinear, VuDisplayMode::Fit));
  return small && support::WritePng(result, *small) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "";
  if (command == "scenes" && argc == 4) return DrawSheet(argv[2], argv[3]);
  if (command == "reduce" && argc == 5) return Reduce(argv[2], std::atoi(argv[3]), argv[4]);
  return 2;
}
