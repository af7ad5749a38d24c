// Pictures from files: how they are fitted into a box, drawn in parts, tinted, turned and masked.
// Above, one photograph in four display modes; below, a sprite and a round cut-out.

#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

using namespace ZIRK;

namespace {

using BitmapPtr = std::unique_ptr<VuBitmap>;

const std::string kMedia = ZIRK_EXAMPLE_MEDIA;

/// The display mode determines the size of the bitmap. The grey box is the requested size.
bool DrawModes(VuGraphics& graphics, VuBitmap& screen) {
  const VuDisplayMode modes[] = {VuDisplayMode::Stretch, VuDisplayMode::Fit, VuDisplayMode::Fill,
                                 VuDisplayMode::Natural};
  int x = 20;
  for (const VuDisplayMode mode : modes) {
    const VuRect box{x, 20, 180, 180};
    const BitmapPtr photo(graphics.CreateBitmapFromFile((kMedia + "lake.jpg").c_str(), box.width,
                                                        box.height, VuScaleMode::Bilinear, mode));
    if (!photo) return false;
    screen.DrawRect(box, {0xFF3A4450});
    screen.SetClippingRect(box);
    const VuRect size = photo->GetBounds();
    screen.DrawObject({box.x, box.y, size.width, size.height}, *photo);
    screen.SetClippingRect(screen.GetBounds());
    x += 200;
  }
  return true;
}

/// Each pixel is multiplied with the colour. White leaves the sprite unchanged, and a colour with
/// alpha makes it translucent.
void DrawSprites(VuBitmap& screen, VuBitmap& sprite) {
  const VuColor tints[] = {white, {0xFFFF8A5C}, {0xFF6CC5FF}, {0x80FFFFFF}};
  float x = 90;
  for (const VuColor tint : tints) {
    const VuTransform place(x, 330, 0.5f, 0.5f, (x - 270) / 12);
    screen.DrawObject({-120, -160, 240, 320}, sprite, sprite.GetBounds(), place, tint);
    x += 135;
  }
}

/// A disc of coverage with a soft edge, pixel by pixel.
BitmapPtr MakeDisc(VuGraphics& graphics, int size) {
  BitmapPtr disc(graphics.CreateBitmap(size, size, VuPixelFormat::A8));
  if (!disc) return nullptr;
  std::vector<uint8_t> pixels;
  const float radius = static_cast<float>(size) / 2;
  for (int y = 0; y < size; ++y)
    for (int x = 0; x < size; ++x) {
      const float distance =
          std::hypot(static_cast<float>(x) + 0.5f - radius, static_cast<float>(y) + 0.5f - radius);
      const float coverage = std::fmin(1.0f, std::fmax(0.0f, radius - distance));
      pixels.push_back(static_cast<uint8_t>(255 * coverage));
    }
  disc->SetPixels(disc->GetBounds(), pixels.data(), static_cast<unsigned>(size));
  disc->SetScaleMode(VuScaleMode::Bilinear);
  return disc;
}

}  // namespace

int main(int argc, char** argv) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const BitmapPtr screen(graphics->CreateScreen(820, 460, false));
  const BitmapPtr sprite(graphics->CreateBitmapFromFile((kMedia + "balloon.png").c_str()));
  const BitmapPtr photo(graphics->CreateBitmapFromFile((kMedia + "lake.jpg").c_str()));
  const BitmapPtr disc = MakeDisc(*graphics, 200);
  if (!screen || !sprite || !photo || !disc) return 1;
  sprite->SetScaleMode(VuScaleMode::Bilinear);
  photo->SetScaleMode(VuScaleMode::Bilinear);

  screen->Clear({0xFF20262E});
  if (!DrawModes(*graphics, *screen)) return 1;
  DrawSprites(*screen, *sprite);
  // A part of the photograph, seen through the disc.
  screen->DrawObject({590, 230, 200, 200}, *photo, {440, 60, 400, 400}, VuTransform(), white, *disc,
                     nullptr);
  const bool done = argc < 2 || kit::SavePng(*screen, argv[1]);
  screen->SwapBuffers();
  return done ? 0 : 1;
}
