#pragma once

#include <zirk/vuperfcounter.h>

namespace ZIRK::backends {

/// What all screens that show something do alike: they hand their operations on to this.
///
/// It is a base of its own beside the surface's: one between would repeat all of the surface's
/// tables of functions.
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
  /// For Finish() and Flush(): on a single-buffered screen drawing is seen without a swap. Whether
  /// it is one.
  bool ShowIfSingleBuffered() {
    if (singleBuffered_) Show();
    return singleBuffered_;
  }

 private:
  /// Has the picture seen as it is now. May throw std::bad_alloc.
  virtual void Present() = 0;

  const bool singleBuffered_;
};

}  // namespace ZIRK::backends
