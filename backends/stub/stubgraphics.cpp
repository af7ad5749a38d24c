#include "stub/stubgraphics.h"

#include <utility>

#include "stub/stubbitmap.h"
#include "stub/stubscreen.h"

namespace ZIRK::backends {

std::unique_ptr<VuScreenImpl> StubGraphics::MakeScreen(Reservation reservation,
                                                       const VuScreenDescription& description) {
  return std::make_unique<StubScreen>(std::move(reservation), description.width, description.height,
                                      description.format);
}

std::unique_ptr<VuBitmapImpl> StubGraphics::MakeBitmap(Reservation reservation, int width,
                                                       int height, VuPixelFormat format) {
  return std::make_unique<StubBitmap>(std::move(reservation), width, height, format);
}

std::unique_ptr<VuBitmapImpl> StubGraphics::MakePicture(Reservation reservation, int width,
                                                        int height, Image& /*image*/,
                                                        VuScaleMode /*scaleMode*/) {
  return MakeBitmap(std::move(reservation), width, height, VuPixelFormat::ARGB8888);
}

}  // namespace ZIRK::backends
