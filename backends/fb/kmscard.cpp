#include "fb/kmscard.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace ZIRK::backends {

namespace {

using Resources = std::unique_ptr<drmModeRes, DrmFree<drmModeFreeResources>>;
using Encoder = std::unique_ptr<drmModeEncoder, DrmFree<drmModeFreeEncoder>>;

int OpenCard(const char* path) {
  return open(path, O_RDWR | O_CLOEXEC);
}

}  // namespace

DrmCalls& Drm() {
  static DrmCalls calls = {OpenCard};
  return calls;
}

std::shared_ptr<KmsCard> KmsCard::Acquire(const std::string& path, std::string& error,
                                          bool& isTaken) {
  static std::mutex mutex;
  static std::map<std::string, std::weak_ptr<KmsCard>> cards;
  const std::lock_guard<std::mutex> lock(mutex);
  isTaken = false;
  auto card = cards[path].lock();
  if (!card) {
    const int descriptor = Drm().Open(path.c_str());
    if (descriptor < 0) {
      error = path + ": " + std::strerror(errno);
      return nullptr;
    }
    card.reset(new KmsCard(path, descriptor));
    if (!Resources(Drm().GetResources(descriptor))) {
      error = path + ": has no displays";
      return nullptr;
    }
  }
  // Opening a card makes its first user the master.
  if (Drm().IsMaster(card->descriptor_) || Drm().SetMaster(card->descriptor_) == 0) {
    cards[path] = card;
    return card;
  }
  error = path + ": the display is in use";
  isTaken = true;
  return nullptr;
}

KmsCard::KmsCard(std::string path, int descriptor)
    : path_(std::move(path)), descriptor_(descriptor) {}

KmsCard::~KmsCard() {
  close(descriptor_);
}

void KmsCard::Yield() {
  const std::lock_guard<std::mutex> lock(mutex_);
  const bool shows = std::any_of(crtcs_.begin(), crtcs_.end(),
                                 [](const auto& entry) { return entry.second.isTaken; });
  if (!shows) Drm().DropMaster(descriptor_);
}

std::vector<DrmConnector> KmsCard::Connectors() const {
  std::vector<DrmConnector> plugged;
  const Resources resources(Drm().GetResources(descriptor_));
  for (int i = 0; resources && i < resources->count_connectors; ++i) {
    DrmConnector connector(Drm().GetConnector(descriptor_, resources->connectors[i]));
    if (connector && connector->connection == DRM_MODE_CONNECTED && connector->count_modes > 0)
      plugged.push_back(std::move(connector));
  }
  return plugged;
}

/// The CRTC that already drives the connector comes first.
std::vector<uint32_t> KmsCard::CrtcsFor(const drmModeConnector& connector) const {
  std::vector<uint32_t> crtcs;
  const Resources resources(Drm().GetResources(descriptor_));
  if (!resources) return crtcs;
  if (const Encoder current{Drm().GetEncoder(descriptor_, connector.encoder_id)})
    crtcs.push_back(current->crtc_id);
  for (int i = 0; i < connector.count_encoders; ++i) {
    const Encoder encoder(Drm().GetEncoder(descriptor_, connector.encoders[i]));
    for (int crtc = 0; encoder && crtc < resources->count_crtcs; ++crtc)
      if (encoder->possible_crtcs & 1u << crtc) crtcs.push_back(resources->crtcs[crtc]);
  }
  return crtcs;
}

uint32_t KmsCard::TakeCrtc(const drmModeConnector& connector) {
  const std::vector<uint32_t> usable = CrtcsFor(connector);
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto free = std::find_if(usable.begin(), usable.end(), [this](uint32_t crtc) {
    return crtc != 0 && !crtcs_[crtc].isTaken;
  });
  if (free == usable.end()) return 0;
  crtcs_[*free].isTaken = true;
  return *free;
}

void KmsCard::ReturnCrtc(uint32_t crtc) {
  const std::lock_guard<std::mutex> lock(mutex_);
  crtcs_[crtc].isTaken = false;
}

bool KmsCard::Flip(uint32_t crtc, uint32_t framebuffer) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Crtc& state = crtcs_[crtc];
  state.isFlipping =
      Drm().PageFlip(descriptor_, crtc, framebuffer, DRM_MODE_PAGE_FLIP_EVENT, &state) == 0;
  return state.isFlipping;
}

bool KmsCard::WaitForFlip(uint32_t crtc, std::chrono::milliseconds timeout) {
  using Clock = std::chrono::steady_clock;
  const std::lock_guard<std::mutex> lock(mutex_);
  Crtc& state = crtcs_[crtc];
  drmEventContext context = {};
  context.version = 2;
  context.page_flip_handler = [](int, unsigned, unsigned, unsigned, void* flipped) {
    static_cast<Crtc*>(flipped)->isFlipping = false;
  };
  const auto deadline = Clock::now() + timeout;
  while (state.isFlipping) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd events = {descriptor_, POLLIN, 0};
    // A signal ends poll() early.
    const bool any = left.count() > 0 && poll(&events, 1, static_cast<int>(left.count())) > 0;
    if (any && Drm().HandleEvent(descriptor_, &context) == 0) continue;
    if (left.count() > 0 && errno == EINTR) continue;
    state.isFlipping = false;
    return false;
  }
  return true;
}

}  // namespace ZIRK::backends
