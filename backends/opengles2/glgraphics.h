#pragma once

#include <zirk/backendtable.h>

#include <memory>
#include <optional>

#include "context/graphicsbase.h"
#include "opengles2/gldevice.h"
#include "opengles2/glsourceresolver.h"

namespace ZIRK::backends {

/// A context whose surfaces are drawn by OpenGL ES 2.
class GlGraphics final : public GraphicsBase {
 public:
  /// Null, after an error line, if OpenGL ES 2 cannot be started.
  static std::unique_ptr<GlGraphics> Start();
  explicit GlGraphics(std::shared_ptr<GlDevice> device);

  /// Sends all drawing. Afterwards another thread may use OpenGL.
  void Flush() override;
  int GetGraphicsType() const override { return kType; }
  int GetMaxTextureSize() const override { return device_->MaxTextureSize(); }

 protected:
  std::optional<ImageSize> DeviceSize(int index) const override;
  std::unique_ptr<VuScreenImpl> MakeScreen(Reservation reservation,
                                           const VuScreenDescription& description) override;
  std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                           VuPixelFormat format) override;
  std::unique_ptr<VuBitmapImpl> MakePicture(Reservation reservation, int width, int height,
                                            Image& image, VuScaleMode scaleMode) override;

 private:
  static constexpr int kType = TypeCode(BackendType::OpenGLES2);

  const std::shared_ptr<GlDevice> device_;
  const std::shared_ptr<TextureSourceResolver> resolver_;
};

}  // namespace ZIRK::backends
