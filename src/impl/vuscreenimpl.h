#pragma once

#include <zirk/impl/vubitmapimpl.h>

namespace ZIRK {

/// An on-screen surface: a drawing surface with a buffer swap.
///
/// The front end holds it as a VuBitmapImpl and uses dynamic_cast to find the screen, which is why
/// the base is virtual.
class ZIRK_API VuScreenImpl : public virtual VuBitmapImpl {
 public:
  VuScreenImpl() = default;
  ~VuScreenImpl() override;  // slots 1 and 2

  /// Slot 3: presents the finished frame. Calls ShowFPS() while LogFPS is set, and adds the time
  /// spent to swap_time while LogPerf is set.
  virtual void SwapBuffers() = 0;
};

}  // namespace ZIRK
