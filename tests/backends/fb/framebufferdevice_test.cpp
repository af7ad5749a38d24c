#include "fb/framebufferdevice.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "backends/fb/fakeframebuffer.h"
#include "common/surfaceformat.h"
#include "support/logged.h"

namespace ZIRK::backends {
namespace {

constexpr fb_bitfield kNone{0, 0, 0};

std::shared_ptr<FakeFramebuffer> XrgbDisplay(unsigned width, unsigned height) {
  return std::make_shared<FakeFramebuffer>(width, height, 32u, fb_bitfield{16, 8, 0},
                                           fb_bitfield{8, 8, 0}, fb_bitfield{0, 8, 0});
}

std::shared_ptr<FakeFramebuffer> PaletteDisplay() {
  const fb_bitfield index{0, 8, 0};
  auto io = std::make_shared<FakeFramebuffer>(8u, 4u, 8u, index, index, index);
  io->maxWidth = io->maxHeight = 100;
  return io;
}

std::unique_ptr<FramebufferDevice> OpenOn(const std::shared_ptr<FakeFramebuffer>& io,
                                          const FramebufferDevice::Request& request = {}) {
  std::string error;
  auto device = FramebufferDevice::Open("/dev/fake", request, error, io);
  EXPECT_TRUE(device) << error;
  return device;
}

std::string ErrorOn(const std::shared_ptr<FakeFramebuffer>& io) {
  std::string error;
  EXPECT_FALSE(FramebufferDevice::Open("/dev/fake", {}, error, io));
  return error;
}

/// A picture in one of the six formats, every pixel different from its neighbours.
struct Picture {
  Picture(int w, int h, VuPixelFormat f)
      : width(w), height(h), format(f), pitch(RowPitch(w, f)), bytes(SurfaceBytes(w, h, f)) {
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x)
        SetPixel(x, y, static_cast<uint32_t>(x * 0x3A5D71 + y * 0x7B19C7));
  }

  void SetPixel(int x, int y, uint32_t value) {
    const int size = BytesPerPixel(format);
    std::memcpy(bytes.data() + y * pitch + x * size, &value, static_cast<size_t>(size));
  }
  uint32_t Pixel(int x, int y) const {
    uint32_t value = 0;
    const int size = BytesPerPixel(format);
    std::memcpy(&value, bytes.data() + y * pitch + x * size, static_cast<size_t>(size));
    return value;
  }
  void Fill(const VuRect& r, uint32_t value) {
    for (int y = r.y; y < r.y + r.height; ++y)
      for (int x = r.x; x < r.x + r.width; ++x) SetPixel(x, y, value);
  }

  void ShowOn(FramebufferDevice& device) const { ShowOn(device, {0, 0, width, height}); }
  void ShowOn(FramebufferDevice& device, const VuRect& damage) const {
    device.Present(bytes.data(), pitch, format, damage);
  }

