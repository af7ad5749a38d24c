// Plug-ins are built apart from the library and meet it by position only. These tests call the
// operations as the library's machine code does: entry N of the object's table.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <sstream>

#include "doubles/fakefont.h"
#include "doubles/recordinggraphics.h"

namespace ZIRK {
namespace {

using doubles::Line;
using doubles::Recorder;

using Vector = VuTVector2D<float>;
using Matrix = VuTMatrix2D<float>;
using RectF = VuTRect2D<float>;
using Factor = VuBlendingFactor;

/// Calls entry `slot`, counted from 1, of the table of `object`.
template <typename R, typename... Args>
R CallSlot(void* object, int slot, Args... args) {
  void** table = nullptr;
  std::memcpy(&table, object, sizeof table);
  return reinterpret_cast<R (*)(void*, Args...)>(table[slot - 1])(object, args...);
}

class Slots : public testing::Test {
 protected:
  /// Entry `slot` of `object` is `operation`, and takes its arguments as they are.
  template <typename R, typename... Args>
  void Expect(int slot, const char* operation, Args... args) {
    CallSlot<R>(object, slot, args...);
    EXPECT_EQ(recorder.Take(), Line(operation, args...)) << "slot " << slot;
  }

  /// Entries 1 and 2 destroy: the first leaves the memory alone, the second frees it.
  template <class Object, class Interface>
  void ExpectDestructors() {
    alignas(Object) std::array<unsigned char, sizeof(Object)> storage;
    CallSlot<void>(static_cast<Interface*>(new (storage.data()) Object(recorder)), 1);
    EXPECT_EQ(recorder.Take(), "destroyed\n");
    CallSlot<void>(static_cast<Interface*>(new Object(recorder)), 2);
    EXPECT_EQ(recorder.Take(), "destroyed\n");
  }

