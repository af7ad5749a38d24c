#include "fb/kmsdisplay.h"

#include <drm_fourcc.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "geometry/surfaceformat.h"
#include "helpers/logged.h"

namespace ZIRK::backends {
namespace {

constexpr unsigned kConnector = 30, kEncoder = 20, kCrtc = 10, kConsole = 5;

struct Abilities {
  bool isMaster = true;
  bool hasVblank = true;
  bool takesXrgb = true;
  bool ignoresDamage = false;
  int flipsLeft = 1000;
  int endsLeft = 1000;  ///< Ends of flips that are reported.
};

/// A card with one display, whose pages are in a file. Expects back all framebuffers.
struct FakeCard {
  struct Framebuffer {
    uint32_t fourcc, handle, pitch;
    int width, height;
  };

  Abilities can;
  drmModeModeInfo modes[3] = {};

  // What it was asked for.
  int fd = -1;
  uint32_t pages = 0;
  std::map<uint32_t, Framebuffer> framebuffers;
  uint32_t shown = kConsole;
  drmModeModeInfo mode = {};
  int flips = 0, dirtied = 0;
  void* flipping = nullptr;

  uint32_t Shown(int x, int y) const {
    const Framebuffer& framebuffer = framebuffers.at(shown);
    const size_t bytes = framebuffer.fourcc == DRM_FORMAT_RGB565 ? 2 : 4;
    uint32_t pixel = 0;
    EXPECT_GT(pread(fd, &pixel, bytes,
                    static_cast<off_t>(size_t{framebuffer.handle} << 16) +
                        y * static_cast<off_t>(framebuffer.pitch) + x * static_cast<off_t>(bytes)),
              0);
    return pixel;
  }
};

FakeCard* card = nullptr;

template <typename T>
T* New(T value) {
  return new (std::malloc(sizeof(T))) T(value);
}
uint32_t* List(uint32_t one) {
  return New(one);
}

int Control(int, unsigned long request, void* argument) {
  if (request == DRM_IOCTL_MODE_CREATE_DUMB) {
    auto& create = *static_cast<drm_mode_create_dumb*>(argument);
    create.handle = ++card->pages;
    create.pitch = (create.width * create.bpp / 8 + 63) / 64 * 64;
    create.size = uint64_t{create.pitch} * create.height;
    return ftruncate(card->fd, (create.handle + 1) << 16);
  }
  if (request == DRM_IOCTL_MODE_MAP_DUMB) {
    auto& map = *static_cast<drm_mode_map_dumb*>(argument);
    map.offset = uint64_t{map.handle} << 16;
  }
  return 0;
}

class Kms : public testing::Test {
 protected:
  Kms() {
    card = &fake_;
    const auto mode = [](const char* name, int width, int height, uint32_t type) {
      drmModeModeInfo info = {};
      std::strcpy(info.name, name);
      info.hdisplay = static_cast<uint16_t>(width);
      info.vdisplay = static_cast<uint16_t>(height);
      info.vrefresh = 1000;
      info.type = type;
      return info;
    };
    fake_.modes[0] = mode("40x30", 40, 30, 0);
    fake_.modes[1] = mode("64x16", 64, 16, DRM_MODE_TYPE_PREFERRED);
    fake_.modes[2] = mode("16x64", 16, 64, 0);
    DrmCalls& drm = Drm();
    drm.Open = [](const char*) { return card->fd = memfd_create("card", 0); };
    drm.Ioctl = Control;
    drm.IsMaster = [](int) { return int{card->can.isMaster}; };
    drm.SetMaster = [](int) { return card->can.isMaster ? 0 : -EACCES; };
    drm.DropMaster = [](int) { return 0; };
    drm.GetCap = [](int, uint64_t, uint64_t*) { return 0; };
    drm.GetSequence = [](int, uint32_t, uint64_t*, uint64_t*) {
      return card->can.hasVblank ? 0 : -1;
    };
    drm.GetResources = [](int) {
      drmModeRes resources = {};
      resources.count_crtcs = resources.count_connectors = 1;
      resources.crtcs = List(kCrtc);
      resources.connectors = List(kConnector);
      return New(resources);
    };
    drm.GetConnector = [](int, uint32_t id) {
      drmModeConnector connector = {};
      connector.connector_id = id;
      connector.connection = DRM_MODE_CONNECTED;
      connector.count_encoders = 1;
      connector.encoders = List(kEncoder);
      connector.count_modes = 3;
      connector.modes = static_cast<drmModeModeInfo*>(std::malloc(sizeof card->modes));
      std::memcpy(connector.modes, card->modes, sizeof card->modes);
      return New(connector);
    };
    drm.GetEncoder = [](int, uint32_t id) -> drmModeEncoder* {
      if (id != kEncoder) return nullptr;
      drmModeEncoder encoder = {};
      encoder.possible_crtcs = 1;
      return New(encoder);
    };
    drm.GetCrtc = [](int, uint32_t) {
      drmModeCrtc crtc = {};
      crtc.mode_valid = 1;
      crtc.buffer_id = card->shown;
      return New(crtc);
    };
    drm.SetCrtc = [](int, uint32_t, uint32_t framebuffer, uint32_t, uint32_t, uint32_t*, int,
                     drmModeModeInfo* asked) {
      card->shown = framebuffer;
      card->mode = *asked;
      return 0;
    };
    drm.AddFramebuffer = [](int, uint32_t width, uint32_t height, uint32_t fourcc,
                            const uint32_t* handles, const uint32_t* pitches, const uint32_t*,
                            uint32_t* id, uint32_t) {
      if (fourcc == DRM_FORMAT_XRGB8888 && !card->can.takesXrgb) return errno = EINVAL, -EINVAL;
      *id = 100 + handles[0];
      card->framebuffers[*id] = {fourcc, handles[0], pitches[0], static_cast<int>(width),
                                 static_cast<int>(height)};
      return 0;
    };
    drm.RemoveFramebuffer = [](int, uint32_t id) { return card->framebuffers.erase(id) ? 0 : -1; };
    drm.SendDamage = [](int, uint32_t, drmModeClip*, uint32_t) {
      ++card->dirtied;
      return card->can.ignoresDamage ? -ENOSYS : 0;
    };
    drm.PageFlip = [](int, uint32_t, uint32_t framebuffer, uint32_t, void* data) {
      if (card->can.flipsLeft-- == 0) return errno = EBUSY, -EBUSY;
      EXPECT_NE(framebuffer, card->shown) << "the page that is shown was drawn to";
      ++card->flips;
      card->shown = framebuffer;
      card->flipping = data;
      return 0;
    };
    drm.HandleEvent = [](int fd, drmEventContextPtr context) {
      if (card->can.endsLeft-- > 0) context->page_flip_handler(fd, 0, 0, 0, card->flipping);
      return 0;
    };
  }
  ~Kms() override {
    EXPECT_TRUE(fake_.framebuffers.empty());
    EXPECT_EQ(fake_.shown, kConsole) << "what was shown before";
    Drm() = {Drm().Open};
  }

