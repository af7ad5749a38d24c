// What a program writes at first sight, from <zirk/zirk.h> and <zirk/backend.h> alone. It compiles
// with every compiler and language version, and the program ends with the number of expectations
// that do not hold.

#include <zirk/zirk.h>

// The application's header brings these by itself.
using ZIRK::GetUtf8Char;
using ZIRK::Glyph;
using ZIRK::GraphicsImplLoader;
using ZIRK::VuFontAtlas;

#include <zirk/backend.h>
#include <zirk/ftfontregistry.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using namespace ZIRK;

namespace {

int failures = 0;

void Expect(bool holds, const char* what) {
  if (holds) return;
  std::printf("does not hold: %s\n", what);
  ++failures;
}
#define EXPECT(condition) Expect(condition, #condition)

// --- Types
// ----------------------------------------------------------------------------------------

static_assert(sizeof(VuColor) == 4 && std::is_trivially_copyable_v<VuColor>);
static_assert(VuColor{}.argb == 0 && VuColor(0xFF112233) == 0xFF112233);
static_assert(std::is_aggregate_v<VuPoint> && std::is_aggregate_v<VuRect> &&
              std::is_aggregate_v<BinRect> && std::is_aggregate_v<GraphicsFeatureInfo>);
static_assert(VuPoint{1, 2} == VuPoint{1, 2} && VuPoint{1, 2} != VuPoint{1, 3});
static_assert(VuRect{1, 2, 3, 4} == VuRect{1, 2, 3, 4} && VuRect{1, 2, 3, 4} != VuRect{1, 2, 3, 5});
static_assert(BinRect{1, 2, 3, 4} == BinRect{1, 2, 3, 4} && BinRect{1, 2, 3, 4} != BinRect{});
static_assert(GraphicsFeatureInfo{1, 2} == GraphicsFeatureInfo{1, 2} &&
              GraphicsFeatureInfo{1, 2} != GraphicsFeatureInfo{2, 2});
static_assert(VuTransform() == VuTransform(0, 0, 1, 1, -0.0f) &&
              VuTransform() != VuTransform(0, 0, 1, 1, 90));
static_assert(VuFontAtlas::margin_ == 2);
static_assert(std::is_same_v<VuGraphics::FeatureType, FeatureType>);

void Colours() {
  VuColor c = 0xFF112233;
  EXPECT(c.argb == 0xFF112233);
  c = 0x80FFFFFF;
  const uint32_t word = c, cast = (uint32_t)c;
  EXPECT(word == 0x80FFFFFF && cast == word && static_cast<VuColor>(word) == c);
  EXPECT(white == 0xFFFFFFFF && c != white && VuColor{0xFFFFFFFF} == white);
  const uint32_t v = white;
  EXPECT(v == 0xFFFFFFFF);
}

void MatricesAndTransforms() {
  const VuTransform moved(3, 4, 1, 1, 0);
  const VuTMatrix2D<float> matrix(moved);
  EXPECT(matrix == moved && !(matrix != moved));
  EXPECT(VuTransform(matrix) == moved);
}

// --- Drawing, and a surface that knows nothing of the reserved operation
// --------------------------

/// Keeps the colour that it is cleared or filled with.
class Surface final : public VuBitmapImpl {
 public:
  using VuBitmapImpl::Clear;

  explicit Surface(VuColor& seen) : seen_(seen) {}

