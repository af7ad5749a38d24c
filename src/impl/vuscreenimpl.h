#pragma once

#include <zirk/impl/vubitmapimpl.h>

namespace ZIRK {

/// An on-screen surface: a drawing surface with a buffer swap.
///
/// The front end holds it as a VuBitmapImpl and finds the screen again with dynamic_cast, hence
/// the virtual base and the type information.
class ZIRK_API VuScreenImpl : public virtual VuBitmapImpl {
 public:
  VuScreenImpl() = default;
  ~VuScreenImpl() override;  // slots 1 and 2

  /// Slot 3: present the finished frame. Calls ShowFPS() while LogFPS is set, and adds the time
  /// spent to swap_time while LogPerf is.
  virtual void SwapBuffers() = 0;
};

}  // namespace ZIRK
