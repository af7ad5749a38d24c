#pragma once

#include <zirk/zirk.h>

#include <memory>
#include <vector>

/// A position that was touched, clicked or dragged over.
struct Touch {
  ZIRK::VuPoint at;
  bool isFirst;  ///< Otherwise the finger or pointer moved here from the last position.
};

/// A source of touches.
class Input {
 public:
  virtual ~Input() = default;
  /// Appends the touches since the last call. Returns false when the program should end.
  virtual bool Read(std::vector<Touch>& touches) = 0;
};

/// Call it before the graphics context is made. Returns a source of SDL's events if the example is
/// built with SDL and SDL starts; otherwise null.
std::unique_ptr<Input> PrepareInput(int width, int height);
/// Whether SDL shows the screen, in a window or on a display.
bool IsInWindow();
/// The source of touches for a screen: the prepared one, or the machine's own devices. Null if
/// there is neither.
std::unique_ptr<Input> OpenInput(std::unique_ptr<Input> prepared, ZIRK::VuRect screen);

/// A source of SDL's events, for screens of this size in windows of SDL. It is made before the
/// graphics context, which leaves events to a program that has initialised SDL. Null if SDL does
/// not start.
std::unique_ptr<Input> OpenSdlInput(int width, int height);
/// Whether SDL shows a screen. Otherwise it delivers no events.
bool IsShownBySdl();

/// A source that reads the machine's touch screens, mice and keyboards, for screens without a
/// window.
std::unique_ptr<Input> OpenEvdevInput(ZIRK::VuRect screen);
