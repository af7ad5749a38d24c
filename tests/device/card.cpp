// card show   shows red and blue by FB on RGB565 for three seconds, prints how many frames that is
//             in a second, and waits for a line
// card read   prints what another program sees of /dev/dri/card0: the number of the frame, bits per
//             pixel, and the pixels in the middle of both halves

#include <fcntl.h>
#include <sys/mman.h>
#include <xf86drm.h>
#include <xf86drmMode.h>
#include <zirk/zirk.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

namespace {

using namespace ZIRK;

int Show() {
  using Clock = std::chrono::steady_clock;
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create("FB", false));
  const std::unique_ptr<VuBitmap> screen(
      graphics->CreateScreen(640, 480, true, 0, false, VuPixelFormat::RGB565));
  int frames = 0;
  for (const auto end = Clock::now() + std::chrono::seconds(3); Clock::now() < end; ++frames) {
    screen->DrawRect({0, 0, 320, 480}, 0xFFFF0000);
    screen->DrawRect({320, 0, 320, 480}, 0xFF0000FF);
    screen->SwapBuffers();
  }
  std::printf("%d frames a second\n", (frames + 1) / 3);
  std::fflush(stdout);
  return std::getchar() == EOF;
}

/// The kernel lets a privileged program map the pages of others. Nothing is freed.
int Read() {
  const int card = open("/dev/dri/card0", O_RDWR);
  drmDropMaster(card);
  const drmModeRes* const resources = drmModeGetResources(card);
  if (!resources) return 1;
  const drmModeCrtc* const crtc = drmModeGetCrtc(card, resources->crtcs[0]);
  uint64_t frame = 0, time = 0;
  if (!crtc || drmCrtcGetSequence(card, crtc->crtc_id, &frame, &time) != 0) return 1;
  const drmModeFB* const page = drmModeGetFB(card, crtc->buffer_id);
  drm_mode_map_dumb map{};
  if (page) map.handle = page->handle;
  if (drmIoctl(card, DRM_IOCTL_MODE_MAP_DUMB, &map) != 0) return 1;
  void* const memory = mmap(nullptr, size_t{page->pitch} * page->height, PROT_READ, MAP_SHARED,
                            card, static_cast<off_t>(map.offset));
  if (memory == MAP_FAILED) return 1;
  uint16_t row[640];
  std::memcpy(row, static_cast<const char*>(memory) + size_t{page->pitch} * 240, sizeof row);
  std::printf("frame %llu, %u bits, %04x %04x\n", static_cast<unsigned long long>(frame), page->bpp,
              row[160], row[480]);
  return 0;
}

}  // namespace

int main(int, char** argv) {
  return argv[1] && std::string(argv[1]) == "show" ? Show() : Read();
}
