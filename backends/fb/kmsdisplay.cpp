#include "fb/kmsdisplay.h"

#include <drm_fourcc.h>
#include <sys/mman.h>
#include <zirk/impl/log.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <span>
#include <thread>
#include <utility>

namespace ZIRK::backends {

namespace {

/// Two frames of a display at 10 Hz, which is slower than any in use.
constexpr std::chrono::milliseconds kFlipTimeout{200};

std::span<const drmModeModeInfo> ModesOf(const drmModeConnector& connector) {
  return {connector.modes, static_cast<size_t>(connector.count_modes)};
}

const drmModeModeInfo& PreferredMode(const drmModeConnector& connector) {
  for (const drmModeModeInfo& mode : ModesOf(connector))
    if (mode.type & DRM_MODE_TYPE_PREFERRED) return mode;
  return connector.modes[0];
}

/// Of several modes of one size, drivers list the best first.
const drmModeModeInfo& ModeFor(const drmModeConnector& connector, int width, int height) {
  for (const drmModeModeInfo& mode : ModesOf(connector))
    if (mode.hdisplay == width && mode.vdisplay == height) return mode;
  return PreferredMode(connector);
}

unsigned PreferredBits(const KmsCard& card) {
  uint64_t depth = 0;
  Drm().GetCap(card.Descriptor(), DRM_CAP_DUMB_PREFERRED_DEPTH, &depth);
  return depth == 16 ? 16 : 32;
}

std::string Describe(const drmModeModeInfo& mode, unsigned bits, const KmsCard& card) {
  return std::to_string(mode.hdisplay) + " x " + std::to_string(mode.vdisplay) + ", " +
         std::to_string(mode.vrefresh) + " Hz, " + std::to_string(bits) + " bits, " + card.Path();
}

}  // namespace

std::string KmsDisplay::DescriptionOf(const KmsCard& card, const drmModeConnector& connector) {
  return Describe(PreferredMode(connector), PreferredBits(card), card);
}

ImageSize KmsDisplay::SizeOf(const drmModeConnector& connector) {
  const drmModeModeInfo& mode = PreferredMode(connector);
  return {mode.hdisplay, mode.vdisplay};
}

std::unique_ptr<KmsDisplay> KmsDisplay::Open(std::shared_ptr<KmsCard> card,
                                             const drmModeConnector& connector,
                                             const Request& request, std::string& error) {
  std::unique_ptr<KmsDisplay> display(new KmsDisplay(std::move(card), connector, request));
  display->crtc_ = display->card_->TakeCrtc(connector);
  return display->Start(request, error) ? std::move(display) : nullptr;
}

KmsDisplay::KmsDisplay(std::shared_ptr<KmsCard> card, const drmModeConnector& connector,
                       const Request& request)
    : card_(std::move(card)),
      connector_(connector.connector_id),
      mode_(IsSideways(request.rotation) ? ModeFor(connector, request.height, request.width)
                                         : ModeFor(connector, request.width, request.height)),
      isPaced_(request.doubleBuffer) {}

KmsDisplay::~KmsDisplay() {
  WaitForFlip();
  Restore();
  for (Page& page : pages_) DeletePage(page);
  card_->ReturnCrtc(crtc_);
}

bool KmsDisplay::Start(const Request& request, std::string& error) {
  constexpr Format kXrgb = {DRM_FORMAT_XRGB8888, PIXMAN_x8r8g8b8, 32};
  constexpr Format kRgb565 = {DRM_FORMAT_RGB565, PIXMAN_r5g6b5, 16};
  if (crtc_ == 0) {
    error = card_->Path() + ": cannot show another picture";
    return false;
  }
  const int card = card_->Descriptor();
  found_.reset(Drm().GetCrtc(card, crtc_));
  // 16 bits halve the bytes to copy. They suffice if the picture has no more.
  const bool narrow = PreferredBits(*card_) == 16 || request.format == VuPixelFormat::RGB565;
  if (!StartIn(narrow ? kRgb565 : kXrgb, request) && !StartIn(narrow ? kXrgb : kRgb565, request)) {
    error = card_->Path() + ": cannot show a page: " + std::strerror(errno);
    return false;
  }
  uint64_t frame = 0, time = 0;
  hasVblank_ = Drm().GetSequence(card, crtc_, &frame, &time) == 0;
  return true;
}

/// Returns false, with the reason in errno and all resources released, if the driver refuses the
/// format.
bool KmsDisplay::StartIn(const Format& format, const Request& request) {
  const bool made = MakePage(pages_[0], format);
  set_ = made && Drm().SetCrtc(card_->Descriptor(), crtc_, pages_[0].framebuffer, 0, 0, &connector_,
                               1, &mode_) == 0;
  if (!set_) {
    const int reason = errno;
    DeletePage(pages_[0]);
    errno = reason;
    return false;
  }
  bits_ = format.bits;
  copier_.emplace(LayoutOf(format.pixman), mode_.hdisplay, mode_.vdisplay, request.rotation);
  twoPages_ = request.doubleBuffer && MakePage(pages_[1], format);
  return true;
}

void KmsDisplay::Restore() {
  if (!set_ || !found_ || !found_->mode_valid || found_->buffer_id == 0) return;
  // The buffer's owner may have ended; then the kernel shows the console when the card is closed.
  Drm().SetCrtc(card_->Descriptor(), crtc_, found_->buffer_id, found_->x, found_->y, &connector_, 1,
                &found_->mode);
}

std::string KmsDisplay::Description() const {
  return Describe(mode_, bits_, *card_);
}

// --- Pages --------------------------------------------------------------------------------------

/// A black page. The driver's memory is cleared when it is made.
bool KmsDisplay::MakePage(Page& page, const Format& format) {
  const int card = card_->Descriptor();
  drm_mode_create_dumb create = {};
  create.width = mode_.hdisplay;
  create.height = mode_.vdisplay;
  create.bpp = format.bits;
  if (Drm().Ioctl(card, DRM_IOCTL_MODE_CREATE_DUMB, &create) != 0) return false;
  page.handle = create.handle;
  page.pitch = create.pitch;
  page.size = static_cast<size_t>(create.size);
  const uint32_t handles[4] = {page.handle}, pitches[4] = {page.pitch}, offsets[4] = {};
  drm_mode_map_dumb map = {};
  map.handle = page.handle;
  if (Drm().AddFramebuffer(card, mode_.hdisplay, mode_.vdisplay, format.fourcc, handles, pitches,
                           offsets, &page.framebuffer, 0) == 0 &&
      Drm().Ioctl(card, DRM_IOCTL_MODE_MAP_DUMB, &map) == 0) {
    void* const memory = mmap(nullptr, page.size, PROT_READ | PROT_WRITE, MAP_SHARED, card,
                              static_cast<off_t>(map.offset));
    if (memory != MAP_FAILED) page.pixels = static_cast<uint8_t*>(memory);
  }
  if (page.pixels) return true;
  const int reason = errno;
  DeletePage(page);
  errno = reason;
  return false;
}

void KmsDisplay::DeletePage(Page& page) {
  if (page.pixels) munmap(page.pixels, page.size);
  if (page.framebuffer) Drm().RemoveFramebuffer(card_->Descriptor(), page.framebuffer);
  drm_mode_destroy_dumb destroy = {page.handle};
  if (page.handle) Drm().Ioctl(card_->Descriptor(), DRM_IOCTL_MODE_DESTROY_DUMB, &destroy);
  page = {};
}

// --- Frames -------------------------------------------------------------------------------------

void KmsDisplay::Present(const uint8_t* pixels, int pitch, VuPixelFormat format,
                         const Box& damage) {
  const Box box = Intersection(damage, {0, 0, Width(), Height()});
  if (!box.IsEmpty() && !copier_->SetSource(pixels, pitch, format, box)) {
    ZIRK_LOG_ERROR("%s: cannot show pixels of format %d", card_->Path().c_str(),
                   static_cast<int>(format));
    return;
  }
  // Until the last flip is done, the other page is still shown.
  WaitForFlip();
  if (!box.IsEmpty() && !(twoPages_ && ShowOther(box))) {
    copier_->Copy(box, pages_[shown_].pixels, pages_[shown_].pitch);
    SendDamage(copier_->OnDisplay(box));
  }
  if (isPaced_ && !flipping_) Pace();
}

/// Updates the hidden page and shows it. Returns false if the driver refuses.
bool KmsDisplay::ShowOther(const Box& damage) {
  const unsigned other = 1 - shown_;
  copier_->CopyToHidden(damage, pages_[other].pixels, pages_[other].pitch);
  flipping_ = card_->Flip(crtc_, pages_[other].framebuffer);
  if (!flipping_) {
    DoWithoutPages(std::strerror(errno));
    return false;
  }
  shown_ = other;
  // A driver without vertical blanks flips at once.
  if (!hasVblank_) WaitForFlip();
  return true;
}

void KmsDisplay::WaitForFlip() {
  if (std::exchange(flipping_, false) && !card_->WaitForFlip(crtc_, kFlipTimeout))
    DoWithoutPages("the flip does not complete");
}

/// From now on draws to the visible page, which lacks only the changes of this frame.
void KmsDisplay::DoWithoutPages(const char* why) {
  ZIRK_LOG_WARNING("%s: cannot show its second page, uses one page: %s", card_->Path().c_str(),
                   why);
  twoPages_ = false;
  copier_->ForgetHidden();
}

/// Reports the damage to drivers whose hardware does not read the memory by itself.
void KmsDisplay::SendDamage(const Box& damage) {
  if (!needsDamage_) return;
  drmModeClip clip = {static_cast<uint16_t>(damage.x0), static_cast<uint16_t>(damage.y0),
                      static_cast<uint16_t>(damage.x1), static_cast<uint16_t>(damage.y1)};
  needsDamage_ = Drm().SendDamage(card_->Descriptor(), pages_[shown_].framebuffer, &clip, 1) == 0;
}

/// Sleeps until the display would show the next frame.
void KmsDisplay::Pace() {
  const auto frame = std::chrono::microseconds(1'000'000 / std::max(mode_.vrefresh, 1u));
  std::this_thread::sleep_until(nextFrame_);
  nextFrame_ = std::max(nextFrame_, Clock::now()) + frame;
}

}  // namespace ZIRK::backends
