#include "opengles2/glsources.h"

#include "opengles2/glbitmap.h"

namespace ZIRK::backends {

std::unique_ptr<VuBitmapImpl> GlSources::MakeBitmap(Reservation reservation, int width, int height,
                                                    VuPixelFormat format) {
  auto texture = GlTexture::Create(device_, width, height, format);
  if (!texture) return nullptr;
  auto bitmap =
      std::make_unique<GlBitmap>(std::move(reservation), width, height, format, device_,
                                 std::shared_ptr<TextureSources>(shared_from_this(), this));
  bitmap->Drawing().DrawOn(std::move(texture));
  return bitmap;
}

}  // namespace ZIRK::backends
