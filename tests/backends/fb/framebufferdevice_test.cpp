#include "fb/framebufferdevice.h"

#include <gtest/gtest.h>
#include <sys/ioctl.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <future>
#include <random>
#include <thread>
#include <vector>

#include "geometry/surfaceformat.h"
#include "helpers/logged.h"
#include "helpers/rows.h"

namespace ZIRK::backends {
namespace {

struct Layout {
  const char* name;
  unsigned bits;
  fb_bitfield red, green, blue, alpha;
};

constexpr Layout kPalette{"palette", 8, {0, 8, 0}, {0, 8, 0}, {0, 8, 0}, {}};
constexpr Layout kXrgb{"XRGB8888", 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}, {}};

/// A framebuffer device in memory, whose driver can do what the fields say. Expects back all
/// descriptors and mappings.
struct FakeFramebuffer : public FramebufferIo {
  /// Rows beyond the visible ones make a virtual screen.
  FakeFramebuffer(unsigned width, unsigned height, unsigned rows, const Layout& layout) {
    mode.xres = mode.xres_virtual = width;
    mode.yres = height;
    mode.yres_virtual = rows;
    mode.bits_per_pixel = layout.bits;
    mode.red = layout.red;
    mode.green = layout.green;
    mode.blue = layout.blue;
    mode.transp = layout.alpha;
    fixed.ypanstep = 1;
    fixed.smem_start = 0xFD000010;
    GiveModeMemory();
  }
  ~FakeFramebuffer() override { EXPECT_EQ(open, 0); }

  void GiveModeMemory() {
    fixed.visual = mode.bits_per_pixel == 8 ? FB_VISUAL_PSEUDOCOLOR : FB_VISUAL_TRUECOLOR;
    fixed.line_length = mode.xres_virtual * mode.bits_per_pixel / 8;
    fixed.smem_len = std::max(fixed.smem_len, fixed.line_length * mode.yres_virtual);
    memory.resize(kStart + fixed.smem_len, 0xEE);
  }

  /// The pixel at (x, y) of what the display shows, as a number.
  uint32_t Shown(int x, int y) const {
    const size_t bytes = mode.bits_per_pixel / 8;
    const size_t column = mode.xoffset + static_cast<size_t>(x);
    const size_t row = mode.yoffset + static_cast<size_t>(y);
    uint32_t word = 0;
    std::memcpy(&word, &memory[kStart + row * fixed.line_length + column * bytes], bytes);
    return word;
  }

  int Open(const char*) override { return ++open; }
  void Close(int) override { --open; }
  void* Map(int, size_t length) override {
    EXPECT_EQ(length, memory.size());
    return ++open, memory.data();
  }
  void Unmap(void*, size_t) override { --open; }

  bool Control(int, unsigned long request, void* argument) override {
    const auto asked = static_cast<fb_var_screeninfo*>(argument);
    errno = EINVAL;
    switch (request) {
      case FBIOGET_VSCREENINFO:
        return *asked = mode, true;
      case FBIOGET_FSCREENINFO:
        return std::memcpy(argument, &fixed, sizeof fixed);
      case FBIOPUT_VSCREENINFO:
        if (!takesMode(*asked)) return false;
        mode = *asked;
        return GiveModeMemory(), true;
      case FBIOPAN_DISPLAY:
        if (pansLeft == 0) return false;
        return --pansLeft, mode.yoffset = asked->yoffset, true;
      default:
        return ++vsyncWaits, waitForVsync();
    }
  }

  fb_var_screeninfo mode{};
  fb_fix_screeninfo fixed{};
  static constexpr size_t kStart = 16;  ///< Where the device begins in its first page.
  std::vector<uint8_t> memory;
  int pansLeft = 1000;
  /// Takes a new mode, which it may change, or refuses it.
  std::function<bool(fb_var_screeninfo& asked)> takesMode = [](auto&) { return false; };
  std::function<bool()> waitForVsync = [] { return false; };
  std::atomic<int> vsyncWaits{0}, open{0};  ///< `open` counts descriptors and mappings.
};

auto Fake(unsigned width, unsigned height, unsigned rows = 0, const Layout& layout = kXrgb) {
  return std::make_shared<FakeFramebuffer>(width, height, std::max(rows, height), layout);
}

std::unique_ptr<FramebufferDevice> OpenOn(const std::shared_ptr<FakeFramebuffer>& io,
                                          const FramebufferDevice::Request& request = {}) {
  std::string error;
  auto device = FramebufferDevice::Open("/dev/fake", request, error, io);
  EXPECT_TRUE(device) << error;
  return device;
}

/// Random pixels, 64 x 16.
struct Picture {
  explicit Picture(VuPixelFormat f = VuPixelFormat::XRGB8888)
      : format(f), pitch(RowPitch(64, f)), bytes(SurfaceBytes(64, 16, f)) {
    Change({0, 0, 64, 16});
  }

