#include <zirk/zirk.h>

#include <memory>

using namespace ZIRK;

std::unique_ptr<VuGraphics> OpenMine() {
  //! [snippet]
  const auto loader = GraphicsImplLoader::GetInstance();
  loader->SetupGfxImpl("Mine", "libZIRKImplMine.so", {0, 0}, true);
  VuGraphics::SetDefaultImpl("Mine");
  std::unique_ptr<VuGraphics> graphics(VuGraphics::Create());
  //! [snippet]
  return graphics;
}
