#include "hybrid/hybridgraphics.h"

#include "fb/fbscreen.h"
#include "opengles2/glscreen.h"
#include "surface/drawmemory.h"
#include "surface/ownsurface.h"

namespace ZIRK::backends {

namespace {

/// Reads screens drawn by OpenGL back, so that they are sources of bitmaps, too.
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

bool FbReaches(int index) {
  return FramebufferDevice::SizeOf(FramebufferDevice::PathOf(index)).has_value();
}

/// Whether a screen shows more by OpenGL than by FB. What draws by the processor is far slower
/// than FB, and is worth it only where FB cannot reach the display.
bool ShowsMore(const GlDevice& device, int index) {
  if (device.IsDriverChosen()) return true;
  switch (device.WindowsReach()) {
    case GlDevice::Reach::WindowSystem:
      return true;
    case GlDevice::Reach::Display:
      return device.HasGpu() || !FbReaches(index);
    case GlDevice::Reach::Nothing:
      return device.HasGpu() && !FbReaches(index);
  }
  return true;
}

}  // namespace

HybridGraphics::HybridGraphics() : HybridGraphics(MemoryBudget::Create()) {}

HybridGraphics::HybridGraphics(const std::shared_ptr<MemoryBudget>& budget)
    : FbGraphics(budget, std::make_shared<HybridSourceResolver>(budget, kType)) {}

/// After a loss it starts anew.
std::shared_ptr<TextureCache> HybridGraphics::FindOpenGl(int index, std::string& reason) const {
  if (textures_ && !textures_->Device()->IsLost()) return textures_;
  textures_ = nullptr;
  if (!whyFb_) {
    const GlRefusal refusal(reason);
    auto device = GlDevice::Acquire();
    if (device && ShowsMore(*device, index))
      textures_ = std::make_shared<TextureCache>(std::move(device), SourceResolver());
    else if (device)
      whyFb_ = device->Description();
    else if (reason.empty())
      reason = "OpenGL ES 2 does not start";
  }
  // A display is the best that FB can offer.
  if (whyFb_ && !FbReaches(index)) reason = *whyFb_ + " is off-screen";
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
