// A program that draws with its own backend: the plug-in libZIRKImplPlain.so, built from the rest
// of this folder.

#include <zirk/graphicsimplloader.h>
#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <memory>
#include <string>

using namespace ZIRK;

namespace {

/// Draws a board of soft discs, each cut out of a rectangle by a mask.
void DrawDiscs(VuGraphics& graphics, VuBitmap& screen) {
  constexpr int kSize = 64;
  const std::unique_ptr<VuBitmap> disc(graphics.CreateBitmap(kSize, kSize, VuPixelFormat::A8));
  if (!disc) return;
  for (int turn = 0; turn < 180; turn += 6)
    disc->DrawRect({-22, -22, 44, 44}, {0x50FFFFFF},
                   VuTransform(32, 32, 1, 1, static_cast<float>(turn)));
  for (int i = 0; i < 7; ++i) {
    const auto shade = static_cast<uint32_t>(30 * i);
    const VuColor color{0xFF4060FF | shade << 16};
    screen.DrawRect({40 + i * 80, 230, kSize, kSize}, color, VuTransform(), *disc, nullptr);
  }
}

}  // namespace

int main(int argc, char** argv) {
  // Registers the plug-in with the loader, and makes it the default of Create().
  GraphicsImplLoader::GetInstance()->SetupGfxImpl("Plain", "libZIRKImplPlain.so", {0, 0}, false);
  VuGraphics::SetDefaultImpl("Plain");
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create());
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(640, 360, true));
  if (!screen) return 1;
  const std::string font = std::string(ZIRK_EXAMPLE_FONTS) + "sans.ttf";
  const std::unique_ptr<VuFont> heading(VuFont::CreateFont(font.c_str(), 0, 44));

  screen->Clear({0xFF14202C});
  for (int i = 0; i < 9; ++i)
    screen->DrawRect({-150, -60, 300, 120}, {0x30FFC857},
                     VuTransform(320, 130, 1, 1, static_cast<float>(i) * 5 - 20));
  screen->DrawText(*heading, "Drawn plainly", {170, 100}, white);
  for (int x = 0; x <= 640; x += 20) screen->DrawLine({x, 359}, {320, 310}, {0x60FFFFFF});
  DrawDiscs(*graphics, *screen);
  const bool done = argc < 2 || kit::SavePng(*screen, argv[1]);
  screen->SwapBuffers();
  return done ? 0 : 1;
}
