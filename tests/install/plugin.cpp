#include <zirk/backend.h>

#include "doubles/recordinggraphics.h"

namespace {

struct Owner {
  ZIRK::doubles::Recorder recorder;
};

/// Owns what it records to, and so do not its bitmaps: they go first.
class Graphics final : Owner, public ZIRK::doubles::RecordingGraphics {
 public:
  Graphics() : RecordingGraphics(recorder) {}
};

}  // namespace

extern "C" ZIRK_API void* CreateVuGraphics(bool) {
  return static_cast<ZIRK::VuGraphicsImpl*>(new Graphics);
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  delete static_cast<ZIRK::VuGraphicsImpl*>(graphics);
}
