#pragma once

#include <zirk/vuperfcounter.h>

namespace ZIRK::backends {

/// How the screens of all backends present their pictures.
///
/// It stands beside the surface as a base of its own. One between surface and screen would add 2 to
/// 7 KiB to a plug-in: with a virtual base, each class on the way repeats all tables.
class Presenter {
 protected:
  explicit Presenter(bool singleBuffered) : singleBuffered_(singleBuffered) {}
  ~Presenter() = default;

  bool IsSingleBuffered() const { return singleBuffered_; }

  /// Presents the picture, takes the time, and reports memory that runs out.
  void Show();
  /// For VuScreenImpl::SwapBuffers().
  void Swap() {
    Show();
    if (LogFPS) ShowFPS();
  }
  /// For Finish() and Flush(): drawing on a single-buffered screen appears without a swap. Returns
  /// whether the screen is single-buffered.
  bool ShowIfSingleBuffered() {
    if (singleBuffered_) Show();
    return singleBuffered_;
  }

 private:
  /// Shows the picture as it is now. May throw std::bad_alloc.
  virtual void Present() = 0;

  const bool singleBuffered_;
};

}  // namespace ZIRK::backends
