#include "opengles2/glsourceresolver.h"

#include <zirk/impl/log.h>

#include "opengles2/glbitmap.h"
#include "opengles2/glscreen.h"
#include "surface/ownsurface.h"

namespace ZIRK::backends {

Source<GlTexture> FindSource(TextureSourceResolver& resolver, VuBitmapImpl& surface,
                             GlDevice& device) {
  // The usual case, and quick to test.
  if (auto* const bitmap = AsOwn<GlBitmap>(&surface))
    return {TextureOf(&bitmap->Drawing(), device), bitmap->GetScaleMode()};
  return {resolver.TextureOf(surface, device), surface.GetScaleMode()};
}

GlCanvas* FindCanvas(VuBitmapImpl& surface) {
  if (auto* const bitmap = AsOwn<GlBitmap>(&surface)) return &bitmap->Drawing();
  auto* const screen = AsOwn<GlScreen>(&surface);
  return screen ? &screen->Drawing() : nullptr;
}

GlTexture* TextureOf(GlCanvas* canvas, const GlDevice& device) {
  return canvas && &canvas->Device() == &device ? canvas->Texture() : nullptr;
}

bool CopyToTexture(GlCanvas* canvas, const Box& part, const GlDevice& device,
                   std::unique_ptr<GlTexture>& copy) {
  if (!canvas) return RefuseSource();
  if (&canvas->Device() != &device) {
    ZIRK_LOG_ERROR("a surface from before the context was lost cannot be drawn");
    return false;
  }
  if (part.IsEmpty()) return true;
  copy = canvas->Snapshot(part);
  return copy != nullptr;
}

std::unique_ptr<VuBitmapImpl> GlSourceResolver::MakeBitmap(Reservation reservation, int width,
                                                           int height, VuPixelFormat format) {
  auto texture = GlTexture::Create(device_, width, height, format);
  if (!texture) return nullptr;
  auto bitmap =
      std::make_unique<GlBitmap>(std::move(reservation), width, height, format, device_,
                                 std::shared_ptr<TextureSourceResolver>(shared_from_this(), this));
  bitmap->Drawing().DrawOn(std::move(texture));
  return bitmap;
}

}  // namespace ZIRK::backends
