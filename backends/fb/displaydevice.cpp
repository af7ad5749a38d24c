#include "fb/displaydevice.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <zirk/impl/log.h>

#include <cstdlib>
#include <utility>
#include <vector>

#include "fb/framebufferdevice.h"
#ifdef ZIRK_HAVE_KMS
#include "fb/kmsdisplay.h"
#endif

namespace ZIRK::backends {

namespace {

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

/// The rotation that `ZIRK_FB_ROTATE` requests; nullopt if its value is unknown.
std::optional<Rotation> RotationAsked() {
  const std::string degrees = Environment("ZIRK_FB_ROTATE");
  if (degrees.empty() || degrees == "0") return Rotation::None;
  if (degrees == "90") return Rotation::Quarter;
  if (degrees == "180") return Rotation::Half;
  if (degrees == "270") return Rotation::ThreeQuarters;
  return std::nullopt;
}

#ifdef ZIRK_HAVE_KMS

/// A display of a card; its card is null if there is none.
struct Plugged {
  std::shared_ptr<KmsCard> card;
  DrmConnector connector;
};

enum class Purpose { Show, Measure };

/// The kernel's number for graphics cards.
constexpr unsigned kCardMajor = 226;

bool IsCard(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && S_ISCHR(status.st_mode) &&
         major(status.st_rdev) == kCardMajor;
}

/// The cards to search for displays.
std::vector<std::string> Cards(const std::string& named) {
  if (!named.empty()) return {named};
  std::vector<std::string> paths;
  for (int number = 0; number < DRM_MAX_MINOR; ++number) {
    const std::string path = DRM_DIR_NAME "/card" + std::to_string(number);
    if (IsCard(path)) paths.push_back(path);
  }
  return paths;
}

/// Display `index` of all cards, or of the card `named`. Sets `error` if another program uses a
/// card, or if the named card does not have the display.
Plugged FindPlugged(int index, const std::string& named, Purpose purpose, std::string& error) {
  int number = 0;
  for (const std::string& path : Cards(named)) {
    std::string why;
    bool isTaken = false;
    const auto card = KmsCard::Acquire(path, why, isTaken);
    if (isTaken || !named.empty()) error = why;
    if (!card) continue;
    // Finding what is plugged in takes a while.
    if (purpose == Purpose::Measure) card->Yield();
    Plugged found{card, nullptr};
    for (DrmConnector& connector : card->Connectors()) {
      ZIRK_LOG_DEBUG("display %d: %s", number,
                     KmsDisplay::DescriptionOf(*card, *connector).c_str());
      if (number++ == index) found.connector = std::move(connector);
    }
    if (found.connector) {
      error.clear();
      return found;
    }
  }
  if (!named.empty() && error.empty()) error = named + ": no such display is connected";
  return {};
}

#endif

}  // namespace

std::unique_ptr<DisplayDevice> DisplayDevice::Open(int index, Request request, std::string& error) {
  const std::optional<Rotation> rotation = RotationAsked();
  if (!rotation) ZIRK_LOG_WARNING("ZIRK_FB_ROTATE must be 0, 90, 180 or 270");
  request.rotation = rotation.value_or(Rotation::None);
  const std::string named = Environment("ZIRK_FB_DEVICE");
#ifdef ZIRK_HAVE_KMS
  if (named.empty() || IsCard(named)) {
    const Plugged display = FindPlugged(index, named, Purpose::Show, error);
    if (display.card) return KmsDisplay::Open(display.card, *display.connector, request, error);
    if (!error.empty()) return nullptr;
  }
#endif
  return FramebufferDevice::Open(named.empty() ? FramebufferDevice::PathOf(index) : named, request,
                                 error);
}

std::optional<ImageSize> DisplayDevice::SizeOf(int index) {
  const std::string named = Environment("ZIRK_FB_DEVICE");
  std::optional<ImageSize> size;
  std::string error;
#ifdef ZIRK_HAVE_KMS
  if (named.empty() || IsCard(named)) {
    const Plugged display = FindPlugged(index, named, Purpose::Measure, error);
    if (display.card) size = KmsDisplay::SizeOf(*display.connector);
  }
#endif
  if (!size && error.empty())
    size = FramebufferDevice::SizeOf(named.empty() ? FramebufferDevice::PathOf(index) : named);
  if (size && IsSideways(RotationAsked().value_or(Rotation::None)))
    std::swap(size->width, size->height);
  return size;
}

}  // namespace ZIRK::backends
