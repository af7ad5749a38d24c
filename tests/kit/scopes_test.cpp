#include <gtest/gtest.h>
#include <zirk/kit/scopes.h>
#include <zirk/zirk.h>

#include <memory>

namespace ZIRK::kit {
namespace {

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

}  // namespace
}  // namespace ZIRK::kit