  std::unique_ptr<KmsDisplay> Open(const DisplayDevice::Request& request) {
    std::string error;
    bool isTaken = false;
    const auto acquired = KmsCard::Acquire("/dev/dri/card0", error, isTaken);
    auto display = KmsDisplay::Open(acquired, *acquired->Connectors().at(0), request, error);
    EXPECT_TRUE(display) << error;
    return display;
  }

  FakeCard fake_;
};

struct Driver {
  const char* name;
  Abilities can{};
  bool doubleBuffer = true;
  int flips = 0;
  int dirtied = 0;
  const char* warning = "";
};

class KmsDrivers : public Kms, public testing::WithParamInterface<Driver> {};

TEST_P(KmsDrivers, ShowEachFrame) {
  const Driver& driver = GetParam();
  fake_.can = driver.can;
  const bool narrow = !fake_.can.takesXrgb;
  const VuPixelFormat format = narrow ? VuPixelFormat::RGB565 : VuPixelFormat::XRGB8888;
  std::vector<uint32_t> pixels(64 * 16);
  const size_t bytes = narrow ? 2 : 4;
  const auto at = [&](int x, int y) {
    return reinterpret_cast<uint8_t*>(pixels.data()) + static_cast<size_t>(y * 64 + x) * bytes;
  };
  std::minstd_rand random(7);
  const auto display = Open({.doubleBuffer = driver.doubleBuffer});
  const std::string log = helpers::LoggedAt(4, [&] {
    for (const Box& damage : {Box{0, 0, 64, 16}, Box{0, 0, 2, 2}, Box{60, 9, 99, 99},
                              Box{3, 3, 9, 5}, Box{3, 3, 9, 5}, Box{}, Box{1, 1, 30, 2}}) {
      const Box changed = Intersection(damage, {0, 0, 64, 16});
      for (int y = changed.y0; y < changed.y1; ++y)
        for (int x = changed.x0; x < changed.x1; ++x)
          for (size_t i = 0; i < bytes; ++i) at(x, y)[i] = static_cast<uint8_t>(random());
      display->Present(at(0, 0), static_cast<int>(64 * bytes), format, damage);
      for (int i = 0; i < 64 * 16; ++i) {
        uint32_t expected = 0;
        std::memcpy(&expected, at(i % 64, i / 64), bytes);
        ASSERT_EQ(fake_.Shown(i % 64, i / 64), expected) << i % 64 << ", " << i / 64;
      }
    }
  });
  EXPECT_EQ(fake_.flips, driver.flips);
  EXPECT_EQ(fake_.dirtied, driver.dirtied);
  EXPECT_TRUE(*driver.warning ? log.find(driver.warning) != std::string::npos : log.empty()) << log;
}

constexpr Driver kDrivers[] = {
    {.name = "two_pages", .flips = 6},
    {.name = "without_vertical_blank", .can = {.hasVblank = false}, .flips = 6},
    {.name = "sixteen_bits", .can = {.takesXrgb = false}, .flips = 6},
    {.name = "one_page", .doubleBuffer = false, .dirtied = 6},
    {.name = "needs_no_damage",
     .can = {.ignoresDamage = true},
     .doubleBuffer = false,
     .dirtied = 1},
    {.name = "refuses_the_third_flip",
     .can = {.flipsLeft = 2},
     .flips = 2,
     .dirtied = 4,
     .warning = "uses one page: Device or resource busy"},
    {.name = "never_ends_the_second_flip",
     .can = {.endsLeft = 1},
     .flips = 2,
     .dirtied = 4,
     .warning = "uses one page: the flip does not complete"},
};
INSTANTIATE_TEST_SUITE_P(Kms, KmsDrivers, testing::ValuesIn(kDrivers),
                         [](const auto& row) { return row.param.name; });

TEST_F(Kms, TakesTheModeOfThePicture) {
  const auto expect = [&](int width, int height, Rotation rotation, const char* mode, int shown) {
    const auto display = Open({.width = width, .height = height, .rotation = rotation});
    EXPECT_STREQ(fake_.mode.name, mode);
    EXPECT_EQ(display->Width(), shown);
  };
  expect(0, 0, Rotation::None, "64x16", 64);
  expect(40, 30, Rotation::None, "40x30", 40);
  expect(41, 30, Rotation::None, "64x16", 64);
  expect(30, 40, Rotation::Quarter, "40x30", 30);
  expect(16, 64, Rotation::ThreeQuarters, "64x16", 16);
  expect(40, 30, Rotation::Half, "40x30", 40);
}

TEST_F(Kms, LeavesADisplayToItsOwner) {
  std::string error;
  bool isTaken = false;
  auto display = Open({});
  const auto same = KmsCard::Acquire("/dev/dri/card0", error, isTaken);
  EXPECT_EQ(KmsDisplay::Open(same, *same->Connectors().at(0), {}, error), nullptr);
  EXPECT_EQ(error, "/dev/dri/card0: cannot show another picture");
  display.reset();
  EXPECT_NE(KmsDisplay::Open(same, *same->Connectors().at(0), {}, error), nullptr) << error;
  fake_.can.isMaster = false;
  EXPECT_EQ(KmsCard::Acquire("/dev/dri/card1", error, isTaken), nullptr);
  EXPECT_TRUE(isTaken);
  EXPECT_EQ(error, "/dev/dri/card1: the display is in use");
}

}  // namespace
}  // namespace ZIRK::backends
