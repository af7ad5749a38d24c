#pragma once

#include <memory>

#include "opengles2/gldevice.h"

namespace ZIRK::backends {

/// A window that shows a picture of a given size: on a desktop, or all of a display.
class GlWindow {
 public:
  /// Null after one error line.
  static std::unique_ptr<GlWindow> Open(std::shared_ptr<GlDevice> device, int width, int height,
                                        int display);
  ~GlWindow();
  GlWindow(const GlWindow&) = delete;
  GlWindow& operator=(const GlWindow&) = delete;

  const GlTarget& Target() const { return target_; }
  /// Whether alpha is to stay 255.
  void KeepAlpha(bool keep) { target_.keepsAlpha = keep; }

  /// Shows what has been drawn, in step with the display or at once, and answers the window system.
  void Present(bool inStep);

 private:
  explicit GlWindow(std::shared_ptr<GlDevice> device) : device_(std::move(device)) {}
  void FindBottom();

  const std::shared_ptr<GlDevice> device_;
  GlTarget target_;
};

}  // namespace ZIRK::backends
