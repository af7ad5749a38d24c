#include "directfb/directfbscreen.h"

#include <utility>

namespace ZIRK::backends {

namespace {

// No display is smaller; a system without a display reports 8 x 8.
constexpr int kLeastSide = 64;

constexpr int kMostLayers = 32;

unsigned inUse = 0;  // a bit for each layer; guarded by DirectFbMutex()

}  // namespace

std::optional<ImageSize> DirectFbLayer::SizeOf(IDirectFB& directFb, int index) {
  const std::lock_guard lock(DirectFbMutex());
  IDirectFBDisplayLayer* layer = nullptr;
  const auto id = static_cast<DFBDisplayLayerID>(index);
  if (directFb.GetDisplayLayer(&directFb, id, &layer) != DFB_OK) return std::nullopt;
  DFBDisplayLayerConfig own = {};
  const DFBResult result = layer->GetConfiguration(layer, &own);
  layer->Release(layer);
  if (result != DFB_OK || own.width < kLeastSide || own.height < kLeastSide) return std::nullopt;
  return ImageSize{own.width, own.height};
}

std::unique_ptr<DirectFbLayer> DirectFbLayer::Open(IDirectFB& directFb,
                                                   const VuScreenDescription& description,
                                                   Screen& screen, std::string& error) {
  std::unique_ptr<DirectFbLayer> opened;
  error = "display layer " + std::to_string(description.index) + ": ";
  const std::lock_guard lock(DirectFbMutex());
  const unsigned bit = description.index < kMostLayers ? 1u << description.index : 0;
  if (inUse & bit) {
    error += "another screen has it";
    return nullptr;
  }
  IDirectFBDisplayLayer* layer = nullptr;
  DFBResult result = directFb.GetDisplayLayer(&directFb, description.index, &layer);
  if (result == DFB_OK) {
    opened.reset(new DirectFbLayer(layer, bit));
    inUse |= bit;
    result = layer->SetCooperativeLevel(layer, DLSCL_EXCLUSIVE);
  }
  if (result == DFB_OK) result = opened->Configure(description);
  if (result == DFB_OK) result = opened->TakeSurface(screen);
  if (result == DFB_OK) return opened;
  error += DirectFBErrorString(result);
  return nullptr;
}

DirectFbLayer::~DirectFbLayer() {
  const std::lock_guard lock(DirectFbMutex());
  if (HasDirectFbEnded()) return;
  layer_->SetCooperativeLevel(layer_, DLSCL_SHARED);
  layer_->Release(layer_);
  inUse &= ~bit_;
}

/// Tries the requested mode first, then the layer's own format, its own size, and both.
DFBResult DirectFbLayer::Configure(const VuScreenDescription& description) {
  DFBDisplayLayerConfig own = {};
  DFBResult result = layer_->GetConfiguration(layer_, &own);
  if (result != DFB_OK) return result;
  DFBDisplayLayerConfig asked = own;
  asked.flags = static_cast<DFBDisplayLayerConfigFlags>(
      DLCONF_WIDTH | DLCONF_HEIGHT | DLCONF_PIXELFORMAT | DLCONF_BUFFERMODE | DLCONF_SURFACE_CAPS);
  asked.surface_caps = DSCAPS_PREMULTIPLIED;
  for (const bool ownSize : {false, true})
    for (const bool ownFormat : {false, true})
      for (const auto mode : {DLBM_BACKVIDEO, DLBM_BACKSYSTEM, DLBM_FRONTONLY}) {
        if (description.buffers < 2 && mode != DLBM_FRONTONLY) continue;
        asked.width = ownSize ? own.width : description.width;
        asked.height = ownSize ? own.height : description.height;
        asked.pixelformat = ownFormat ? own.pixelformat : ToDirectFb(description.format);
        asked.buffermode = mode;
        result = layer_->SetConfiguration(layer_, &asked);
        if (result == DFB_OK) return result;
      }
  return result;
}

DFBResult DirectFbLayer::TakeSurface(Screen& screen) {
  IDirectFBSurface* surface = nullptr;
  const DFBResult result = layer_->GetSurface(layer_, &surface);
  if (result != DFB_OK) return result;
  DFBSurfacePixelFormat format = DSPF_UNKNOWN;
  DFBSurfaceCapabilities caps = DSCAPS_NONE;
  surface->GetSize(surface, &screen.width, &screen.height);
  surface->GetPixelFormat(surface, &format);
  surface->GetCapabilities(surface, &caps);
  const std::optional<VuPixelFormat> ours = FromDirectFb(format);
  if (!ours) {
    surface->Release(surface);
    return DFB_UNSUPPORTED;
  }
  screen.surface.reset(surface);
  screen.format = *ours;
  screen.twoBuffers = (caps & DSCAPS_FLIPPING) != 0;
  return DFB_OK;
}

DirectFbScreen::DirectFbScreen(std::unique_ptr<MemoryBudget::Reservation> reservation,
                               std::unique_ptr<DirectFbLayer> layer, DirectFbLayer::Screen screen,
                               std::shared_ptr<GlyphAtlasAllocator> atlases)
    : ScreenLayer{std::move(layer)},
      Surface(std::move(reservation), screen.width, screen.height, screen.format,
              std::move(screen.surface), std::move(atlases),
              screen.twoBuffers ? DirectFbRenderer::Buffers::Two : DirectFbRenderer::Buffers::One),
      Presenter(!screen.twoBuffers) {}

bool DirectFbScreen::Begin() {
  if (!Drawing().Begin()) return false;
  // This also clears the visible buffer.
  Show();
  return true;
}

void DirectFbScreen::Present() {
  if (layer_) Drawing().Flip();
}

}  // namespace ZIRK::backends