  uint8_t* At(int x, int y) { return bytes.data() + y * pitch + x * pitch / 64; }
  uint32_t Pixel(int x, int y) {
    uint32_t value = 0;
    std::memcpy(&value, At(x, y), static_cast<size_t>(pitch / 64));
    return value;
  }
  /// Puts new pixels into `r`.
  void Change(const VuRect& r) {
    for (int y = r.y; y < r.y + r.height; ++y)
      for (uint8_t* byte = At(r.x, y); byte != At(r.x + r.width, y); ++byte)
        *byte = static_cast<uint8_t>(random());
  }
  void ShowOn(DisplayDevice& device, const Box& damage = {0, 0, 64, 16}) const {
    device.Present(bytes.data(), pitch, format, damage);
  }
  void ExpectOn(const FakeFramebuffer& io) {
    for (int y = 0; y < static_cast<int>(io.mode.yres); ++y)
      for (int x = 0; x < static_cast<int>(io.mode.xres); ++x)
        ASSERT_EQ((io.Shown(x, y) ^ Pixel(x, y)) & 0xFFFFFF, 0u) << "at " << x << ", " << y;
  }

  VuPixelFormat format;
  int pitch;
  std::vector<uint8_t> bytes;
  std::minstd_rand random{7};
};

/// The layouts of surfaces come first, in the order of VuPixelFormat.
constexpr Layout kLayouts[] = {
    {"ARGB8888", 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}, {24, 8, 0}},
    kXrgb,
    {"RGB565", 16, {11, 5, 0}, {5, 6, 0}, {0, 5, 0}, {}},
    {"ARGB4444", 16, {8, 4, 0}, {4, 4, 0}, {0, 4, 0}, {12, 4, 0}},
    {"ARGB1555", 16, {10, 5, 0}, {5, 5, 0}, {0, 5, 0}, {15, 1, 0}},
    {"A8", 8, {0, 8, 0}, {0, 8, 0}, {0, 8, 0}, {0, 8, 0}},
    {"XBGR8888", 32, {0, 8, 0}, {8, 8, 0}, {16, 8, 0}, {}},
    {"ABGR8888", 32, {0, 8, 0}, {8, 8, 0}, {16, 8, 0}, {24, 8, 0}},
    {"RGBX8888", 32, {24, 8, 0}, {16, 8, 0}, {8, 8, 0}, {}},
    {"RGBA8888", 32, {24, 8, 0}, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}},
    {"BGRX8888", 32, {8, 8, 0}, {16, 8, 0}, {24, 8, 0}, {}},
    {"BGRA8888", 32, {8, 8, 0}, {16, 8, 0}, {24, 8, 0}, {0, 8, 0}},
    {"RGB888", 24, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}, {}},
    {"BGR565", 16, {0, 5, 0}, {5, 6, 0}, {11, 5, 0}, {}},
    {"XRGB1555", 16, {10, 5, 0}, {5, 5, 0}, {0, 5, 0}, {}},
    {"XBGR1555", 16, {0, 5, 0}, {5, 5, 0}, {10, 5, 0}, {}},
    {"ABGR1555", 16, {0, 5, 0}, {5, 5, 0}, {10, 5, 0}, {15, 1, 0}},
    {"XRGB4444", 16, {8, 4, 0}, {4, 4, 0}, {0, 4, 0}, {}},
    {"XBGR4444", 16, {0, 4, 0}, {4, 4, 0}, {8, 4, 0}, {}},
    {"ABGR4444", 16, {0, 4, 0}, {4, 4, 0}, {8, 4, 0}, {12, 4, 0}},
    {"XRGB2101010", 32, {20, 10, 0}, {10, 10, 0}, {0, 10, 0}, {}},
    {"BGR888", 24, {0, 8, 0}, {8, 8, 0}, {16, 8, 0}, {}},
    {"RGBA5551", 16, {11, 5, 0}, {6, 5, 0}, {1, 5, 0}, {0, 1, 0}},
};