  void SetName(const char*) override {}
  void Clear(VuColor color) override { seen_ = color; }
  VuBitmapInfo GetInfo() const override { return {}; }
  uint32_t GetSize() const override { return 0; }
  VuRect GetBounds() const override { return {0, 0, 8, 8}; }
  VuRect GetClippingRect() const override { return {}; }
  void SetClippingRect(VuRect) override {}
  void GetBlendingFunc(VuBlendingFactor&, VuBlendingFactor&) const override {}
  void SetBlendingFunc(VuBlendingFactor, VuBlendingFactor) override {}
  void SetBlendingFunc(VuBlendingFactor, VuBlendingFactor, VuBlendingFactor,
                       VuBlendingFactor) override {}
  bool GetBlendEnabled() const override { return true; }
  void SetBlendEnabled(bool) override {}
  VuColor GetBlendColor() const override { return 0; }
  void SetBlendColor(VuColor) override {}
  VuScaleMode GetScaleMode() const override { return {}; }
  void SetScaleMode(VuScaleMode) override {}
  void DrawPoint(VuPoint, float, VuColor, VuTransform, VuBitmapImpl*, VuTVector2D<float>) override {
  }
  void DrawPoint(VuPoint, float, VuColor, VuTMatrix2D<float>, VuBitmapImpl*,
                 VuTVector2D<float>) override {}
  void DrawLine(VuPoint, VuPoint, VuColor, VuTransform, VuBitmapImpl*,
                VuTVector2D<float>*) override {}
  void DrawLine(VuPoint, VuPoint, VuColor, VuTMatrix2D<float>, VuBitmapImpl*,
                VuTVector2D<float>*) override {}
  void DrawRect(VuRect, VuColor color, VuTransform, VuBitmapImpl*, VuTVector2D<float>*) override {
    seen_ = color;
  }
  void DrawRect(VuRect, VuColor, VuTMatrix2D<float>, VuBitmapImpl*, VuTVector2D<float>*) override {}
  void DrawObject(VuRect, VuBitmapImpl*, VuRect, VuTransform, VuColor, VuBitmapImpl*,
                  VuTVector2D<float>*) override {}
  void DrawObject(VuRect, VuBitmapImpl*, VuRect, VuTMatrix2D<float>, VuColor, VuBitmapImpl*,
                  VuTVector2D<float>*) override {}
  void DrawObject(VuTRect2D<float>, VuBitmapImpl*, VuTRect2D<float>, VuTMatrix2D<float>, VuColor,
                  VuBitmapImpl*, VuTVector2D<float>*) override {}
  void DrawText(VuFontImpl*, const char*, VuPoint, VuColor, VuTransform, VuBitmapImpl*,
                VuTVector2D<float>*, VuRect) override {}
  void DrawText(VuFontImpl*, const char*, VuPoint, VuColor, VuTMatrix2D<float>, VuBitmapImpl*,
                VuTVector2D<float>*, VuRect) override {}
  bool Lock(bool) override { return false; }
  bool Unlock() override { return false; }
  void Finish() override {}
  void Flush() override {}
  bool GetPixels(VuRect, void*) override { return false; }
  bool SetPixels(VuRect, const void*, unsigned) override { return false; }
  bool CopyPixels(VuPoint, VuBitmapImpl*, VuRect) override { return false; }

 private:
  VuColor& seen_;
};

void Drawing() {
  VuColor seen;
  auto* const surface = new Surface(seen);
  surface->Reserved();
  const auto bitmap = std::make_unique<VuBitmap>(surface);
  bitmap->Clear(0xFF000000);
  EXPECT(seen == 0xFF000000);
  bitmap->DrawRect(VuRect{0, 0, 4, 4}, 0xFF102030);
  EXPECT(seen == 0xFF102030);
}

// --- Packer, atlas, fonts
// -------------------------------------------------------------------------

void Packing() {
  MaxRectsBinPack packer(100, 50);
  const BinRect placed = packer.Insert(10, 20);
  EXPECT((placed == BinRect{0, 0, 10, 20}) && packer.usedRects[0] == placed);
  EXPECT(packer.freeRects.size() == 2 && packer.binWidth == 100 && packer.binHeight == 50);
  auto [w, h] = packer.GetUsedSize();
  EXPECT(w == 10 && h == 20 && packer.GetUsedSize().first == 10);
  const std::pair<int, int> used = packer.GetUsedSize();
  EXPECT(used.second == 20);
}

// The atlas's fields, by name. Making one takes a context.
using Atlas = VuTextureAtlasImpl;
static_assert(std::is_same_v<decltype(std::declval<Atlas&>().Resize(1, 1)), std::pair<int, int>>);
static_assert(std::is_same_v<decltype(Atlas::bitmap), std::shared_ptr<VuBitmapImpl>>);
static_assert(std::is_same_v<decltype(Atlas::graphics), VuGraphicsImpl*>);
static_assert(std::is_same_v<decltype(Atlas::format), VuPixelFormat>);
static_assert(std::is_same_v<decltype(Atlas::name), std::string>);
static_assert(
    std::is_same_v<decltype(std::declval<Atlas&>().packer->freeRects), std::vector<BinRect>>);
static_assert(std::is_same_v<decltype(Atlas::width), int32_t> &&
              std::is_same_v<decltype(Atlas::height), int32_t>);

void Fonts(const char* file) {
  const int& margin = VuFontAtlas::margin_;
  const int perMargin[VuFontAtlas::margin_] = {};
  EXPECT(&margin == &VuFontAtlas::margin_ && perMargin[1] == 0);
  const VuFontAtlas font(file, 0, 32, false, false);
  const Glyph* const a = font.GetGlyph('A', false);
  const Glyph* const v = font.GetGlyph('V', false);
#if __has_include(<ft2build.h>)
  EXPECT(a && v && font.GetKerning(*a, *v).x < 0);
#else
  EXPECT(a && v);
#endif
  FTFontRegistry registry;
  EXPECT(registry.Register(file));
  int length = 0;
  EXPECT(GetUtf8Char("A", &length) == 'A' && length == 1);
  EXPECT((GraphicsImplLoader::GetInstance()->GetFeatureInfo("FB") == GraphicsFeatureInfo{0, 0}));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 1;
  Colours();
  MatricesAndTransforms();
  Drawing();
  Packing();
  Fonts(argv[1]);
  return failures;
}
