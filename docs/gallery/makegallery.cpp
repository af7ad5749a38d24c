// Makes the pictures of docs/backends.md; scripts/backend-gallery runs it.
//
//     zirk_make_gallery scenes BACKEND SHEET.png            all scenes, drawn on screens
//     zirk_make_gallery reduce PICTURE.png WIDTH SMALL.png  a picture brought to a width

#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "gallery/scenes.h"

namespace {

using namespace ZIRK;

constexpr int kColumns = 6;

/// Draws a scene on a screen and copies it to the sheet. False where the screen is smaller than the
/// scene.
bool Draw(VuGraphics& graphics, const gallery::Scene& scene, VuBitmap& sheet, VuPoint corner) {
  const std::unique_ptr<VuBitmap> screen(
      graphics.CreateScreen(gallery::kWidth, gallery::kHeight, false));
  if (!screen) return false;
  const VuRect bounds = screen->GetBounds();
  if (bounds.width < gallery::kWidth || bounds.height < gallery::kHeight) return false;
  screen->Clear(VuColor{0xFF182838});
  scene.draw(graphics, *screen);
  screen->Finish();
  return sheet.CopyPixels(corner, *screen, {0, 0, gallery::kWidth, gallery::kHeight});
}

int DrawSheet(const char* backend, const char* file) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create(backend, false));
  if (!graphics) return 1;
  const std::vector<gallery::Scene>& all = gallery::Scenes();
  const int rows = (static_cast<int>(all.size()) + kColumns - 1) / kColumns;
  const std::unique_ptr<VuBitmap> sheet(graphics->CreateBitmap(
      kColumns * gallery::kWidth, rows * gallery::kHeight, VuPixelFormat::ARGB8888));
  if (!sheet) return 1;
  sheet->Clear(0xFF182838);
  int index = 0;
  for (const gallery::Scene& scene : all) {
    const VuPoint corner{index % kColumns * gallery::kWidth, index / kColumns * gallery::kHeight};
    if (!Draw(*graphics, scene, *sheet, corner)) {
      std::fprintf(stderr, "%s: no screen for %s\n", backend, scene.name);
      return 1;
    }
    ++index;
  }
  return kit::SavePng(*sheet, file) ? 0 : 1;
}

int Reduce(const char* file, int width, const char* result) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> small(graphics->CreateBitmapFromFile(
      file, width, width, VuScaleMode::Bilinear, VuDisplayMode::Fit));
  return small && kit::SavePng(*small, result) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string command = argc > 1 ? argv[1] : "";
  if (command == "scenes" && argc == 4) return DrawSheet(argv[2], argv[3]);
  if (command == "reduce" && argc == 5) return Reduce(argv[2], std::atoi(argv[3]), argv[4]);
  return 2;
}
