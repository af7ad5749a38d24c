// app <plug-in>: draws with the plug-in given.

#include <zirk/graphicsimplloader.h>
#include <zirk/zirk.h>

#include <memory>

int main(int, char** argv) {
  using namespace ZIRK;
  GraphicsImplLoader::GetInstance()->SetupGfxImpl("FB", argv[1], {0, 0}, false);
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> bitmap(graphics->CreateBitmap(4, 4, VuPixelFormat::ARGB8888));
  if (!bitmap) return 1;
  bitmap->DrawRect({0, 0, 4, 4}, white, VuTMatrix2D<float>(VuTransform(0, 0, 2, 2, 45)));
  return bitmap->GetBounds().width == 4 ? 0 : 1;
}
