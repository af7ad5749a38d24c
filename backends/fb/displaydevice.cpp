#include "fb/displaydevice.h"

#include <zirk/impl/log.h>

#include <cstdlib>
#include <utility>

#include "fb/framebufferdevice.h"

namespace ZIRK::backends {

namespace {

std::string Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

/// By `ZIRK_FB_ROTATE`; nullopt if its value has no meaning.
std::optional<Rotation> RotationAsked() {
  const std::string degrees = Environment("ZIRK_FB_ROTATE");
  if (degrees.empty() || degrees == "0") return Rotation::None;
  if (degrees == "90") return Rotation::Quarter;
  if (degrees == "180") return Rotation::Half;
  if (degrees == "270") return Rotation::ThreeQuarters;
  return std::nullopt;
}

}  // namespace

std::unique_ptr<DisplayDevice> DisplayDevice::Open(int index, Request request, std::string& error) {
  const std::optional<Rotation> rotation = RotationAsked();
  if (!rotation) ZIRK_LOG_WARNING("ZIRK_FB_ROTATE has to be 0, 90, 180 or 270");
  request.rotation = rotation.value_or(Rotation::None);
  const std::string named = Environment("ZIRK_FB_DEVICE");
  return FramebufferDevice::Open(named.empty() ? FramebufferDevice::PathOf(index) : named, request,
                                 error);
}

std::optional<ImageSize> DisplayDevice::SizeOf(int index) {
  const std::string named = Environment("ZIRK_FB_DEVICE");
  std::optional<ImageSize> size;
  std::string error;
  if (!size && error.empty())
    size = FramebufferDevice::SizeOf(named.empty() ? FramebufferDevice::PathOf(index) : named);
  if (size && IsSideways(RotationAsked().value_or(Rotation::None))) std::swap(size->width, size->height);
  return size;
}

}  // namespace ZIRK::backends
