// A plug-in as a stranger writes it from the documentation alone, without the project's headers:
// the same classes in the same order, with types of its own. It prints what happens to it.

#include <cstdint>
#include <cstdio>
#include <ostream>

#define ENTRY_POINT extern "C" __attribute__((visibility("default")))
/// Takes the place of an operation that no test calls.
#define UNUSED(entry) \
  virtual void Unused##entry() {}

namespace ZIRK {

struct Rect {
  int32_t x, y, width, height;
};
struct Matrix {
  float m[9];
  uint8_t flags;
};
struct LayerDescription {
  void (*inside)();
};

[[gnu::destructor]] static void SayClosing() {
  fputs("plug-in closed\n", stderr);
}

// clang-format off
class VuBitmapImpl {
 public:
  virtual ~VuBitmapImpl() { fputs("surface destroyed\n", stderr); }
  UNUSED(3) UNUSED(4) UNUSED(5) UNUSED(6) UNUSED(7) UNUSED(8)
  virtual Rect GetBounds() const { return {0, 0, 8, 4}; }
  UNUSED(10) UNUSED(11) UNUSED(12) UNUSED(13) UNUSED(14) UNUSED(15) UNUSED(16) UNUSED(17)
  UNUSED(18) UNUSED(19) UNUSED(20) UNUSED(21) UNUSED(22) UNUSED(23) UNUSED(24) UNUSED(25)
  virtual void DrawRect(Rect r, uint32_t color, Matrix m, VuBitmapImpl* mask, void*) {
    const auto y = static_cast<double>(m.m[7]);
    fprintf(stderr, "DrawRect %d %x %g %d %d\n", r.height, color, y, m.flags, mask == this);
  }
  UNUSED(27) UNUSED(28) UNUSED(29) UNUSED(30) UNUSED(31) UNUSED(32) UNUSED(33)
  virtual void Finish() { fprintf(stderr, "Finish after %u\n", overdrawPixels); }
  UNUSED(35) UNUSED(36) UNUSED(37) UNUSED(38)
  virtual bool IsTextureBacked() const { return false; }
  uint32_t overdrawPixels = 0;
};

class VuScreenImpl : public virtual VuBitmapImpl {
 public:
  ~VuScreenImpl() override = default;
  virtual void SwapBuffers() { fprintf(stderr, "SwapBuffers after %u\n", overdrawPixels); }
};

class VuGraphicsImpl {
 public:
  virtual ~VuGraphicsImpl() { fputs("context destroyed\n", stderr); }
  virtual VuScreenImpl* CreateScreen(bool flag) { return flag ? new VuScreenImpl : nullptr; }
  UNUSED(4)
  virtual VuBitmapImpl* CreateBitmap(int, int, int32_t) { return new VuBitmapImpl; }
  UNUSED(6) UNUSED(7) UNUSED(8) UNUSED(9)
  virtual unsigned AvailableMemory() const { return 30; }
  virtual unsigned TotalMemory() const { return 100; }
  UNUSED(12) UNUSED(13) UNUSED(14) UNUSED(15) UNUSED(16)
  virtual void PrintBitmapList(unsigned key, std::ostream& os) { os << "bitmaps " << key << '\n'; }
  UNUSED(18) UNUSED(19) UNUSED(20)
  virtual int GetMaxTextureSize() const { return 21; }
};
// clang-format on

class VuCompositorImpl {
 public:
  virtual ~VuCompositorImpl() { fputs("compositor destroyed\n", stderr); }
  virtual void SetConfiguration(const LayerDescription* layers, int count) {
    count_ = count;
    if (layers) layers->inside();
  }
  virtual void GetConfiguration(LayerDescription*, int& count) { count = count_; }
  virtual void EnableLayer(signed char layer, bool enable) {
    fprintf(stderr, "EnableLayer %d %d\n", layer, enable);
  }
  virtual int GetVirtualLayerCount() { return 2 * count_; }

 private:
  int count_ = 0;
};

}  // namespace ZIRK

ENTRY_POINT void* CreateVuGraphics(bool flag) {
  fprintf(stderr, "CreateVuGraphics %d\n", flag);
  return new ZIRK::VuGraphicsImpl;
}

ENTRY_POINT void DestroyVuGraphics(void* graphics) {
  fputs("DestroyVuGraphics\n", stderr);
  delete static_cast<ZIRK::VuGraphicsImpl*>(graphics);
}

ENTRY_POINT void* CreateVuCompositor(bool flag) {
  fprintf(stderr, "CreateVuCompositor %d\n", flag);
  return new ZIRK::VuCompositorImpl;
}

// Never called: the library deletes the compositor.
ENTRY_POINT void DestroyVuCompositor(void*) {}