  int width, height;
  VuPixelFormat format;
  int pitch;
  std::vector<uint8_t> bytes;
};

// --- Layouts and formats ------------------------------------------------------------------------

/// Bits of the channels of a surface's format, red, green, blue, alpha.
struct SourceFormat {
  const char* name;
  VuPixelFormat format;
  fb_bitfield channels[4];
};

constexpr SourceFormat kFormats[] = {
    {"ARGB8888", VuPixelFormat::ARGB8888, {{16, 8, 0}, {8, 8, 0}, {0, 8, 0}, {24, 8, 0}}},
    {"XRGB8888", VuPixelFormat::XRGB8888, {{16, 8, 0}, {8, 8, 0}, {0, 8, 0}, kNone}},
    {"RGB565", VuPixelFormat::RGB565, {{11, 5, 0}, {5, 6, 0}, {0, 5, 0}, kNone}},
    {"ARGB4444", VuPixelFormat::ARGB4444, {{8, 4, 0}, {4, 4, 0}, {0, 4, 0}, {12, 4, 0}}},
    {"ARGB1555", VuPixelFormat::ARGB1555, {{10, 5, 0}, {5, 5, 0}, {0, 5, 0}, {15, 1, 0}}},
    {"A8", VuPixelFormat::A8, {{0, 8, 0}, {0, 8, 0}, {0, 8, 0}, {0, 8, 0}}},
};

struct Layout {
  const char* name;
  unsigned bits;
  fb_bitfield red, green, blue, alpha;
};

constexpr Layout kLayouts[] = {
    {"XRGB8888", 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}, kNone},
    {"ARGB8888", 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}, {24, 8, 0}},
    {"ABGR8888", 32, {0, 8, 0}, {8, 8, 0}, {16, 8, 0}, {24, 8, 0}},
    {"BGRX8888", 32, {8, 8, 0}, {16, 8, 0}, {24, 8, 0}, kNone},
    {"RGBA8888", 32, {24, 8, 0}, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}},
    {"XRGB2101010", 32, {20, 10, 0}, {10, 10, 0}, {0, 10, 0}, kNone},
    {"RGB666", 32, {12, 6, 0}, {6, 6, 0}, {0, 6, 0}, kNone},
    {"BGR888", 24, {0, 8, 0}, {8, 8, 0}, {16, 8, 0}, kNone},
    {"RGB565", 16, {11, 5, 0}, {5, 6, 0}, {0, 5, 0}, kNone},
    {"BGR565", 16, {0, 5, 0}, {5, 6, 0}, {11, 5, 0}, kNone},
    {"ARGB1555", 16, {10, 5, 0}, {5, 5, 0}, {0, 5, 0}, {15, 1, 0}},
    {"RGBA5551", 16, {11, 5, 0}, {6, 5, 0}, {1, 5, 0}, {0, 1, 0}},
    {"XBGR4444", 16, {0, 4, 0}, {4, 4, 0}, {8, 4, 0}, kNone},
};

/// Channel `from` of `pixel` at the width of `to`, bit patterns repeated where it becomes wider.
uint32_t Moved(uint32_t pixel, const fb_bitfield& from, const fb_bitfield& to) {
  if (to.length == 0) return 0;
  if (from.length == 0) return ((1u << to.length) - 1) << to.offset;
  const uint64_t value = pixel >> from.offset & ((1u << from.length) - 1);
  // Any source is seen with eight bits first, and then with what the device has.
  uint64_t wide = 0;
  for (int i = 0; i < 32; i += static_cast<int>(from.length)) wide = wide << from.length | value;
  const auto repeats = static_cast<unsigned>((32 + from.length - 1) / from.length);
  const uint64_t eight = wide >> (repeats * from.length - 8) & 255;
  return static_cast<uint32_t>((eight << 8 | eight) >> (16 - to.length)) << to.offset;
}

class EveryLayout : public testing::TestWithParam<std::tuple<Layout, SourceFormat>> {};

TEST_P(EveryLayout, ShowsEveryPixel) {
  const auto& [layout, source] = GetParam();
  constexpr int kWidth = 61, kHeight = 5;
  auto io = std::make_shared<FakeFramebuffer>(kWidth, kHeight, layout.bits, layout.red,
                                              layout.green, layout.blue, layout.alpha);
  const auto device = OpenOn(io);
  const Picture picture(kWidth, kHeight, source.format);
  picture.ShowOn(*device);

  const bool carriesAlpha = source.channels[3].length != 0 && layout.alpha.length != 0;
  const fb_bitfield sourceAlpha = carriesAlpha ? source.channels[3] : kNone;
  const auto used = [&layout = layout] {
    uint32_t bits = 0;
    for (const fb_bitfield& f : {layout.red, layout.green, layout.blue, layout.alpha})
      bits |= ((1u << f.length) - 1) << f.offset;
    return bits;
  }();
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) {
      const uint32_t pixel = picture.Pixel(x, y);
      const uint32_t expected = Moved(pixel, source.channels[0], layout.red) |
                                Moved(pixel, source.channels[1], layout.green) |
                                Moved(pixel, source.channels[2], layout.blue) |
                                Moved(pixel, sourceAlpha, layout.alpha);
      const uint32_t shown = io->Pixel(static_cast<unsigned>(x), static_cast<unsigned>(y)) & used;
      ASSERT_EQ(shown, expected) << "at " << x << ", " << y << std::hex << " from " << pixel;
    }
}

