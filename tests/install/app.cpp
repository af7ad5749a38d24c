// app <plug-in>: draws with the plug-in given, and opens the installed stub beside the library.

#include <zirk/graphicsimplloader.h>
#include <zirk/zirk.h>

#include <memory>

int main(int argc, char** argv) {
  using namespace ZIRK;
  if (argc != 2) return 2;
  GraphicsImplLoader::GetInstance()->SetupGfxImpl("FB", argv[1], {0, 0}, false);
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  if (!graphics) return 1;
  const std::unique_ptr<VuBitmap> bitmap(graphics->CreateBitmap(4, 4, VuPixelFormat::ARGB8888));
  if (!bitmap) return 1;
  VuTMatrix2D<float> m;
  m.rotate(1);
  bitmap->DrawRect({0, 0, 4, 4}, white, m);
  if (graphics->GetGraphicsType() != 42 || bitmap->GetSize() != 77) return 1;

  const std::unique_ptr<VuGraphics> stub(VuGraphics::CreateStub());
  return stub ? 0 : 1;
}
