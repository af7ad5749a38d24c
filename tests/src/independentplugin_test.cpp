// A plug-in that was built without our headers, driven through every operation of the front end.

#include <gtest/gtest.h>
#include <zirk/backend.h>

#include <memory>
#include <sstream>

#include "doubles/fakefont.h"
#include "support/logged.h"
#include "support/plugins.h"

namespace ZIRK {
namespace {

using support::LoggedAt;
using Matrix = VuTMatrix2D<float>;

class IndependentPlugin : public testing::Test {
 protected:
  void SetUp() override {
    const auto loader = GraphicsImplLoader::GetInstance();
    loader->SetupGfxImpl("FB", support::Plugin("Independent"), {0, 0}, false);
    LoggedAt(2, [this] {
      graphics.reset(VuGraphics::Create("FB", true));
      ASSERT_TRUE(graphics);
      bitmap.reset(graphics->CreateBitmap(1, 2, VuPixelFormat{3}));
      ASSERT_TRUE(bitmap);
    });
  }

  std::unique_ptr<VuGraphics> graphics;
  std::unique_ptr<VuBitmap> bitmap;
};

TEST_F(IndependentPlugin, Context) {
  VuGraphics& g = *graphics;
  const std::string said = LoggedAt(2, [&] {
    EXPECT_EQ(g.CreateScreen(1, 2, true, 3, true, VuPixelFormat{4}), nullptr);
    EXPECT_EQ(g.CreateBitmapFromFile("f"), nullptr);
    EXPECT_EQ(g.CreateBitmapFromFile("f", 1, 2, VuScaleMode{3}, VuDisplayMode{4}), nullptr);
    EXPECT_EQ(g.CreateBitmapFromMemory(&g, 5), nullptr);
    EXPECT_EQ(g.CreateBitmapFromMemory(&g, 5, 1, 2, VuScaleMode{3}), nullptr);
    EXPECT_EQ(g.AvailableMemory(), 10u);
    EXPECT_EQ(g.TotalMemory(), 11u);
    EXPECT_EQ(g.BitmapSize(1, 2, VuPixelFormat{3}), 12u);
    EXPECT_EQ(g.BitmapSize("f"), 13u);
    EXPECT_EQ(g.BitmapSize("f", 1, 2), 14u);
    EXPECT_EQ(g.BitmapSize(static_cast<const void*>(&g), 5), 15u);
    EXPECT_EQ(g.BitmapSize(&g, 5, 1, 2), 16u);
    std::ostringstream os;
    g.PrintBitmapList(os);
    EXPECT_EQ(os.str(), "list");
    g.Flush();
    g.SetTerminateOnDestruct(true);
    EXPECT_EQ(g.GetGraphicsType(), 20);
    EXPECT_EQ(g.GetMaxTextureSize(), 21);
    bitmap.reset();
    graphics.reset();
  });
  EXPECT_EQ(said,
            "4 1 2 3 2 4 1;6 f;7 f 1 2 3 4;8 5;9 5 1 2 3;10;11;12 1 2 3;13 f;14 f 1 2;15 5;"
            "16 5 1 2;17 0;18;19 1;20;21;gone;gone;");
}

TEST_F(IndependentPlugin, SurfaceState) {
  using F = VuBlendingFactor;
  VuBitmap& b = *bitmap;
  const std::string said = LoggedAt(2, [&] {
    b.SetName("name");
    b.Clear();
    b.Clear(VuColor{6});
    EXPECT_EQ(b.GetInfo().pitch, 4);
    EXPECT_EQ(b.GetSize(), 8u);
    EXPECT_EQ(b.GetBounds().height, 10);
    EXPECT_EQ(b.GetClippingRect().height, 4);
    b.SetClippingRect({1, 2, 3, 4});
    F src{};
    F dst{};
    b.GetBlendingFunc(src, dst);
    EXPECT_EQ(dst, F{2});
    b.SetBlendingFunc(F{1}, F{2});
    b.SetBlendingFunc(F{1}, F{2}, F{3}, F{4});
    EXPECT_TRUE(b.GetBlendEnabled());
    b.SetBlendEnabled(true);
    EXPECT_EQ(b.GetBlendColor().argb, 17u);
    b.SetBlendColor(VuColor{18});
    EXPECT_EQ(b.GetScaleMode(), VuScaleMode{19});
    b.SetScaleMode(VuScaleMode{20});
  });
  EXPECT_EQ(said, "4 name;5;6 6;7;8;9;10;11 1 4;12;13 1 2;14 1 2 3 4;15;16 1;17;18 12;19;20 20;");
}

TEST_F(IndependentPlugin, Drawing) {
  VuBitmap& b = *bitmap;
  doubles::Recorder recorder;
  const VuFont font(new doubles::FakeFont(recorder));
  const VuPoint p{1, 2};
  const VuRect r{3, 4, 5, 6};
  const VuTRect2D<float> f(0.5f, 1, 2, 3);
  const VuColor c{7};
  const VuTransform t{0, 0, 8, 9, 0};
  const Matrix m{t};
  VuTVector2D<float> v(10, 11.5f);
  const std::string said = LoggedAt(2, [&] {
    b.DrawPoint(p, 1.5f, c, t, b, v);
    b.DrawPoint(p, 1.5f, c, m, b, v);
    b.DrawLine(p, p, c, t, b, &v);
    b.DrawLine(p, p, c, m, b, &v);
    b.DrawRect(r, c, t, b, &v);
    b.DrawRect(r, c, m, b, &v);
    b.DrawObject(r, b, r, t, c, b, &v);
    b.DrawObject(r, b, r, m, c, b, &v);
    b.DrawObject(f, b, f, m, c, b, &v);
    b.DrawText(font, "text", p, c, t, b, &v, r);
    b.DrawText(font, "text", p, c, m, b, &v, r);
  });
  EXPECT_EQ(said,
            "21 2 1.5 9 11.5;22 2 1.5 9 2 11.5;23 2 2 9 11.5;24 2 2 9 11.5;25 6 9 11.5;26 6 9 11.5;"
            "27 6 3 9 1 11.5;28 6 3 9 1 11.5;29 4 0.5 9 1 11.5;30 text 2 9 6;31 text 2 9 6;");
}

TEST_F(IndependentPlugin, PixelsAndFrames) {
  const support::Tunables restored;
  LogOverdraw = true;
  VuBitmap& b = *bitmap;
  const VuRect r{3, 4, 5, 6};
  const std::string said = LoggedAt(2, [&] {
    b.Lock();
    b.Unlock();
    b.DrawPoint({1, 2}, 4, white);
    b.SwapBuffers();
    b.Flush();
    b.GetPixels(r, nullptr);
    b.SetPixels(r, nullptr, 37);
    b.CopyPixels({1, 2}, b, r);
    EXPECT_FALSE(b.IsTextureBacked());
    const std::unique_ptr<VuBitmap> screen(graphics->CreateScreen(true));
    screen->SwapBuffers();
  });
  EXPECT_EQ(said, "32 1;33;21 2 4 1 0;34 of 16;9;35;36 6;37 6 37;38 2 1 6;39;3 1;screen 3;9;gone;");
}

}  // namespace
}  // namespace ZIRK
