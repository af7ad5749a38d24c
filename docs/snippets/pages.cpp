#include <zirk/kit/kit.h>
#include <zirk/zirk.h>

#include <iostream>
#include <memory>

using namespace ZIRK;

void DrawSquare(VuBitmap* screen) {
  //! [transform]
  // A square around its own centre, rotated by 30 degrees, at (200, 100).
  screen->DrawRect({-20, -20, 40, 40}, 0xFFFFC857, VuTransform(200, 100, 1, 1, 30));
  //! [transform]
}

void DrawByMatrix(VuBitmap* screen) {
  //! [matrix]
  VuTMatrix2D<float> m;
  m.translate({200, 100});
  m.scale({2, 1});
  m.rotate(0.5f);  // Radians; acts before the scale.
  screen->DrawRect({-20, -20, 40, 40}, 0xFFFFC857, m);
  //! [matrix]
}

std::unique_ptr<VuGraphics> OpenFirst() {
  //! [fallback]
  std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("OpenGLES2", false));
  if (!graphics) graphics.reset(VuGraphics::Create("FB", false));
  //! [fallback]
  return graphics;
}

void DrawShape(VuGraphics* graphics, VuBitmap* screen) {
  //! [shapes]
  kit::Shapes shapes(*graphics);
  shapes.FillRoundedRect(*screen, {10, 10, 120, 40}, 8, 0xFF336699);
  //! [shapes]
}

int DrawLine(VuBitmap* screen) {
  //! [line]
  std::unique_ptr<VuFont> font(VuFont::CreateFont("/usr/share/fonts/sans.ttf", 0, 24));
  screen->DrawText(*font, "Grüße", {20, 20}, 0xFFFFFFFF);  // The line's top-left corner.
  const int right = 20 + font->GetOneLineWidth("Grüße");
  //! [line]
  return right;
}

void PrintBitmaps() {
  //! [bitmaps]
  PrintBitmapList(0, std::cerr);
  //! [bitmaps]
}

bool WriteOrange(VuGraphics* graphics) {
  //! [pixels]
  std::unique_ptr<VuBitmap> bitmap(graphics->CreateBitmap(2, 2, VuPixelFormat::ARGB8888));
  // Half-transparent orange: 0x80 / 0xFF times red 0xFF, green 0xC8 and blue 0x57.
  const std::uint32_t orange = 0x8080642C;
  const std::uint32_t pixels[4] = {orange, 0, 0, orange};
  const bool done = bitmap->SetPixels({0, 0, 2, 2}, pixels, 8);
  //! [pixels]
  return done;
}