INSTANTIATE_TEST_SUITE_P(Device, EveryLayout,
                         testing::Combine(testing::ValuesIn(kLayouts), testing::ValuesIn(kFormats)),
                         [](const auto& test) {
                           return std::string(std::get<0>(test.param).name) + "From" +
                                  std::get<1>(test.param).name;
                         });

TEST(FramebufferDevice, RefusesPixelsOfAnUnknownFormat) {
  auto io = XrgbDisplay(4, 4);
  const auto device = OpenOn(io);
  const std::array<uint8_t, 64> pixels{};
  const std::string log = support::LoggedAt(3, [&] {
    device->Present(pixels.data(), 16, static_cast<VuPixelFormat>(77), {0, 0, 4, 4});
  });
  EXPECT_EQ(log, "<ZIRK.error>: /dev/fake: cannot show pixels of format 77\n");
}

// --- Damage and memory --------------------------------------------------------------------------

TEST(FramebufferDevice, CopiesTheDamageOnly) {
  const struct {
    VuRect damage, changed;
  } cases[] = {
      {{2, 1, 3, 2}, {2, 1, 3, 2}},     {{-5, -5, 8, 7}, {0, 0, 3, 2}},
      {{6, 2, 100, 100}, {6, 2, 2, 2}}, {{0, 0, INT32_MAX, INT32_MAX}, {0, 0, 8, 4}},
      {{8, 0, 2, 2}, {0, 0, 0, 0}},     {{3, 3, 0, 4}, {0, 0, 0, 0}},
      {{3, 3, -1, 1}, {0, 0, 0, 0}},
  };
  for (const auto& c : cases) {
    auto io = XrgbDisplay(8, 4);
    const auto device = OpenOn(io);
    Picture picture(16, 8, VuPixelFormat::XRGB8888);
    picture.Fill({0, 0, 16, 8}, 0xFFFFFFFF);
    picture.ShowOn(*device, c.damage);
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 8; ++x) {
        const VuRect& r = c.changed;
        const bool inside = x >= r.x && x < r.x + r.width && y >= r.y && y < r.y + r.height;
        EXPECT_EQ(io->Pixel(static_cast<unsigned>(x), static_cast<unsigned>(y)),
                  inside ? 0xFFFFFFFFu : 0u)
            << c.damage.x << ": " << x << ", " << y;
      }
  }
}

TEST(FramebufferDevice, LeavesThePaddingOfRowsAlone) {
  auto io = XrgbDisplay(4, 3);
  io->rowPadding = 12;
  io->GiveVirtualHeight(3);
  const auto device = OpenOn(io);
  Picture(4, 3, VuPixelFormat::ARGB8888).ShowOn(*device);
  ASSERT_EQ(io->fixed.line_length, 28u);
  for (size_t row = 0; row < 3; ++row)
    for (size_t i = 16; i < 28; ++i) EXPECT_EQ(io->memory[row * 28 + i], 0xEE);
}

TEST(FramebufferDevice, DrawsWhereTheDisplayLooksIfItHasOnePage) {
  auto io = XrgbDisplay(4, 3);
  io->GiveVirtualHeight(5);
  io->mode.yoffset = 2;
  const auto device = OpenOn(io);
  const Picture picture(4, 3, VuPixelFormat::XRGB8888);
  picture.ShowOn(*device);
  EXPECT_EQ(io->Pixel(3, 1), 0xEEEEEEEEu);
  EXPECT_EQ(io->Pixel(0, 2), picture.Pixel(0, 0));
  EXPECT_EQ(io->Pixel(3, 4), picture.Pixel(3, 2));
}

