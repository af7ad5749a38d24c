#include "stub/stubgraphics.h"

#include <utility>

#include "stub/stubbitmap.h"
#include "stub/stubscreen.h"

namespace ZIRK::backends {

std::unique_ptr<VuScreenImpl> StubGraphics::MakeScreen(Entry entry,
                                                       const VuScreenDescription& description) {
  return std::make_unique<StubScreen>(std::move(entry), description.width, description.height,
                                      description.format);
}

std::unique_ptr<VuBitmapImpl> StubGraphics::MakeBitmap(Entry entry, int width, int height,
                                                       VuPixelFormat format) {
  return std::make_unique<StubBitmap>(std::move(entry), width, height, format);
}

std::unique_ptr<VuBitmapImpl> StubGraphics::MakePicture(Entry entry, int width, int height,
                                                        Image& /*image*/,
                                                        VuScaleMode /*scaleMode*/) {
  return MakeBitmap(std::move(entry), width, height, VuPixelFormat::ARGB8888);
}

}  // namespace ZIRK::backends
