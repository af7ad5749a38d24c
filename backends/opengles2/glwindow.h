#pragma once

#include <memory>

#include "opengles2/gldevice.h"
#include "opengles2/gltexture.h"

namespace ZIRK::backends {

/// A window that shows a picture of a given size, on a desktop or on the whole display. If the
/// window has another size, the picture is scaled to fit, between black bars.
class GlWindow {
 public:
  /// Null after one error line.
  static std::unique_ptr<GlWindow> Open(std::shared_ptr<GlDevice> device, int width, int height,
                                        int display);
  ~GlWindow();
  GlWindow(const GlWindow&) = delete;
  GlWindow& operator=(const GlWindow&) = delete;

  /// Size of the picture.
  int Width() const { return width_; }
  int Height() const { return height_; }

  /// The target of drawing until Present(): the window's framebuffer if it has the size of the
  /// picture, otherwise a texture. Null after an error line.
  const GlTarget* Target();
  /// Sets whether alpha stays 255. Earlier drawing is lost.
  void KeepAlpha(bool keep);
  void SetTitle(const char* title);

  /// Shows the picture, at the display's vertical sync or at once, and handles the window's events.
  /// Target() may change.
  void Present(bool vsync);

 private:
  GlWindow(std::shared_ptr<GlDevice> device, int width, int height);
  void TakeSize();
  void ChooseTarget();
  void ShowScaled();

  const std::shared_ptr<GlDevice> device_;
  const int width_, height_;
  GlTarget window_;
  std::unique_ptr<GlTexture> picture_;  ///< The target if it is not the window itself.
  bool hasTarget_ = false;              ///< The target does not change until the frame is shown.
};

}  // namespace ZIRK::backends
