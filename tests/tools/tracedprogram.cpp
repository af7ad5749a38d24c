// A program that draws by every kind of operation: tracedprogram BACKEND FIRST.png SECOND.png
// It shows two frames and ends by SIGKILL in the third, whose picture is SECOND.png.

#include <zirk/kit/pictures.h>
#include <zirk/zirk.h>

#include <csignal>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

using namespace ZIRK;

namespace {

constexpr int kWidth = 320, kHeight = 200;

std::vector<unsigned char> Read(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// A ramp of alpha, written row by row with bytes between the rows.
std::unique_ptr<VuBitmap> MakeMask(VuGraphics& graphics) {
  constexpr int kSide = 32, kPitch = 40;
  std::unique_ptr<VuBitmap> mask(graphics.CreateBitmap(kSide, kSide, VuPixelFormat::A8));
  std::vector<uint8_t> pixels(kPitch * kSide);
  std::iota(pixels.begin(), pixels.end(), uint8_t{0});
  mask->SetPixels({0, 0, kSide, kSide}, pixels.data(), kPitch);
  mask->SetScaleMode(VuScaleMode::Bilinear);
  return mask;
}

/// Writes into parts of a locked bitmap.
void WriteBytes(VuBitmap& bitmap, std::initializer_list<VuRect> parts, int byte) {
  bitmap.Lock();
  const VuBitmapInfo info = bitmap.GetInfo();
  for (const VuRect& part : parts)
    for (int y = part.y; y < part.y + part.height; ++y)
      std::memset(static_cast<char*>(info.pixels) + y * info.pitch + 2 * part.x, byte,
                  static_cast<size_t>(2 * part.width));
  bitmap.Unlock();
}

/// Colours written while the bitmap is locked, all but its first and last rows.
std::unique_ptr<VuBitmap> MakeLocked(VuGraphics& graphics) {
  std::unique_ptr<VuBitmap> bitmap(graphics.CreateBitmap(20, 20, VuPixelFormat::RGB565));
  bitmap->Clear(0xFF00FF00);
  bitmap->SetName("locked");
  bitmap->Lock();
  const VuBitmapInfo info = bitmap->GetInfo();
  for (int y = 3; y < 15; ++y)
    std::memset(static_cast<char*>(info.pixels) + y * info.pitch, 16 * y, 40);
  bitmap->Unlock();
  return bitmap;
}

void DrawShapes(VuBitmap& screen, const VuBitmap& mask) {
  VuTMatrix2D<float> turned;
  turned.rotate(0.3f);
  turned.translate({160, 60});
  VuTVector2D<float> corners[] = {{0, 0}, {32, 0}, {32, 32}, {0, 32}};
  screen.SetClippingRect({4, 4, kWidth - 8, kHeight - 8});
  screen.DrawRect({10, 10, 60, 40}, 0xFF3060C0);
  screen.DrawRect({-20, -20, 40, 40}, 0xFFC06030, turned, mask, corners);
  screen.DrawRect({80, 10, 40, 40}, 0x80FFFFFF, VuTransform(), mask, nullptr);
  screen.DrawLine({0, 0}, {300, 190}, 0xFFFFFF00);
  screen.DrawLine({0, 0}, {30, 5}, 0xFFFF00FF, turned);
  screen.DrawPoint({200, 20}, 9, 0xFF00FFFF);
  screen.DrawPoint({3, 3}, 5, 0xFFFFFFFF, turned);
  screen.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::One);
  screen.DrawRect({30, 30, 60, 40}, 0xFF102030);
  screen.SetBlendingFunc(VuBlendingFactor::BlendAlpha, VuBlendingFactor::OneMinusBlendAlpha,
                         VuBlendingFactor::One, VuBlendingFactor::Zero);
  screen.SetBlendColor(0x80000000);
  screen.DrawRect({50, 50, 60, 40}, 0xFFFFFFFF);
  screen.SetBlendingFunc(VuBlendingFactor::One, VuBlendingFactor::OneMinusSrcAlpha);
  screen.SetBlendEnabled(false);
  screen.DrawRect({100, 60, 20, 20}, 0x40FF0000);
  screen.SetBlendEnabled(true);
}

void DrawText(VuBitmap& screen) {
  const std::string fonts = ZIRK_TEST_FONTS "/";
  const auto bytes = Read(fonts + "sansbold.ttf");
  VuFont bold(bytes.data(), unsigned(bytes.size()), 0, 18);
  screen.DrawText(bold, "In memory", {10, 100}, 0xFFFFFFFF);
  VuFont sans((fonts + "sans.ttf").c_str(), 0, 24, true, false);
  screen.DrawText(sans, "Sans", {10, 125}, 0xFFFFC040);
  sans.SetOutlineType(VuFont::OutlineType::Outer);
  sans.SetOutlineThickness(1.25f);
  screen.DrawText(sans, "Sans", {90, 125}, 0xFFFFC040);
  const VuFont cjk((fonts + "cjk.ttf").c_str(), 0, 30);
  sans.SetFallbackGlyph('?');
  sans.SetFallbackFont(&cjk);
  VuTMatrix2D<float> scaled;
  scaled.scale({1, 0.75f});
  screen.DrawText(sans, "\u65E5\u0001", {170, 160}, 0xFF40FF40, scaled);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create(argv[1], false));
  const std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(kWidth, kHeight, true));
  screen->Clear(0xFF101418);
  const std::unique_ptr<VuBitmap> mask = MakeMask(*graphics), locked = MakeLocked(*graphics);
  DrawShapes(*screen, *mask);
  const auto encoded = Read(ZIRK_TEST_IMAGES "/rgba8.png");
  const std::unique_ptr<VuBitmap> picture(
      graphics->CreateBitmapFromMemory(encoded.data(), unsigned(encoded.size())));
  const std::unique_ptr<VuBitmap> fitted(graphics->CreateBitmapFromFile(
      ZIRK_TEST_IMAGES "/rgba8.png", 60, 30, VuScaleMode::Nearest, VuDisplayMode::Fit));
  screen->DrawObject({210, 10, 80, 60}, *picture);
  screen->DrawObject({210, 80, 40, 40}, *locked);
  screen->CopyPixels({260, 80}, *fitted, fitted->GetBounds());
  screen->DrawObject(VuTRect2D<float>(130.5f, 90.25f, 40, 20), *locked,
                     VuTRect2D<float>(2, 2, 10, 10), VuTMatrix2D<float>(), 0xC0FFFFFF);
  // Each thread hands the context over.
  graphics->Flush();
  std::thread([&] {
    DrawText(*screen);
    graphics->Flush();
  }).join();
  if (!kit::SavePng(*screen, argv[2])) return 1;
  screen->SwapBuffers();

  // On what the first frame left, by its blending and clipping.
  screen->SetBlendingFunc(VuBlendingFactor::BlendAlpha, VuBlendingFactor::OneMinusBlendAlpha,
                          VuBlendingFactor::One, VuBlendingFactor::Zero);
  picture->SetScaleMode(VuScaleMode::Bilinear);
  // The bitmap is locked again and again, and once drawn on before the same is written.
  for (const int byte : {0x22, 0x44}) {
    WriteBytes(*locked, {{12, 2, 5, 9}}, byte);
    WriteBytes(*locked, {{6, 8, 3, 4}, {2, 12, 15, 5}}, byte);
  }
  locked->DrawRect({12, 2, 5, 9}, 0xFFFF0000);
  WriteBytes(*locked, {{12, 2, 5, 9}}, 0x44);
  screen->SwapBuffers();
  screen->DrawRect({0, 0, 100, 50}, 0xFFFFFFFF);
  screen->DrawObject({100, 100, 60, 60}, *picture);
  screen->DrawObject({170, 100, 40, 40}, *locked);
  if (!kit::SavePng(*screen, argv[3])) return 1;
  std::raise(SIGKILL);
}