uint32_t Mask(const fb_bitfield& field) {
  return ((1u << field.length) - 1) << field.offset;
}

/// Channel `from` of `pixel` at the width of `to`. Its bits repeat where it becomes wider.
uint32_t Moved(uint32_t pixel, const fb_bitfield& from, const fb_bitfield& to) {
  if (to.length == 0) return 0;
  if (from.length == 0) return Mask(to);
  // A source is widened to eight bits first, and then brought to the width of the device.
  uint32_t eight = (pixel & Mask(from)) >> from.offset << (8 - from.length);
  for (unsigned have = from.length; have < 8; have *= 2) eight |= eight >> have;
  return (eight << 8 | eight) >> (16 - to.length) << to.offset;
}

TEST(FramebufferDevice, ShowsEveryFormatInEveryLayout) {
  for (const Layout& to : kLayouts)
    for (int format = 0; format < 6; ++format) {
      if (to.bits == 8) continue;
      const Layout& from = kLayouts[format];
      const auto io = Fake(61, 5, 5, to);
      Picture picture(static_cast<VuPixelFormat>(format));
      picture.ShowOn(*OpenOn(io));
      const uint32_t used = Mask(to.red) | Mask(to.green) | Mask(to.blue) | Mask(to.alpha);
      for (int i = 0; i < 61 * 5; ++i) {
        const uint32_t p = picture.Pixel(i % 61, i / 61);
        ASSERT_EQ(io->Shown(i % 61, i / 61) & used,
                  Moved(p, from.red, to.red) | Moved(p, from.green, to.green) |
                      Moved(p, from.blue, to.blue) | Moved(p, from.alpha, to.alpha))
            << i << ": " << std::hex << p << " from " << from.name << " to " << to.name;
      }
    }
}

struct Damage {
  const char* name;
  Box given;
  Box changed;
};
using FramebufferDamage = helpers::Rows<Damage>;

ROWS(FramebufferDamage, {.name = "inside", .given = {2, 1, 5, 3}, .changed = {2, 1, 5, 3}},
     {.name = "over the top", .given = {-5, -5, 3, 2}, .changed = {0, 0, 3, 2}},
     {.name = "over the end", .given = {6, 2, INT32_MAX, 11}, .changed = {6, 2, 8, 4}},
     {.name = "beside", .given = {8, 0, 10, 2}, .changed = {}},
     {.name = "inverted", .given = {3, 3, 2, 4}, .changed = {}});

TEST_P(FramebufferDamage, IsWrittenWhereTheDisplayLooks) {
  const auto io = Fake(8, 4, 7);
  io->mode.xres_virtual = 11;
  io->mode.xoffset = 1;
  io->mode.yoffset = 2;
  io->GiveModeMemory();
  Picture picture;
  picture.ShowOn(*OpenOn(io), GetParam().given);
  for (int y = -2; y < 5; ++y)
    for (int x = -1; x < 10; ++x) {
      const uint32_t inside = GetParam().changed.Contains(x, y) ? picture.Pixel(x, y) : 0;
      ASSERT_EQ(io->Shown(x, y), Box({0, 0, 8, 4}).Contains(x, y) ? inside : 0xEEEEEEEE)
          << x << ", " << y;
    }
}

TEST(FramebufferDevice, SaysWhyThereIsNone) {
  setenv("ZIRK_FB_DEVICE", "/dev/null", 1);
  std::string error;
  EXPECT_FALSE(DisplayDevice::Open(2, {}, error));
  EXPECT_EQ(error, "/dev/null: is not a framebuffer device: Inappropriate ioctl for device");
  unsetenv("ZIRK_FB_DEVICE");
  EXPECT_EQ(FramebufferDevice::PathOf(2), "/dev/fb2");
  EXPECT_FALSE(FramebufferDevice::SizeOf("", Fake(4, 0)));
}

