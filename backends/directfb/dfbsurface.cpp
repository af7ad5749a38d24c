#include "directfb/dfbsurface.h"

#include <zirk/impl/log.h>

#include "directfb/start.h"

namespace ZIRK::backends {

namespace {

constexpr struct {
  VuPixelFormat ours;
  DFBSurfacePixelFormat theirs;
} kFormats[] = {{VuPixelFormat::ARGB8888, DSPF_ARGB},     {VuPixelFormat::XRGB8888, DSPF_RGB32},
                {VuPixelFormat::RGB565, DSPF_RGB16},      {VuPixelFormat::ARGB4444, DSPF_ARGB4444},
                {VuPixelFormat::ARGB1555, DSPF_ARGB1555}, {VuPixelFormat::A8, DSPF_A8}};

}  // namespace

DFBSurfacePixelFormat ToDirectFb(VuPixelFormat format) {
  for (const auto& row : kFormats)
    if (row.ours == format) return row.theirs;
  return DSPF_UNKNOWN;
}

std::optional<VuPixelFormat> FromDirectFb(DFBSurfacePixelFormat format) {
  for (const auto& row : kFormats)
    if (row.theirs == format) return row.ours;
  return std::nullopt;
}

void ReleaseSurface::operator()(IDirectFBSurface* surface) const {
  const std::lock_guard turn(DirectFbTurn());
  if (!HasDirectFbEnded()) surface->Release(surface);
}

DirectFbSurfacePtr CreateDirectFbSurface(IDirectFB& directFb, int width, int height,
                                         VuPixelFormat format) {
  DFBSurfaceDescription description = {};
  description.flags = static_cast<DFBSurfaceDescriptionFlags>(DSDESC_CAPS | DSDESC_WIDTH |
                                                              DSDESC_HEIGHT | DSDESC_PIXELFORMAT);
  description.caps = DSCAPS_PREMULTIPLIED;
  description.width = width;
  description.height = height;
  description.pixelformat = ToDirectFb(format);
  IDirectFBSurface* surface = nullptr;
  const std::lock_guard turn(DirectFbTurn());
  const DFBResult result = directFb.CreateSurface(&directFb, &description, &surface);
  return DirectFbSurfacePtr(IsGood(result, "create a surface") ? surface : nullptr);
}

bool IsGood(DFBResult result, const char* what) {
  if (result == DFB_OK) return true;
  ZIRK_LOG_ERROR("DirectFB cannot %s: %s", what, DirectFBErrorString(result));
  return false;
}

}  // namespace ZIRK::backends
