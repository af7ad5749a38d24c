#pragma once

#include <zirk/zirk.h>

#include <memory>
#include <vector>

/// A place that was touched, clicked or dragged over.
struct Touch {
  ZIRK::VuPoint at;
  bool isFirst;  ///< Otherwise the finger or pointer has moved here from the last place.
};

/// Where touches come from.
class Input {
 public:
  virtual ~Input() = default;
  /// Adds what was touched since the last call. False once the program is to end.
  virtual bool Read(std::vector<Touch>& touches) = 0;
};

/// To be called before the graphics context is made: SDL's events, where the example is built with
/// SDL and it starts; else null.
std::unique_ptr<Input> PrepareInput(int width, int height);
/// Whether the screen is in a window, or on a display, of SDL.
bool IsInWindow();
/// Where touches of a screen come from: what was prepared for it, or the machine's own devices.
/// Null where there is neither.
std::unique_ptr<Input> OpenInput(std::unique_ptr<Input> prepared, ZIRK::VuRect screen);

/// SDL's events, for screens of this size in windows of SDL. Made before the graphics context,
/// which leaves the events to a program that has initialised SDL. Null where SDL does not start.
std::unique_ptr<Input> OpenSdlInput(int width, int height);
/// Whether a screen is shown by SDL. Otherwise no event will come from there.
bool IsShownBySdl();

/// The touch screens, mice and keyboards of the machine, for screens without a window.
std::unique_ptr<Input> OpenEvdevInput(ZIRK::VuRect screen);
