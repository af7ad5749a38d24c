#include "hybrid/hybridgraphics.h"

#include "fb/fbscreen.h"
#include "opengles2/glscreen.h"
#include "surface/drawmemory.h"
#include "surface/ownsurface.h"

namespace ZIRK::backends {

namespace {

/// Reads back screens drawn by OpenGL, so that bitmaps can use them as sources.
class HybridSourceResolver final : public FbSourceResolver {
 public:
  using FbSourceResolver::FbSourceResolver;

  bool CopyToBuffer(VuBitmapImpl& surface, const Box& part,
                    std::optional<PixelBuffer>& copy) override {
    GlCanvas* const canvas = FindCanvas(surface);
    if (!canvas) return RefuseSource();
    if (part.IsEmpty()) return true;
    const VuPixelFormat format = surface.GetInfo().format;
    const int pitch = part.Width() * BytesPerPixel(format);
    const auto rows =
        AllocateToDraw<uint8_t>(static_cast<size_t>(pitch) * static_cast<size_t>(part.Height()));
    if (!rows || !canvas->Read(part, rows.get())) return false;
    copy = PixelBuffer::TryCreate(part.Width(), part.Height(), format);
    if (copy) WritePixels(*copy, copy->Bounds(), rows.get(), static_cast<unsigned>(pitch));
    return copy.has_value();
  }
};

/// When screens are drawn by OpenGL rather than by FB.
enum class GlUse { Always, WhereFbHasNoDisplay, Never };

/// OpenGL by the processor is far slower than FB, and an off-screen picture is not visible.
GlUse UseOf(const GlDevice& device) {
  if (device.IsDriverChosen() || device.WindowsReach() == GlDevice::Reach::WindowSystem)
    return GlUse::Always;
  const bool hasDisplay = device.WindowsReach() == GlDevice::Reach::Display;
  if (hasDisplay && device.HasGpu()) return GlUse::Always;
  return hasDisplay || device.HasGpu() ? GlUse::WhereFbHasNoDisplay : GlUse::Never;
}

/// The OpenGL device, unless FB is the better choice for display `index`. In that case `whyFb` is
/// set to the device's description.
std::shared_ptr<GlDevice> AcquireUseful(int index, std::optional<std::string>& whyFb) {
  auto device = GlDevice::Acquire();
  const GlUse use = device ? UseOf(*device) : GlUse::Always;
  if (use == GlUse::Always) return device;
  whyFb = device->Description();
  // FB cannot open a display while SDL uses it.
  device.reset();
  if (use == GlUse::Never || DisplayDevice::SizeOf(index)) return nullptr;
  whyFb.reset();
  return GlDevice::Acquire();
}

}  // namespace

HybridGraphics::HybridGraphics() : HybridGraphics(MemoryBudget::Create()) {}

HybridGraphics::HybridGraphics(const std::shared_ptr<MemoryBudget>& budget)
    : FbGraphics(budget, std::make_shared<HybridSourceResolver>(budget, kType)) {}

/// Starts a new OpenGL context if the last one was lost.
std::shared_ptr<TextureCache> HybridGraphics::FindOpenGl(int index, std::string& reason) const {
  if (textures_ && !textures_->Device()->IsLost()) return textures_;
  textures_ = nullptr;
  if (!whyFb_) {
    const GlRefusal refusal(reason);
    if (auto device = AcquireUseful(index, whyFb_))
      textures_ = std::make_shared<TextureCache>(std::move(device), SourceResolver());
    else if (!whyFb_ && reason.empty())
      reason = "OpenGL ES 2 does not start";
  }
  // A display is the best that FB can offer.
  if (whyFb_ && !DisplayDevice::SizeOf(index)) reason = *whyFb_ + " is off-screen";
  return textures_;
}

void HybridGraphics::Flush() {
  if (textures_) textures_->Device()->FlushAndDetach();
}

int HybridGraphics::GetMaxTextureSize() const {
  return textures_ ? textures_->Device()->MaxTextureSize() : FbGraphics::GetMaxTextureSize();
}

std::optional<ImageSize> HybridGraphics::DeviceSize(int index) const {
  std::string reason;
  const auto textures = FindOpenGl(index, reason);
  return textures ? textures->Device()->DisplaySize(index) : FbGraphics::DeviceSize(index);
}

std::unique_ptr<VuScreenImpl> HybridGraphics::MakeScreen(Reservation reservation,
                                                         const VuScreenDescription& description) {
  std::string reason;
  if (const auto textures = FindOpenGl(description.index, reason)) {
    const GlRefusal refusal(reason);
    if (auto screen =
            GlScreen::Open(std::move(reservation), description, textures->Device(), textures))
      return screen;
    reservation = Budget()->Reserve(description.width, description.height, description.format);
    if (!reservation) return nullptr;
  }
  return FbScreen::Open(std::move(reservation), description, SourceResolver(), reason);
}

}  // namespace ZIRK::backends
