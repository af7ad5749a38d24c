// What programs commonly write, with <zirk/zirk.h> and <zirk/backend.h> alone. It compiles with
// every compiler and language version, and the program ends with the number of the first function
// whose expectations fail.

#include <zirk/zirk.h>

// The application's header declares these.
using ZIRK::GetUtf8Char;
using ZIRK::Glyph;
using ZIRK::GraphicsImplLoader;
using ZIRK::VuFontAtlas;

#include <zirk/backend.h>
#include <zirk/ftfontregistry.h>

#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

using namespace ZIRK;

namespace {

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

bool Colours() {
  VuColor c = 0xFF112233;
  c = 0x80FFFFFF;
  const uint32_t word = c, cast = (uint32_t)c;
  return word == 0x80FFFFFF && cast == word && static_cast<VuColor>(word) == c && c != white &&
         white == 0xFFFFFFFF && VuColor{0xFFFFFFFF} == white;
}

bool MatricesAndTransforms() {
  const VuTransform moved(3, 4, 1, 1, 0);
  const VuTMatrix2D<float> matrix(moved);
  return matrix == moved && !(matrix != moved) && VuTransform(matrix) == moved;
}

[[maybe_unused]] void Draw(VuBitmap& bitmap) {
  bitmap.Clear(0xFF000000);
  bitmap.DrawRect(VuRect{0, 0, 4, 4}, 0xFF102030);
}

bool Packing() {
  MaxRectsBinPack packer(100, 50);
  const BinRect placed = packer.Insert(10, 20);
  const auto [w, h] = packer.GetUsedSize();
  const std::pair<int, int> used = packer.GetUsedSize();
  return packer.usedRects[0] == placed && packer.freeRects.size() == 2 && packer.binWidth == 100 &&
         w == used.first && h == used.second;
}

// Making an atlas takes a context. The types of its fields are on record in tests/abi.
using Atlas = VuTextureAtlasImpl;
static_assert(std::is_same_v<decltype(std::declval<Atlas&>().Resize(1, 1)), std::pair<int, int>>);
[[maybe_unused]] constexpr auto kFields = std::make_tuple(
    &Atlas::bitmap, &Atlas::graphics, &Atlas::format, &Atlas::name, &Atlas::width, &Atlas::height);
static_assert(
    std::is_same_v<decltype(std::declval<Atlas&>().packer->freeRects), std::vector<BinRect>>);

bool Fonts(const char* file) {
  const int& margin = VuFontAtlas::margin_;
  const int perMargin[VuFontAtlas::margin_] = {};
  const VuFontAtlas font(file, 0, 32, false, false);
  const Glyph* const a = font.GetGlyph('A', false);
  const Glyph* const v = font.GetGlyph('V', false);
#if __has_include(<ft2build.h>)
  if (font.GetKerning(*a, *v).x >= 0) return false;
#endif
  FTFontRegistry registry;
  int length = 0;
  return a && v && &margin == &VuFontAtlas::margin_ && perMargin[1] == 0 &&
         registry.Register(file) && GetUtf8Char("A", &length) == 'A' && length == 1 &&
         GraphicsImplLoader::GetInstance()->GetFeatureInfo("FB") == GraphicsFeatureInfo{0, 0};
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 || !Colours()) return 1;
  if (!MatricesAndTransforms()) return 2;
  if (!Packing()) return 3;
  return Fonts(argv[1]) ? 0 : 4;
}
