#pragma once

#include <zirk/vuperfcounter.h>

namespace ZIRK::backends {

/// The part that presents pictures, shared by the screens of all backends.
///
/// It is a separate base class beside the surface. A class between surface and screen would add 2
/// to 7 KiB to a plug-in: with a virtual base, each intermediate class repeats all tables.
class Presenter {
 protected:
  explicit Presenter(bool singleBuffered) : singleBuffered_(singleBuffered) {}
  ~Presenter() = default;

  bool IsSingleBuffered() const { return singleBuffered_; }

  /// Presents the picture, measures the time, and logs an error if memory runs out.
  void Show();
  /// Implements VuScreenImpl::SwapBuffers().
  void Swap() {
    Show();
    if (LogFPS) ShowFPS();
  }
  /// Presents the picture of a single-buffered screen, for Finish() and Flush(): its drawing
  /// appears without a swap. Returns whether the screen is single-buffered.
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