TEST(FramebufferDevice, ReleasesWhatItTook) {
  auto io = XrgbDisplay(4, 3);
  OpenOn(io).reset();
  EXPECT_EQ(io->opened, io->closed);
  EXPECT_EQ(io->mapped, 0u);
  EXPECT_EQ(io->lastPath, "/dev/fake");
}

TEST(FramebufferDevice, SaysWhyThereIsNone) {
  std::string error;
  EXPECT_FALSE(FramebufferDevice::Open("/nonexistent/fb0", {}, error));
  EXPECT_EQ(error, "/nonexistent/fb0: No such file or directory");
  EXPECT_FALSE(FramebufferDevice::Open("/dev/null", {}, error));
  EXPECT_EQ(error, "/dev/null: is no framebuffer device: Inappropriate ioctl for device");
}

TEST(FramebufferDevice, IsNamedByTheEnvironment) {
  unsetenv("ZIRK_FB_DEVICE");
  EXPECT_EQ(FramebufferDevice::PathOf(0), "/dev/fb0");
  EXPECT_EQ(FramebufferDevice::PathOf(2), "/dev/fb2");
  setenv("ZIRK_FB_DEVICE", "/dev/other", 1);
  EXPECT_EQ(FramebufferDevice::PathOf(0), "/dev/other");
  unsetenv("ZIRK_FB_DEVICE");
}

// --- Modes --------------------------------------------------------------------------------------

TEST(FramebufferDevice, LeavesAPaletteForTrueColourAndComesBack) {
  const struct {
    std::vector<unsigned> accepted;
    unsigned expected;
  } cases[] = {{{8, 16, 32}, 32}, {{8, 16}, 16}};
  for (const auto& c : cases) {
    auto io = PaletteDisplay();
    io->acceptedDepths = c.accepted;
    auto device = OpenOn(io);
    EXPECT_EQ(io->mode.bits_per_pixel, c.expected);
    Picture(8, 4, VuPixelFormat::XRGB8888).ShowOn(*device);
    device.reset();
    EXPECT_EQ(io->mode.bits_per_pixel, 8u);
    EXPECT_EQ(io->mode.red, (fb_bitfield{0, 8, 0}));
  }
}

TEST(FramebufferDevice, FindsModesItCannotDrawTo) {
  auto palette = PaletteDisplay();
  EXPECT_EQ(ErrorOn(palette), "/dev/fake: has no true-colour mode of 32 or 16 bits");
  EXPECT_EQ(palette->opened, palette->closed);

  const auto broken = [](auto change) {
    auto io = XrgbDisplay(4, 4);
    change(*io);
    return ErrorOn(io);
  };
  const std::string none = "/dev/fake: has no true-colour mode of 32 or 16 bits";
  EXPECT_EQ(broken([](auto& io) { io.fixed.type = FB_TYPE_PLANES; }), none);
  EXPECT_EQ(broken([](auto& io) { io.fixed.visual = FB_VISUAL_MONO01; }), none);
  EXPECT_EQ(broken([](auto& io) { io.mode.red = {28, 8, 0}; }), none);
  EXPECT_EQ(broken([](auto& io) { io.mode.green = {8, 8, 1}; }), none);
  EXPECT_EQ(broken([](auto& io) { io.mode.blue = {0, 0, 0}; }), none);
  EXPECT_EQ(broken([](auto& io) { io.fixed.line_length = 15; }), none);
  EXPECT_EQ(broken([](auto& io) { io.fixed.smem_len -= 1; }), none);
  EXPECT_EQ(broken([](auto& io) { io.mode.xres = 0; }), none);
  EXPECT_EQ(broken([](auto& io) { io.mode.yoffset = UINT32_MAX; }), none);
}

