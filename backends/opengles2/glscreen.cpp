#include "opengles2/glscreen.h"

#include <utility>

#include "geometry/pixelformat.h"
#include "opengles2/glcompositor.h"

namespace ZIRK::backends {

GlScreen::GlScreen(std::unique_ptr<MemoryBudget::Reservation> reservation,
                   const VuScreenDescription& description, const std::shared_ptr<GlDevice>& device,
                   std::shared_ptr<TextureSourceResolver> resolver)
    : Surface(std::move(reservation), description.width, description.height, description.format,
              device, std::move(resolver)),
      Presenter(description.buffers < 2),
      index_(description.index),
      layers_(GlLayers::Of(device)) {}

std::unique_ptr<GlScreen> GlScreen::Open(std::unique_ptr<MemoryBudget::Reservation> reservation,
                                         const VuScreenDescription& description,
                                         const std::shared_ptr<GlDevice>& device,
                                         std::shared_ptr<TextureSourceResolver> resolver) {
  std::unique_ptr<GlScreen> screen(
      new GlScreen(std::move(reservation), description, device, std::move(resolver)));
  const bool composing = GlCompositor::Current().composing;
  screen->ownsWindow_ = screen->index_ == 0 || !composing;
  if (!(composing ? screen->BecomeLayer() : screen->BecomeWindow())) return nullptr;
  if (!screen->Drawing().Clear(VuColor{0})) return nullptr;
  screen->layers_->Add(*screen);
  return screen;
}

GlScreen::~GlScreen() {
  layers_->Remove(*this);
}

/// Moves the screen between a window and the layers, with its picture.
bool GlScreen::Move(bool toLayers) {
  const auto frame = Drawing().Snapshot(Drawing().Bounds());
  if (!frame || !(toLayers ? BecomeLayer() : BecomeWindow())) return false;
  // Copying does not write alpha if the format has none.
  if (!Drawing().Clear(VuColor{0})) return false;
  return Drawing().CopyFrom(*frame, 0, 0, Drawing().Bounds());
}

bool GlScreen::BecomeLayer() {
  auto texture =
      GlTexture::Create(Drawing().SharedDevice(), State().width, State().height, State().format);
  if (!texture) return false;
  Drawing().DrawOn(std::move(texture));
  if (index_ == 0 && window_) layers_->SetDisplay(std::move(window_));
  window_.reset();
  return true;
}

bool GlScreen::BecomeWindow() {
  if (!window_ && index_ == 0) window_ = layers_->TakeDisplay();
  const bool fits =
      window_ && window_->Width() == State().width && window_->Height() == State().height;
  if (!fits) {
    window_.reset();
    window_ = GlWindow::Open(Drawing().SharedDevice(), State().width, State().height, index_);
  }
  if (!window_) return false;
  window_->KeepAlpha(!PixelLayoutOf(State().format).HasAlpha());
  Drawing().DrawOn(window_.get());
  return true;
}

void GlScreen::Present() {
  const GlCompositor::Stack stack = GlCompositor::Current();
  if (!stack.composing) layers_->StopComposing();
  const bool isLayer = Drawing().Texture() != nullptr;
  const bool becomesLayer = stack.composing || !ownsWindow_;
  if (isLayer != becomesLayer && !Move(becomesLayer)) return;
  if (stack.composing) return layers_->Swap(*this, stack, !IsSingleBuffered());
  if (becomesLayer) return;
  window_->Present(!IsSingleBuffered());
  // The window's target may be another one now.
  Drawing().DrawOn(window_.get());
}

}  // namespace ZIRK::backends