  Recorder recorder;
  void* object = nullptr;
};

TEST_F(Slots, Destructors) {
  ExpectDestructors<doubles::RecordingBitmap, VuBitmapImpl>();
  ExpectDestructors<doubles::RecordingScreen, VuScreenImpl>();
  ExpectDestructors<doubles::RecordingScreen, VuBitmapImpl>();
  ExpectDestructors<doubles::RecordingGraphics, VuGraphicsImpl>();
  ExpectDestructors<doubles::FakeFont, VuFontImpl>();
}

TEST_F(Slots, BitmapState) {
  doubles::RecordingBitmap bitmap(recorder);
  object = static_cast<VuBitmapImpl*>(&bitmap);
  Factor src{};
  Factor dst{};
  Expect<void>(3, "Reserved");
  Expect<void>(4, "SetName", static_cast<const char*>("name"));
  Expect<void>(5, "Clear");
  Expect<void>(6, "Clear", VuColor{1});
  Expect<VuBitmapInfo>(7, "GetInfo");
  Expect<uint32_t>(8, "GetSize");
  Expect<VuRect>(9, "GetBounds");
  Expect<VuRect>(10, "GetClippingRect");
  Expect<void>(11, "SetClippingRect", VuRect{1, 2, 3, 4});
  Expect<void>(12, "GetBlendingFunc", &src, &dst);
  Expect<void>(13, "SetBlendingFunc", Factor{1}, Factor{2});
  Expect<void>(14, "SetBlendingFunc", Factor{1}, Factor{2}, Factor{3}, Factor{4});
  Expect<bool>(15, "GetBlendEnabled");
  Expect<void>(16, "SetBlendEnabled", true);
  Expect<VuColor>(17, "GetBlendColor");
  Expect<void>(18, "SetBlendColor", VuColor{7});
  Expect<VuScaleMode>(19, "GetScaleMode");
  Expect<void>(20, "SetScaleMode", VuScaleMode{9});
}

TEST_F(Slots, BitmapDrawing) {
  doubles::RecordingBitmap bitmap(recorder);
  VuBitmapImpl* const self = &bitmap;
  object = self;
  doubles::FakeFont fake(recorder);
  VuFontImpl* const font = &fake;
  const VuPoint p{1, 2};
  const VuPoint q{3, 4};
  const VuRect r{5, 6, 7, 8};
  const RectF f(0.5f, 1.5f, 2, 3);
  const VuColor c{0x12345678};
  const VuTransform t(1, 2, 3, 4, 5);
  const Matrix m(t);
  Vector coord(6, 7);
  const char* const text = "text";
  Expect<void>(21, "DrawPoint", p, 2.5f, c, t, self, coord);
  Expect<void>(22, "DrawPoint", p, 2.5f, c, m, self, coord);
  Expect<void>(23, "DrawLine", p, q, c, t, self, &coord);
  Expect<void>(24, "DrawLine", p, q, c, m, self, &coord);
  Expect<void>(25, "DrawRect", r, c, t, self, &coord);
  Expect<void>(26, "DrawRect", r, c, m, self, &coord);
  Expect<void>(27, "DrawObject", r, self, r, t, c, self, &coord);
  Expect<void>(28, "DrawObject", r, self, r, m, c, self, &coord);
  Expect<void>(29, "DrawObject", f, self, f, m, c, self, &coord);
  Expect<void>(30, "DrawText", font, text, p, c, t, self, &coord, r);
  Expect<void>(31, "DrawText", font, text, p, c, m, self, &coord, r);
}

TEST_F(Slots, BitmapCompletionAndPixels) {
  doubles::RecordingBitmap bitmap(recorder);
  VuBitmapImpl* const self = &bitmap;
  object = self;
  int pixel = 0;
  const VuRect r{5, 6, 7, 8};
  Expect<bool>(32, "Lock", true);
  Expect<bool>(33, "Unlock");
  Expect<void>(34, "Finish");
  Expect<void>(35, "Flush");
  Expect<bool>(36, "GetPixels", r, static_cast<void*>(&pixel));
  Expect<bool>(37, "SetPixels", r, static_cast<const void*>(&pixel), 16u);
  Expect<bool>(38, "CopyPixels", VuPoint{1, 2}, self, r);
  Expect<bool>(39, "IsTextureBacked");
}

TEST_F(Slots, Screen) {
  doubles::RecordingScreen screen(recorder);
  object = static_cast<VuScreenImpl*>(&screen);
  Expect<void>(3, "SwapBuffers");
  object = static_cast<VuBitmapImpl*>(&screen);
  Expect<void>(34, "Finish");
}

TEST_F(Slots, Graphics) {
  doubles::RecordingGraphics graphics(recorder);
  graphics.fails = true;
  object = static_cast<VuGraphicsImpl*>(&graphics);
  const VuScreenDescription description{1, 2, 3, 4, VuPixelFormat{5}, true};
  std::ostringstream os;
  const char* const path = "path";
  const void* const data = path;
  CallSlot<VuScreenImpl*>(object, 4, &description);
  EXPECT_EQ(recorder.Take(), Line("CreateScreen", description));
  CallSlot<void>(object, 17, 3u, static_cast<std::ostream*>(&os));
  EXPECT_EQ(recorder.Take(), Line("PrintBitmapList", 3u));

  Expect<VuScreenImpl*>(3, "CreateScreen", true);
  Expect<VuBitmapImpl*>(5, "CreateBitmap", 1, 2, VuPixelFormat{3});
  Expect<VuBitmapImpl*>(6, "CreateBitmapFromFile", path);
  Expect<VuBitmapImpl*>(7, "CreateBitmapFromFile", path, 1, 2, VuScaleMode{3}, VuDisplayMode{4});
  Expect<VuBitmapImpl*>(8, "CreateBitmapFromMemory", data, 1u);
  Expect<VuBitmapImpl*>(9, "CreateBitmapFromMemory", data, 1u, 2, 3, VuScaleMode{4});
  Expect<unsigned>(10, "AvailableMemory");
  Expect<unsigned>(11, "TotalMemory");
  Expect<unsigned>(12, "BitmapSize", 1, 2, VuPixelFormat{3});
  Expect<unsigned>(13, "BitmapSize", path);
  Expect<unsigned>(14, "BitmapSize", path, 1, 2);
  Expect<unsigned>(15, "BitmapSize", data, 1u);
  Expect<unsigned>(16, "BitmapSize", data, 1u, 2, 3);
  Expect<void>(18, "Flush");
  Expect<void>(19, "SetTerminateOnDestruct", true);
  Expect<int>(20, "GetGraphicsType");
  Expect<int>(21, "GetMaxTextureSize");
}

TEST_F(Slots, Font) {
  doubles::FakeFont font(recorder);
  object = static_cast<VuFontImpl*>(&font);
  int a = 0;
  int b = 0;
  int c = 0;
  int d = 0;
  Expect<void>(3, "GetFontMetrics", &a, &b, &c, &d);
  Expect<int>(4, "GetOneLineWidth", static_cast<const char*>("text"));
  Expect<int>(5, "GetOneLineHeight");
  Expect<int>(6, "GetAscent");
  Expect<int>(7, "GetDescent");
  Expect<int>(8, "GetMaxAdvance");
  Expect<void>(9, "GetUnderlineMetrics", &a, &b);
  CallSlot<void>(object, 10, VuFont::OutlineType::Inner);
  CallSlot<void>(object, 11, 1.5f);
  CallSlot<void>(object, 12, 0x20ACu);
  Expect<void>(13, "SetFallbackFont", static_cast<const VuFontImpl*>(&font));
  EXPECT_EQ(font.outlineType(), VuFont::OutlineType::Inner);
  EXPECT_EQ(font.outlineThickness(), 96);
  EXPECT_EQ(font.fallbackGlyph(), 0x20ACu);
}

class RecordingCompositor : public VuCompositorImpl {
 public:
  explicit RecordingCompositor(Recorder& r) : record(r) {}
  ~RecordingCompositor() override { record("destroyed"); }
  void SetConfiguration(const LayerDescription* layers, int count) override {
    record("SetConfiguration", layers, count);
  }
  void GetConfiguration(LayerDescription* layers, int& count) override {
    record("GetConfiguration", layers, &count);
  }
  void EnableLayer(signed char layer, bool enable) override {
    record("EnableLayer", int{layer}, enable);
  }
  int GetVirtualLayerCount() override { return record("GetVirtualLayerCount"), 2; }
  Recorder& record;
};

TEST_F(Slots, Compositor) {
  ExpectDestructors<RecordingCompositor, VuCompositorImpl>();
  RecordingCompositor compositor(recorder);
  object = static_cast<VuCompositorImpl*>(&compositor);
  LayerDescription* const layers = nullptr;
  int count = 0;
  Expect<void>(3, "SetConfiguration", static_cast<const LayerDescription*>(layers), 2);
  Expect<void>(4, "GetConfiguration", layers, &count);
  CallSlot<void>(object, 5, static_cast<signed char>(-3), true);
  EXPECT_EQ(recorder.Take(), Line("EnableLayer", -3, true));
  Expect<int>(6, "GetVirtualLayerCount");
}

TEST_F(Slots, OverdrawCounterFollowsTheTablePointer) {
  doubles::RecordingScreen screen(recorder);
  VuBitmapImpl* const surface = &screen;
  EXPECT_EQ(reinterpret_cast<char*>(&surface->overdrawPixels) - reinterpret_cast<char*>(surface),
            static_cast<std::ptrdiff_t>(sizeof(void*)));
  EXPECT_EQ(surface->overdrawPixels, 0u);
}

TEST_F(Slots, Defaults) {
  doubles::PlainSurface<VuBitmapImpl> bitmap(recorder);
  doubles::PlainGraphics graphics(recorder);
  static_cast<VuBitmapImpl&>(bitmap).Clear();
  EXPECT_TRUE(bitmap.IsTextureBacked());
  graphics.SetTerminateOnDestruct(true);
  EXPECT_EQ(graphics.GetMaxTextureSize(), 2048);
  EXPECT_EQ(recorder.Take(), "");
}

// Records that plug-ins read as they lie in memory.
static_assert(offsetof(VuScreenDescription, width) == 0);
static_assert(offsetof(VuScreenDescription, height) == 4);
static_assert(offsetof(VuScreenDescription, index) == 8);
static_assert(offsetof(VuScreenDescription, buffers) == 9);
static_assert(offsetof(VuScreenDescription, format) == 12);
static_assert(offsetof(VuScreenDescription, option) == 16);
static_assert(sizeof(VuPoint) == 8 && sizeof(VuRect) == 16 && sizeof(VuColor) == 4);
static_assert(sizeof(VuTransform) == 20 && sizeof(Matrix) == 40 && sizeof(RectF) == 16);

}  // namespace
}  // namespace ZIRK
