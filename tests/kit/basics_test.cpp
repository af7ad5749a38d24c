// Colours, scopes, and text that is not terminated.

#include <gtest/gtest.h>
#include <zirk/kit/color.h>
#include <zirk/kit/scopes.h>
#include <zirk/kit/text.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "kit/stage.h"

namespace ZIRK::kit {
namespace {

TEST(Color, MixesChannelByChannel) {
  const VuColor from = 0x00FF8001, to = 0xFF00C002;
  EXPECT_EQ(Mix(from, to, 0), from);
  EXPECT_EQ(Mix(from, to, 1), to);
  EXPECT_EQ(Mix(from, to, 0.25f), 0x40BF9001u);
  EXPECT_EQ(Mix(from, to, 0.5f), 0x8080A002u);
  EXPECT_EQ(Mix(from, to, -7), from);
  EXPECT_EQ(Mix(from, to, HUGE_VALF), to);
  EXPECT_EQ(Mix(from, to, NAN), from);
}

TEST(Scopes, NestAndRestore) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("Stub", false));
  const std::unique_ptr<VuBitmap> target(graphics->CreateBitmap(64, 48, VuPixelFormat::ARGB8888));
  {
    const ClippingScope outer(*target, {8, 8, INT32_MAX, 20});
    EXPECT_EQ(target->GetClippingRect(), (VuRect{8, 8, 56, 20}));
    const ClippingScope inner(*target, {-4, 20, 20, 90});
    EXPECT_EQ(target->GetClippingRect(), (VuRect{8, 20, 8, 8}));
    const ClippingScope nothing(*target, {30, 0, 10, 48});
    EXPECT_EQ(target->GetClippingRect().width, 0);
    const BlendingScope light(*target, VuBlendingFactor::One, VuBlendingFactor::One);
    VuBlendingFactor src, dst;
    target->GetBlendingFunc(src, dst);
    EXPECT_EQ(dst, VuBlendingFactor::One);
  }
  EXPECT_EQ(target->GetClippingRect(), (VuRect{0, 0, 64, 48}));
  VuBlendingFactor src, dst;
  target->GetBlendingFunc(src, dst);
  EXPECT_EQ(dst, VuBlendingFactor::OneMinusSrcAlpha);
}

/// Text is as if it were terminated, at any length, and with kerning between the pieces in which it
/// is drawn.
TEST(Text, NeedsNoTerminator) {
  std::string text;
  while (text.size() < 2300) text += "AVATAR Tö LT, WA\u2026";
  text.replace(700, 1, "\xFF");
  Stage stage;
  for (size_t size = 0; size < text.size();
       size += size < 20 || (size > 505 && size < 520) ? 1 : 97) {
    const size_t start = std::min<size_t>(size, size % 7);
    const std::string terminated = text.substr(start, size - start);
    const std::string_view view(text.data() + start, size - start);
    EXPECT_EQ(GetWidth(Sans(), view), WidthOf(terminated)) << size;
    const VuPoint at{390 - WidthOf(terminated), 20};
    DrawText(*stage.drawn, Sans(), view, at, white);
    stage.expected->DrawText(Sans(), terminated.c_str(), at, white);
    const VuTransform t(9, 40, 1, 1.5f, 0);
    DrawText(*stage.drawn, Sans(), view, at, 0x80FF0000, t);
    stage.expected->DrawText(Sans(), terminated.c_str(), at, 0x80FF0000, t);
    stage.Compare();
  }
  EXPECT_EQ(GetWidth(Sans(), std::string_view("A\0V", 3)), WidthOf("AV"));
  EXPECT_EQ(GetWidth(Sans(), std::string_view()), 0);
  EXPECT_EQ(GetWidth(Sans(), std::string(2000, '\xFF')), 0);
}

}  // namespace
}  // namespace ZIRK::kit