TEST(FramebufferDevice, AsksForTheSizeAndTakesWhatIsGranted) {
  const struct {
    const char* name;
    int width, height;
    unsigned maxWidth, widthStep;
    int grantedWidth, grantedHeight;
  } cases[] = {
      {"granted", 20, 10, 100, 1, 20, 10}, {"smaller", 4, 3, 100, 1, 4, 3},
      {"rounded", 21, 10, 100, 8, 16, 10}, {"refused", 20, 10, 8, 1, 8, 6},
      {"own size", 0, 10, 100, 1, 8, 6},   {"absurd", INT32_MAX, 9, UINT32_MAX, 1, 8, 6},
  };
  for (const auto& c : cases) {
    auto io = XrgbDisplay(8, 6);
    io->acceptedDepths = {32};
    io->maxWidth = io->maxHeight = c.maxWidth;
    io->grantedWidthStep = c.widthStep;
    auto device = OpenOn(io, {c.width, c.height, false});
    EXPECT_EQ(device->Width(), c.grantedWidth) << c.name;
    EXPECT_EQ(device->Height(), c.grantedHeight) << c.name;
    const Picture picture(32, 16, VuPixelFormat::XRGB8888);
    picture.ShowOn(*device);
    const int x = c.grantedWidth - 1, y = c.grantedHeight - 1;
    EXPECT_EQ(io->Pixel(static_cast<unsigned>(x), static_cast<unsigned>(y)), picture.Pixel(x, y))
        << c.name;
    device.reset();
    EXPECT_EQ(io->mode.xres, 8u) << c.name;
    EXPECT_EQ(io->mode.yres, 6u) << c.name;
  }
}

// --- Two pages ----------------------------------------------------------------------------------

TEST(FramebufferDevice, PansOnlyInAVirtualScreenThatIsThere) {
  const struct {
    const char* name;
    unsigned virtualHeight, step;
    bool asked, pans;
  } cases[] = {
      {"two pages", 8, 1, true, true},   {"more than two", 11, 2, true, true},
      {"not asked", 8, 1, false, false}, {"too low", 7, 1, true, false},
      {"no step", 8, 0, true, false},    {"odd step", 8, 3, true, false},
  };
  for (const auto& c : cases) {
    auto io = XrgbDisplay(4, 4);
    io->GiveVirtualHeight(c.virtualHeight);
    io->fixed.ypanstep = static_cast<uint16_t>(c.step);
    const auto device = OpenOn(io, {0, 0, c.asked});
    Picture(4, 4, VuPixelFormat::XRGB8888).ShowOn(*device);
    EXPECT_EQ(io->pans, c.pans ? (std::vector<unsigned>{0, 4}) : std::vector<unsigned>{}) << c.name;
  }
}

TEST(FramebufferDevice, DoesNotGrowTheVirtualScreenForPages) {
  auto io = XrgbDisplay(8, 6);
  io->fixed.ypanstep = 1;
  io->acceptedDepths = {32};
  io->maxWidth = io->maxHeight = 100;
  const auto device = OpenOn(io, {8, 3, true});
  EXPECT_EQ(device->Height(), 3);
  EXPECT_TRUE(io->pans.empty());
}

TEST(FramebufferDevice, BringsThePageItShowsUpToDate) {
  const VuRect damages[] = {{0, 0, 2, 2}, {6, 4, 2, 2}, {1, 1, 3, 1}, {1, 1, 3, 1},
                            {3, 3, 0, 0}, {0, 5, 8, 1}, {7, 0, 1, 6}};
  auto io = XrgbDisplay(8, 6);
  io->GiveVirtualHeight(12);
  const auto device = OpenOn(io, {0, 0, true});
  Picture picture(8, 6, VuPixelFormat::XRGB8888);
  picture.ShowOn(*device);
  uint32_t color = 0x111111;
  for (const VuRect& damage : damages) {
    picture.Fill(damage, color += 0x111111);
    picture.ShowOn(*device, damage);
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 8; ++x)
        ASSERT_EQ(io->Pixel(static_cast<unsigned>(x), static_cast<unsigned>(y) + io->mode.yoffset),
                  picture.Pixel(x, y))
            << std::hex << color << " at " << x << ", " << y;
  }
}

