#include <zirk/kit/kit.h>
#include <zirk/zirk.h>

#include <memory>

using namespace ZIRK;

int main(int argc, char** argv) {
  std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(320, 140, true));
  const auto file = kit::FindFont("sans-serif", true);  // Bold.
  if (!screen || !file) return 1;
  const VuFont font(file->path.c_str(), file->faceIndex, 22);
  const VuRect button{60, 40, 200, 60};

  screen->Clear(0xFFF0F2F5);
  kit::Shapes shapes(*graphics);
  shapes.FillRoundedRect(*screen, button, 12, 0xFF2E6FB0);

  kit::TextStyle style;
  style.width = button.width;
  style.height = button.height;
  style.align = kit::TextAlign::Center;
  style.verticalAlign = kit::VerticalAlign::Middle;
  kit::TextBox label;
  label.SetText(font, "Next page", 0xFFFFFFFF, style);
  label.Draw(*screen, {button.x, button.y});

  const bool done = argc < 2 || kit::SavePng(*screen, argv[1]);
  screen->SwapBuffers();
  return done ? 0 : 1;
}
