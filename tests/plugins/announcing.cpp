// A good plug-in that writes to standard error whatever is done to it, its own end included.

#include <zirk/backend.h>

#include <atomic>
#include <cstdio>

#include "doubles/recordinggraphics.h"
#include "layerdescription.h"

namespace ZIRK {
namespace {

using doubles::Recorder;

[[gnu::destructor]] void AnnounceClosing() {
  fputs("plug-in closed\n", stderr);
}

struct EchoingRecorder {
  Recorder recorder{true};
};

class Bitmap final : EchoingRecorder, public doubles::RecordingBitmap {
 public:
  Bitmap() : RecordingSurface(recorder) {}
  ~Bitmap() override { fputs("bitmap deleted\n", stderr); }
};

class Graphics final : EchoingRecorder, public doubles::RecordingGraphics {
 public:
  Graphics() : RecordingGraphics(recorder) {}
  ~Graphics() override { fputs("context deleted\n", stderr); }

 protected:
  VuBitmapImpl* Bitmap() override { return new ZIRK::Bitmap; }
};

class Compositor final : public VuCompositorImpl {
 public:
  ~Compositor() override {
    if (last_.deleted) *last_.deleted = true;
    fputs("compositor deleted\n", stderr);
  }
  void SetConfiguration(const LayerDescription* layers, int count) override {
    count_ = count;
    if (count <= 0) return;
    last_ = layers[count - 1];
    if (last_.inside) last_.inside(last_.argument);
  }
  void GetConfiguration(LayerDescription* layers, int& count) override {
    layers[0] = last_;
    count = count_;
  }
  void EnableLayer(signed char layer, bool enable) override {
    fprintf(stderr, "EnableLayer %d %d\n", layer, enable);
  }
  int GetVirtualLayerCount() override { return count_; }

 private:
  std::atomic<int> count_{0};
  LayerDescription last_{};
};

}  // namespace
}  // namespace ZIRK

extern "C" ZIRK_API void* CreateVuGraphics(bool flag) {
  fprintf(stderr, "CreateVuGraphics %d\n", flag);
  return static_cast<ZIRK::VuGraphicsImpl*>(new ZIRK::Graphics);
}

extern "C" ZIRK_API void DestroyVuGraphics(void* graphics) {
  fputs("DestroyVuGraphics\n", stderr);
  delete static_cast<ZIRK::VuGraphicsImpl*>(graphics);
}

extern "C" ZIRK_API void* CreateVuCompositor(bool flag) {
  fprintf(stderr, "CreateVuCompositor %d\n", flag);
  return static_cast<ZIRK::VuCompositorImpl*>(new ZIRK::Compositor);
}

extern "C" ZIRK_API void DestroyVuCompositor(void* compositor) {
  delete static_cast<ZIRK::VuCompositorImpl*>(compositor);
}