struct Spoiler {
  const char* name;
  void (*spoil)(FakeFramebuffer& io);
};
using FramebufferMode = helpers::Rows<Spoiler>;

ROWS(FramebufferMode, {"planes", [](auto& io) { io.fixed.type = FB_TYPE_PLANES; }},
     {"mono", [](auto& io) { io.fixed.visual = FB_VISUAL_MONO01; }},
     {"palette", [](auto& io) { io.mode.bits_per_pixel = 8; }},
     {"channel outside", [](auto& io) { io.mode.red.offset = 28; }},
     {"bits reversed", [](auto& io) { io.mode.green.msb_right = 1; }},
     {"no blue", [](auto& io) { io.mode.blue.length = 0; }},
     {"short lines", [](auto& io) { io.fixed.line_length = 15; }},
     {"little memory", [](auto& io) { io.fixed.smem_len -= 1; }},
     {"no width", [](auto& io) { io.mode.xres = 0; }},
     {"column offset", [](auto& io) { io.mode.xoffset = UINT32_MAX; }},
     {"row offset", [](auto& io) { io.mode.yoffset = UINT32_MAX; }});

TEST_P(FramebufferMode, IsRefused) {
  const auto io = Fake(4, 4);
  GetParam().spoil(*io);
  std::string error;
  EXPECT_FALSE(FramebufferDevice::Open("/dev/fake", {}, error, io));
  EXPECT_EQ(error, "/dev/fake: has no true-colour mode of 32 or 16 bits");
}

struct Wish {
  const char* name;
  std::pair<int, int> asked, granted;
  Layout layout = kXrgb;
  unsigned bits = 32;  ///< The most that the driver takes.
};
using FramebufferSize = helpers::Rows<Wish>;

// The driver has widths of multiples of four, up to 60; the display 8 x 6.
ROWS(FramebufferSize, {.name = "larger", .asked = {20, 10}, .granted = {20, 10}},
     {.name = "smaller", .asked = {4, 3}, .granted = {4, 3}},
     {.name = "rounded", .asked = {21, 10}, .granted = {20, 10}},
     {.name = "too wide", .asked = {99, 10}, .granted = {8, 6}},
     {.name = "absurd", .asked = {INT32_MAX, 9}, .granted = {8, 6}},
     {.name = "palette", .asked = {0, 0}, .granted = {8, 6}, .layout = kPalette},
     {.name = "16 bits", .asked = {20, 10}, .granted = {20, 10}, .layout = kPalette, .bits = 16});

TEST_P(FramebufferSize, IsAskedForAndComesBack) {
  const Wish& wish = GetParam();
  const auto io = Fake(8, 6, 6, wish.layout);
  const fb_var_screeninfo found = io->mode;
  io->takesMode = [&](auto& asked) {
    return asked.xres &= ~3u, asked.xres < 64 && asked.bits_per_pixel <= wish.bits;
  };
  auto device = OpenOn(io, {wish.asked.first, wish.asked.second, true});
  EXPECT_EQ(io->mode.bits_per_pixel, wish.bits);
  EXPECT_EQ(std::pair(device->Width(), device->Height()), wish.granted);
  Picture picture(wish.bits == 32 ? VuPixelFormat::XRGB8888 : VuPixelFormat::RGB565);
  picture.ShowOn(*device);
  picture.ExpectOn(*io);
  EXPECT_EQ(io->mode.yoffset, 0u) << "a second page in what only the request has added";
  device.reset();
  EXPECT_EQ(std::memcmp(&io->mode, &found, sizeof found), 0);
}

TEST(FramebufferDevice, GoesBackFromASizeThatItCannotDrawTo) {
  const auto io = Fake(8, 6, 12);
  io->mode.yoffset = 3;
  io->takesMode = [](auto& asked) {
    EXPECT_EQ(asked.yoffset, asked.xres == 8 ? 3u : 0u);
    asked.red.length = asked.xres == 8 ? 8 : 0;
    return true;
  };
  EXPECT_EQ(OpenOn(io, {20, 10})->Width(), 8);
}

struct Pages {
  const char* name;
  unsigned rows = 12;
  uint16_t step = 1;
  bool asked = true;
  unsigned shown = 0;  ///< The first row shown after a frame.
};
using FramebufferPages = helpers::Rows<Pages>;

