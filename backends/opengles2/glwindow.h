#pragma once

#include <memory>

#include "opengles2/gldevice.h"
#include "opengles2/gltexture.h"

namespace ZIRK::backends {

/// A window that shows a picture of a given size: on a desktop, or all of a display. Where the
/// window is of another size than the picture, the picture is scaled to fit, between black bars.
class GlWindow {
 public:
  /// Null after one error line.
  static std::unique_ptr<GlWindow> Open(std::shared_ptr<GlDevice> device, int width, int height,
                                        int display);
  ~GlWindow();
  GlWindow(const GlWindow&) = delete;
  GlWindow& operator=(const GlWindow&) = delete;

  /// Of the picture.
  int Width() const { return width_; }
  int Height() const { return height_; }

  /// What the picture is drawn on until Present(): the window's framebuffer if that has the size of
  /// the picture, or else a texture. Null after an error line.
  const GlTarget* Target();
  /// Sets whether alpha stays 255. What was drawn before is lost.
  void KeepAlpha(bool keep);
  void SetTitle(const char* title);

  /// Shows what is drawn, at the display's vertical sync or at once, and handles the window's
  /// events. Target() may be another one afterwards.
  void Present(bool vsync);

 private:
  GlWindow(std::shared_ptr<GlDevice> device, int width, int height);
  void TakeSize();
  void ChooseTarget();
  void ShowScaled();

  const std::shared_ptr<GlDevice> device_;
  const int width_, height_;
  GlTarget window_;
  std::unique_ptr<GlTexture> picture_;  ///< What is drawn on, where it is not the window.
  bool hasTarget_ = false;              ///< It stays as it is until the frame is shown.
};

}  // namespace ZIRK::backends
