// A plug-in built from its own copy of the interface, which calls nothing of the library. Each
// operation prints its number and enough of its arguments to see that they arrived.

#include "independent.h"

#include <cstdarg>
#include <cstdio>
#include <ostream>

#define ENTRY_POINT extern "C" __attribute__((visibility("default")))

namespace ZIRK {
namespace {

__attribute__((format(printf, 1, 2))) void Say(const char* format, ...) {
  va_list args;
  va_start(args, format);
  vfprintf(stderr, format, args);
  va_end(args);
  fputc(';', stderr);
}

double D(float f) {
  return static_cast<double>(f);
}

template <class Base>
class Surface : public Base {
 public:
  ~Surface() override { Say("gone"); }
  void Reserved() override { Say("3"); }
  void SetName(const char* name) override { Say("4 %s", name); }
  void ClearAll() override { Say("5"); }
  void Clear(Color c) override { Say("6 %x", c.argb); }
  Info GetInfo() const override { return Say("7"), Info{1, 2, 3, 4, nullptr}; }
  uint32_t GetSize() const override { return Say("8"), 8; }
  Rect GetBounds() const override { return Say("9"), Rect{0, 0, 10, 10}; }
  Rect GetClippingRect() const override { return Say("10"), Rect{1, 2, 3, 4}; }
  void SetClippingRect(Rect r) override { Say("11 %d %d", r.x, r.height); }
  void GetBlendingFunc(int32_t& s, int32_t& d) const override { Say("12"), s = 1, d = 2; }
  void SetBlendingFunc2(int32_t s, int32_t d) override { Say("13 %d %d", s, d); }
  void SetBlendingFunc4(int32_t a, int32_t b, int32_t c, int32_t d) override {
    Say("14 %d %d %d %d", a, b, c, d);
  }
  bool GetBlendEnabled() const override { return Say("15"), true; }
  void SetBlendEnabled(bool b) override { Say("16 %d", b); }
  Color GetBlendColor() const override { return Say("17"), Color{17}; }
  void SetBlendColor(Color c) override { Say("18 %x", c.argb); }
  int32_t GetScaleMode() const override { return Say("19"), 19; }
  void SetScaleMode(int32_t m) override { Say("20 %d", m); }
  void DrawPointT(Point p, float s, Color, Transform t, VuBitmapImpl*, Vector v) override {
    Say("21 %d %g %g %g", p.y, D(s), D(t.scaleY), D(v.y));
  }
  void DrawPointM(Point p, float s, Color, Matrix m, VuBitmapImpl*, Vector v) override {
    Say("22 %d %g %g %d %g", p.y, D(s), D(m.m[4]), m.flags, D(v.y));
  }
  void DrawLineT(Point p, Point q, Color, Transform t, VuBitmapImpl*, Vector* v) override {
    Say("23 %d %d %g %g", p.y, q.y, D(t.scaleY), D(v->y));
  }
  void DrawLineM(Point p, Point q, Color, Matrix m, VuBitmapImpl*, Vector* v) override {
    Say("24 %d %d %g %g", p.y, q.y, D(m.m[4]), D(v->y));
  }
  void DrawRectT(Rect r, Color, Transform t, VuBitmapImpl*, Vector* v) override {
    Say("25 %d %g %g", r.height, D(t.scaleY), D(v->y));
  }
  void DrawRectM(Rect r, Color, Matrix m, VuBitmapImpl*, Vector* v) override {
    Say("26 %d %g %g", r.height, D(m.m[4]), D(v->y));
  }
  void DrawObjectT(Rect r, VuBitmapImpl* src, Rect s, Transform t, Color, VuBitmapImpl* mask,
                   Vector* v) override {
    Say("27 %d %d %g %d %g", r.height, s.x, D(t.scaleY), src == mask, D(v->y));
  }
  void DrawObjectM(Rect r, VuBitmapImpl* src, Rect s, Matrix m, Color, VuBitmapImpl* mask,
                   Vector* v) override {
    Say("28 %d %d %g %d %g", r.height, s.x, D(m.m[4]), src == mask, D(v->y));
  }
  void DrawObjectF(RectF r, VuBitmapImpl* src, RectF s, Matrix m, Color, VuBitmapImpl* mask,
                   Vector* v) override {
    Say("29 %g %g %g %d %g", D(r.max.y), D(s.min.x), D(m.m[4]), src == mask, D(v->y));
  }
  void DrawTextT(VuFontImpl*, const char* text, Point p, Color, Transform t, VuBitmapImpl*, Vector*,
                 Rect r) override {
    Say("30 %s %d %g %d", text, p.y, D(t.scaleY), r.height);
  }
  void DrawTextM(VuFontImpl*, const char* text, Point p, Color, Matrix m, VuBitmapImpl*, Vector*,
                 Rect r) override {
    Say("31 %s %d %g %d", text, p.y, D(m.m[4]), r.height);
  }
  bool Lock(bool b) override { return Say("32 %d", b), true; }
  bool Unlock() override { return Say("33"), true; }
  void Finish() override { Say("34 of %u", this->overdrawPixels); }
  void Flush() override { Say("35"); }
  bool GetPixels(Rect r, void*) override { return Say("36 %d", r.height), true; }
  bool SetPixels(Rect r, const void*, unsigned n) override {
    return Say("37 %d %u", r.height, n), true;
  }
  bool CopyPixels(Point p, VuBitmapImpl* src, Rect r) override {
    return Say("38 %d %d %d", p.y, src == this, r.height), true;
  }
  bool IsTextureBacked() const override { return Say("39"), false; }
};

class OnScreen final : public Surface<VuScreenImpl> {
  void SwapBuffers() override { Say("screen 3"); }
};

class Graphics final : public VuGraphicsImpl {
 public:
  ~Graphics() override { Say("gone"); }
  VuScreenImpl* CreateScreen(bool b) override { return Say("3 %d", b), new OnScreen; }
  VuScreenImpl* CreateDescribedScreen(const Screen& s) override {
    return Say("4 %d %d %d %d %d %d", s.width, s.height, s.index, s.buffers, s.format, s.option),
           nullptr;
  }
  VuBitmapImpl* CreateBitmap(int w, int h, int32_t f) override {
    return Say("5 %d %d %d", w, h, f), new Surface<VuBitmapImpl>;
  }
  VuBitmapImpl* FromFile(const char* p) override { return Say("6 %s", p), nullptr; }
  VuBitmapImpl* FromFileFitted(const char* p, int w, int h, int32_t s, int32_t d) override {
    return Say("7 %s %d %d %d %d", p, w, h, s, d), nullptr;
  }
  VuBitmapImpl* FromMemory(const void*, unsigned n) override { return Say("8 %u", n), nullptr; }
  VuBitmapImpl* FromMemoryFitted(const void*, unsigned n, int w, int h, int32_t s) override {
    return Say("9 %u %d %d %d", n, w, h, s), nullptr;
  }
  unsigned AvailableMemory() const override { return Say("10"), 10; }
  unsigned TotalMemory() const override { return Say("11"), 11; }
  unsigned SizeOf(int w, int h, int32_t f) const override {
    return Say("12 %d %d %d", w, h, f), 12;
  }
  unsigned SizeOfFile(const char* p) const override { return Say("13 %s", p), 13; }
  unsigned SizeOfFileFitted(const char* p, int w, int h) const override {
    return Say("14 %s %d %d", p, w, h), 14;
  }
  unsigned SizeOfMemory(const void*, unsigned n) const override { return Say("15 %u", n), 15; }
  unsigned SizeOfMemoryFitted(const void*, unsigned n, int w, int h) const override {
    return Say("16 %u %d %d", n, w, h), 16;
  }
  void PrintBitmapList(unsigned key, std::ostream& os) override { Say("17 %u", key), os << "list"; }
  void Flush() override { Say("18"); }
  void SetTerminateOnDestruct(bool b) override { Say("19 %d", b); }
  int GetGraphicsType() const override { return Say("20"), 20; }
  int GetMaxTextureSize() const override { return Say("21"), 21; }
};

}  // namespace
}  // namespace ZIRK

ENTRY_POINT void* CreateVuGraphics(bool) {
  return static_cast<ZIRK::VuGraphicsImpl*>(new ZIRK::Graphics);
}

ENTRY_POINT void DestroyVuGraphics(void* graphics) {
  delete static_cast<ZIRK::VuGraphicsImpl*>(graphics);
}
