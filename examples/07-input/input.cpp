#include "input.h"

#include <cstdio>

std::unique_ptr<Input> PrepareInput([[maybe_unused]] int width, [[maybe_unused]] int height) {
#ifdef ZIRK_EXAMPLE_SDL
  return OpenSdlInput(width, height);
#else
  return nullptr;
#endif
}

bool IsInWindow() {
#ifdef ZIRK_EXAMPLE_SDL
  return IsShownBySdl();
#else
  return false;
#endif
}

std::unique_ptr<Input> OpenInput(std::unique_ptr<Input> prepared,
                                 [[maybe_unused]] ZIRK::VuRect screen) {
  if (prepared && IsInWindow()) return prepared;
#ifdef ZIRK_EXAMPLE_EVDEV
  return OpenEvdevInput(screen);
#else
  std::fputs("built without libevdev, so nothing can be touched here\n", stderr);
  return prepared;
#endif
}