ROWS(FramebufferPages, {.name = "two", .shown = 6},
     {.name = "more, in steps", .rows = 17, .step = 2, .shown = 6},
     {.name = "not asked for", .asked = false}, {.name = "too low", .rows = 11},
     {.name = "fixed", .step = 0}, {.name = "between steps", .step = 4});

TEST_P(FramebufferPages, AreFlippedWhereTheVirtualScreenHasThem) {
  const auto io = Fake(8, 6, GetParam().rows);
  io->fixed.ypanstep = GetParam().step;
  const auto device = OpenOn(io, {0, 0, GetParam().asked});
  Picture().ShowOn(*device, {0, 0, 1, 1});
  EXPECT_EQ(io->mode.yoffset, GetParam().shown);
  EXPECT_EQ(io->Shown(7, 5), 0u);
}

TEST(FramebufferDevice, KeepsTheVirtualScreenInANewMode) {
  const auto io = Fake(8, 6, 12);
  io->takesMode = [](auto&) { return true; };
  const auto device = OpenOn(io, {8, 5, true});
  Picture().ShowOn(*device);
  EXPECT_EQ(io->mode.yoffset, 5u);
}

TEST(FramebufferDevice, BringsThePageItShowsUpToDateAndRestoresTheOffset) {
  const VuRect damages[] = {{0, 0, 2, 2}, {6, 4, 2, 2}, {1, 1, 3, 1}, {1, 1, 3, 1},
                            {3, 3, 0, 0}, {0, 5, 8, 1}, {7, 0, 1, 6}};
  for (const int pans : {1000, 5, 2}) {  // Then panning fails, and one page is left.
    const auto io = Fake(8, 6, 13, kLayouts[0]);
    io->mode.yoffset = 3;
    io->pansLeft = pans;
    auto device = OpenOn(io, {0, 0, true});
    Picture picture;
    picture.ShowOn(*device);
    const std::string log = helpers::LoggedAt(4, [&] {
      for (const VuRect& damage : damages) {
        picture.Change(damage);
        picture.ShowOn(*device, ToBox(damage));
        picture.ExpectOn(*io);
      }
    });
    EXPECT_EQ(log, pans == 1000 ? ""
                                : "<ZIRK.warning>: /dev/fake: cannot show its second page, "
                                  "uses one page: Invalid argument\n");
    io->pansLeft = 1;
    device.reset();
    EXPECT_EQ(io->mode.yoffset, 3u);
  }
}

TEST(FramebufferDevice, WaitsForVsyncUntilTheFirstError) {
  const auto io = Fake(4, 4);
  io->waitForVsync = [] { return true; };
  const auto device = OpenOn(io);
  Picture().ShowOn(*device);
  Picture().ShowOn(*device, {0, 0, 0, 0});
  EXPECT_EQ(io->vsyncWaits, 3) << "one to try it, one for each frame";
  io->waitForVsync = [] {
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_TRUE(sigismember(&blocked, SIGALRM));
    errno = EINTR;
    return false;
  };
  Picture().ShowOn(*device);
  io->waitForVsync = [] { return false; };
  for (int i = 0; i < 3; ++i) Picture().ShowOn(*device);
  EXPECT_EQ(io->vsyncWaits, 5);
}

TEST(FramebufferDevice, DoesNotHangOnADriverThatNeverReturns) {
  const auto io = Fake(4, 4);
  std::promise<void> vsync;
  // A driver that takes seconds counts as one that never returns.
  io->waitForVsync = [returns = vsync.get_future().share()] {
    return returns.wait_for(std::chrono::seconds(3)), true;
  };
  std::unique_ptr<FramebufferDevice> device;
  EXPECT_EQ(helpers::LoggedAt(4, [&] { device = OpenOn(io); }),
            "<ZIRK.warning>: /dev/fake: the wait for vertical sync does not return: continuing "
            "without it\n");
  Picture().ShowOn(*device);
  EXPECT_EQ(io->vsyncWaits, 1);
  device.reset();
  vsync.set_value();
  while (io->open > 0) std::this_thread::yield();
}

}  // namespace
}  // namespace ZIRK::backends