TEST(FramebufferDevice, GoesOnWithOnePageWhenPanningFails) {
  auto io = XrgbDisplay(4, 4);
  io->GiveVirtualHeight(8);
  io->pansBeforeFailure = 2;
  const auto device = OpenOn(io, {0, 0, true});
  Picture picture(4, 4, VuPixelFormat::XRGB8888);
  picture.ShowOn(*device);
  ASSERT_EQ(io->mode.yoffset, 4u);
  const std::string log = support::LoggedAt(4, [&] {
    for (const VuRect& damage : {VuRect{1, 1, 2, 2}, VuRect{0, 3, 4, 1}}) {
      picture.Fill(damage, 0x123456);
      picture.ShowOn(*device, damage);
    }
  });
  EXPECT_EQ(log,
            "<ZIRK.warning>: /dev/fake: does not show its second page: drawing to one: "
            "Invalid argument\n");
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 4; ++x)
      EXPECT_EQ(io->Pixel(static_cast<unsigned>(x), static_cast<unsigned>(y) + 4),
                picture.Pixel(x, y));
}

TEST(FramebufferDevice, RestoresThePanOffset) {
  auto io = XrgbDisplay(4, 4);
  io->GiveVirtualHeight(9);
  io->mode.yoffset = 3;
  auto device = OpenOn(io, {0, 0, true});
  ASSERT_EQ(io->mode.yoffset, 0u);
  device.reset();
  EXPECT_EQ(io->mode.yoffset, 3u);
}

// --- Vertical sync ------------------------------------------------------------------------------

TEST(FramebufferDevice, WaitsForVsyncWhereTheDriverHasIt) {
  const struct {
    FakeFramebuffer::Vsync vsync;
    int waits;  ///< One to try it, and one for each of two frames.
  } cases[] = {{FakeFramebuffer::Vsync::Works, 3}, {FakeFramebuffer::Vsync::Missing, 1}};
  for (const auto& c : cases) {
    auto io = XrgbDisplay(4, 4);
    io->vsync = c.vsync;
    const auto device = OpenOn(io);
    const Picture picture(4, 4, VuPixelFormat::XRGB8888);
    picture.ShowOn(*device);
    picture.ShowOn(*device, {0, 0, 0, 0});
    EXPECT_EQ(io->vsyncWaits, c.waits);
  }
}

TEST(FramebufferDevice, StopsWaitingAfterAnError) {
  auto io = XrgbDisplay(4, 4);
  io->vsync = FakeFramebuffer::Vsync::Works;
  const auto device = OpenOn(io);
  io->vsync = FakeFramebuffer::Vsync::Missing;
  const Picture picture(4, 4, VuPixelFormat::XRGB8888);
  for (int i = 0; i < 3; ++i) picture.ShowOn(*device);
  EXPECT_EQ(io->vsyncWaits, 2);
}

TEST(FramebufferDevice, DoesNotHangOnADriverThatNeverReturns) {
  auto io = XrgbDisplay(4, 4);
  io->vsync = FakeFramebuffer::Vsync::Blocks;
  const auto start = std::chrono::steady_clock::now();
  std::unique_ptr<FramebufferDevice> device;
  const std::string log = support::LoggedAt(4, [&] { device = OpenOn(io); });
  Picture(4, 4, VuPixelFormat::XRGB8888).ShowOn(*device);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  EXPECT_EQ(log,
            "<ZIRK.warning>: /dev/fake: the wait for vertical sync does not return: doing without "
            "it\n");
  EXPECT_EQ(io->vsyncWaits, 1);
  device.reset();
  io->Unblock();
  while (io->opened != io->closed) std::this_thread::yield();
}

}  // namespace
}  // namespace ZIRK::backends
