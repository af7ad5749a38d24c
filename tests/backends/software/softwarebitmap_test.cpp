// What surfaces in memory do beside drawing.

#include "software/softwarebitmap.h"

#include <gtest/gtest.h>
#include <zirk/graphicsimplloader.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <vector>

#include "backends/common/oneerror.h"
#include "stub/stubbitmap.h"

namespace ZIRK::backends {
namespace {

using Format = VuPixelFormat;

class SoftwareBitmaps : public testing::Test {
 protected:
  std::unique_ptr<SoftwareBitmap> New(int width, int height, Format format = Format::ARGB8888) {
    return std::make_unique<SoftwareBitmap>(ledger_->Enter(width, height, format), width, height,
                                            format, sources_);
  }

  std::shared_ptr<SurfaceLedger> ledger_ = SurfaceLedger::Create(1 << 24);
  std::shared_ptr<PixelSources> sources_ = std::make_shared<SoftwareAtlases>(ledger_, 5);
};

TEST_F(SoftwareBitmaps, StartTransparentOrBlack) {
  const std::array<uint32_t, 6> expected = {0, 0xFF000000u, 0, 0, 0, 0};
  for (int format = 0; format < 6; ++format) {
    uint32_t pixel = 0;
    EXPECT_TRUE(New(3, 3, Format(format))->GetPixels({1, 1, 1, 1}, &pixel));
    EXPECT_EQ(pixel, expected[static_cast<size_t>(format)]) << format;
  }
}

TEST_F(SoftwareBitmaps, ClearGoesBeyondTheClippingRectangle) {
  const std::array<uint32_t, 6> expected = {0x80402010u, 0xFF402010u, 0x4102u,
                                            0x8421u,     0xA082u,     0x80u};
  for (int format = 0; format < 6; ++format) {
    const auto bitmap = New(300, 2, Format(format));
    bitmap->SetClippingRect({5, 5, 1, 1});
    bitmap->Clear(VuColor{0x80804020});
    for (const VuRect corner : {VuRect{0, 0, 1, 1}, VuRect{299, 1, 1, 1}}) {
      uint32_t pixel = 0;
      bitmap->GetPixels(corner, &pixel);
      EXPECT_EQ(pixel, expected[static_cast<size_t>(format)]) << format;
    }
  }
}

TEST_F(SoftwareBitmaps, PixelsGoInAndOutRowByRow) {
  const auto bitmap = New(5, 4, Format::RGB565);
  const uint16_t in[] = {1, 2, 3, 0xAAAA, 4, 5, 6};  // rows of three, four apart
  EXPECT_TRUE(bitmap->SetPixels({1, 1, 3, 2}, in, 8));
  uint16_t out[6] = {};
  EXPECT_TRUE(bitmap->GetPixels({1, 1, 3, 2}, out));
  EXPECT_EQ(std::vector<uint16_t>(out, out + 6), (std::vector<uint16_t>{1, 2, 3, 4, 5, 6}));
  const VuRect outside[] = {
      {-1, 0, 2, 2}, {0, 0, 6, 1}, {0, 3, 1, 2}, {2, 2, -1, 1}, {1, 1, INT32_MAX, 1}};
  for (const VuRect& rect : outside) {
    EXPECT_FALSE(bitmap->SetPixels(rect, in, 8));
    EXPECT_FALSE(bitmap->GetPixels(rect, out));
  }
  EXPECT_FALSE(bitmap->SetPixels({0, 0, 1, 1}, nullptr, 2));
  EXPECT_FALSE(bitmap->GetPixels({0, 0, 1, 1}, nullptr));
}

TEST_F(SoftwareBitmaps, OpaqueSurfacesStayOpaqueWhateverIsWritten) {
  const auto bitmap = New(2, 1, Format::XRGB8888);
  const uint32_t transparent[] = {0x00112233u, 0x00445566u};
  bitmap->SetPixels({0, 0, 1, 1}, transparent, 8);
  bitmap->Lock(true);
  static_cast<uint32_t*>(bitmap->GetInfo().pixels)[1] = transparent[1];
  bitmap->Unlock();
  uint32_t out[2];
  bitmap->GetPixels({0, 0, 2, 1}, out);
  EXPECT_EQ(out[0], 0xFF112233u);
  EXPECT_EQ(out[1], 0xFF445566u);
}

TEST_F(SoftwareBitmaps, AreLockedOnceAndShowTheirPixelsMeanwhile) {
  const auto bitmap = New(4, 4);
  EXPECT_EQ(bitmap->GetInfo().pixels, nullptr);
  EXPECT_FALSE(bitmap->Unlock());
  EXPECT_TRUE(bitmap->Lock(false));
  EXPECT_NE(bitmap->GetInfo().pixels, nullptr);
  EXPECT_FALSE(bitmap->Lock(true));
  EXPECT_TRUE(bitmap->Unlock());
  EXPECT_EQ(bitmap->GetInfo().pixels, nullptr);
}

TEST_F(SoftwareBitmaps, CopyPixelsCutsAndConverts) {
  const auto src = New(4, 4, Format::A8), dst = New(4, 4);
  src->Clear(VuColor{0x60000000});
  EXPECT_TRUE(dst->CopyPixels({3, -1}, src.get(), {2, 1, 100, 100}));
  EXPECT_TRUE(dst->CopyPixels({INT32_MAX, 0}, src.get(), {INT32_MIN, 0, 100, 100}));
  uint32_t out[16];
  dst->GetPixels({0, 0, 4, 4}, out);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(out[i], i == 3 || i == 7 ? 0x60606060u : 0u) << i;
}

TEST_F(SoftwareBitmaps, CopyPixelsWithinOneBitmapAsIfThroughAnother) {
  for (const VuPoint move : {VuPoint{1, 1}, VuPoint{-1, -1}, VuPoint{1, -1}, VuPoint{-1, 0}}) {
    const auto bitmap = New(5, 5);
    std::vector<uint32_t> pixels(25), out(25);
    for (uint32_t i = 0; i < 25; ++i) pixels[i] = i + 1;
    bitmap->SetPixels({0, 0, 5, 5}, pixels.data(), 20);
    bitmap->CopyPixels({1 + move.x, 1 + move.y}, bitmap.get(), {1, 1, 3, 3});
    bitmap->GetPixels({0, 0, 5, 5}, out.data());
    for (int y = 1; y < 4; ++y)
      for (int x = 1; x < 4; ++x)
        EXPECT_EQ(out[static_cast<size_t>((y + move.y) * 5 + x + move.x)],
                  static_cast<uint32_t>(y * 5 + x + 1));
  }
}

TEST_F(SoftwareBitmaps, RefuseSurfacesOfOthers) {
  const auto bitmap = New(4, 4);
  StubBitmap stub(ledger_->Enter(4, 4, Format::ARGB8888), 4, 4, Format::ARGB8888);
  // The plug-in has surfaces of the same code.
  const auto loader = GraphicsImplLoader::GetInstance();
  const std::unique_ptr<VuGraphicsImpl> plugin(
      static_cast<VuGraphicsImpl*>(loader->CreateImplInstance("FB", false)));
  ASSERT_NE(plugin, nullptr);
  const std::unique_ptr<VuBitmapImpl> namesake(plugin->CreateBitmap(4, 4, Format::ARGB8888));
  const std::unique_ptr<VuScreenImpl> screen(plugin->CreateScreen({4, 4, 0, 2, {}, false}));
  const VuRect all = {0, 0, 4, 4};
  const VuTMatrix2D<float> identity;
  for (VuBitmapImpl* stranger : {static_cast<VuBitmapImpl*>(&stub), namesake.get(),
                                 static_cast<VuBitmapImpl*>(screen.get())}) {
    stranger->Clear(white);
    EXPECT_TRUE(tests::LogsOneError("another backend", [&] {
      bitmap->DrawObject(all, stranger, all, identity, white, nullptr, nullptr);
    }));
    EXPECT_TRUE(tests::LogsOneError(
        "another backend", [&] { bitmap->DrawRect(all, white, identity, stranger, nullptr); }));
    EXPECT_TRUE(tests::LogsOneError("another backend", [&] {
      EXPECT_FALSE(namesake->CopyPixels({0, 0}, bitmap.get(), all));
    }));
  }
  EXPECT_FALSE(bitmap->CopyPixels({0, 0}, nullptr, all));
  uint32_t pixel = 1;
  bitmap->GetPixels({0, 0, 1, 1}, &pixel);
  EXPECT_EQ(pixel, 0u);
}

TEST_F(SoftwareBitmaps, PixelsMayBeSomebodyElsesAndMove) {
  SurfaceState state{3, 2, Format::RGB565};
  PixelBuffer pixels = PixelBuffer::Elsewhere(3, 2, Format::RGB565);
  Painter painter(pixels, state);
  const VuTMatrix2D<float> identity;
  const auto glass = New(3, 2, Format::RGB565), read = New(3, 2);
  glass->Clear(VuColor{0xFF0000FF});
  for (const int pitch : {8, 12}) {
    std::vector<uint16_t> memory(static_cast<size_t>(pitch), 7);
    pixels.PlaceAt(memory.data(), pitch);
    painter.DrawRect({0, 0, 3, 1}, VuColor{0xFFFF0000}, identity, nullptr);
    // By way of Pixman, which keeps a description of the pixels.
    painter.DrawObject({1, 1, 2, 1}, {&glass->Pixels(), {}}, {0, 0, 2, 1}, Edges::OnWholePixels,
                       identity, white, nullptr);
    std::vector<uint16_t> expected(memory.size(), 7);
    std::fill_n(expected.begin(), 3, uint16_t{0xF800});
    std::fill_n(expected.begin() + pitch / 2 + 1, 2, uint16_t{0x001F});
    EXPECT_EQ(memory, expected) << pitch;
    CopyPixels(read->Pixels(), {0, 0}, pixels, {1, 1, 2, 1});
    EXPECT_EQ(read->Pixels().Row32(0)[1], 0xFF0000FFu);
    read->Clear();
  }
}

TEST_F(SoftwareBitmaps, LinesAreTheSameBothWaysAndHaveBothEnds) {
  for (int dx = -9; dx <= 9; ++dx)
    for (int dy = -9; dy <= 9; ++dy) {
      const auto there = New(20, 20), back = New(20, 20);
      const VuTMatrix2D<float> identity;
      there->DrawLine({10, 10}, {10 + dx, 10 + dy}, white, identity, nullptr, nullptr);
      back->DrawLine({10 + dx, 10 + dy}, {10, 10}, white, identity, nullptr, nullptr);
      std::vector<uint32_t> a(400), b(400);
      there->GetPixels({0, 0, 20, 20}, a.data());
      back->GetPixels({0, 0, 20, 20}, b.data());
      ASSERT_EQ(a, b) << dx << ", " << dy;
      const auto drawn = std::count(a.begin(), a.end(), 0xFFFFFFFFu);
      ASSERT_EQ(drawn, std::max(std::abs(dx), std::abs(dy)) + 1) << dx << ", " << dy;
      ASSERT_EQ(a[10 * 20 + 10], 0xFFFFFFFFu);
      ASSERT_EQ(a[static_cast<size_t>((10 + dy) * 20 + 10 + dx)], 0xFFFFFFFFu);
    }
}

TEST_F(SoftwareBitmaps, ClippedLinesKeepTheirPixels) {
  const auto whole = New(40, 40), clipped = New(40, 40);
  const VuTMatrix2D<float> identity;
  clipped->SetClippingRect({7, 9, 20, 17});
  for (int i = 0; i < 40; i += 3) {
    const VuPoint from{-13, i * 3 - 40}, to{61, 47 - i};
    whole->DrawLine(from, to, VuColor{0x80FFFFFF}, identity, nullptr, nullptr);
    clipped->DrawLine(from, to, VuColor{0x80FFFFFF}, identity, nullptr, nullptr);
  }
  std::vector<uint32_t> a(1600), b(1600);
  whole->GetPixels({0, 0, 40, 40}, a.data());
  clipped->GetPixels({0, 0, 40, 40}, b.data());
  for (int i = 0; i < 1600; ++i) {
    const int x = i % 40, y = i / 40;
    const bool inside = x >= 7 && x < 27 && y >= 9 && y < 26;
    ASSERT_EQ(b[static_cast<size_t>(i)], inside ? a[static_cast<size_t>(i)] : 0) << x << ", " << y;
  }
}

TEST_F(SoftwareBitmaps, PointsCoverSquaresAroundTheirPixel) {
  constexpr struct {
    float size;
    int first, last;
  } kCases[] = {{0.2f, 10, 10}, {1, 10, 10}, {2, 10, 11}, {3, 9, 11}, {4, 9, 12}, {5, 8, 12}};
  for (const auto& c : kCases) {
    const auto bitmap = New(20, 20);
    bitmap->DrawPoint({10, 10}, c.size, white, VuTMatrix2D<float>(), nullptr, {});
    std::vector<uint32_t> row(20);
    bitmap->GetPixels({0, 10, 20, 1}, row.data());
    for (int x = 0; x < 20; ++x)
      EXPECT_EQ(row[static_cast<size_t>(x)] != 0, x >= c.first && x <= c.last)
          << "size " << c.size << " at " << x;
  }
}

}  // namespace
}  // namespace ZIRK::backends
