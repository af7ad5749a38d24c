#include "opengles2/glscreen.h"

#include <utility>

namespace ZIRK::backends {

GlScreen::GlScreen(std::unique_ptr<SurfaceLedger::Entry> entry,
                   const VuScreenDescription& description, std::shared_ptr<GlDevice> device,
                   std::shared_ptr<TextureSources> sources)
    : GlSurface(std::move(entry), description.width, description.height, description.format, device,
                std::move(sources)),
      Presenter(description.buffers < 2),
      index_(description.index),
      layers_(GlLayers::Of(device)) {}

std::unique_ptr<GlScreen> GlScreen::Open(std::unique_ptr<SurfaceLedger::Entry> entry,
                                         const VuScreenDescription& description,
                                         std::shared_ptr<GlDevice> device,
                                         std::shared_ptr<TextureSources> sources) {
  std::unique_ptr<GlScreen> screen(
      new GlScreen(std::move(entry), description, std::move(device), std::move(sources)));
  const bool composing = GlCompositor::Current().composing;
  screen->ownsWindow_ = screen->index_ == 0 || !composing;
  if (!(composing ? screen->BecomeLayer() : screen->BecomeWindow())) return nullptr;
  if (!screen->Canvas().Clear(VuColor{0})) return nullptr;
  screen->layers_->Add(*screen);
  return screen;
}

GlScreen::~GlScreen() {
  layers_->Remove(*this);
}

/// Between a window and the layers, with what has been drawn until now.
bool GlScreen::Move(bool toLayers) {
  const auto frame = Canvas().Snapshot(All());
  if (!frame || !(toLayers ? BecomeLayer() : BecomeWindow())) return false;
  // Copying leaves alpha alone where the format has none.
  if (!Canvas().Clear(VuColor{0})) return false;
  return Canvas().Copy(All(), *frame, 0, 0);
}

bool GlScreen::BecomeLayer() {
  auto texture =
      GlTexture::Create(Canvas().SharedDevice(), state_.width, state_.height, state_.format);
  if (!texture) return false;
  Canvas().DrawOn(std::move(texture));
  if (index_ == 0 && window_) layers_->SetDisplay(std::move(window_));
  window_.reset();
  return true;
}

bool GlScreen::BecomeWindow() {
  if (!window_ && index_ == 0) window_ = layers_->TakeDisplay();
  const bool fits = window_ && window_->Target().width == state_.width &&
                    window_->Target().height == state_.height;
  if (!fits) {
    window_.reset();
    window_ = GlWindow::Open(Canvas().SharedDevice(), state_.width, state_.height, index_);
  }
  if (!window_) return false;
  window_->KeepAlpha(state_.format == VuPixelFormat::XRGB8888 ||
                     state_.format == VuPixelFormat::RGB565);
  Canvas().DrawOn(&window_->Target());
  return true;
}

void GlScreen::Present() {
  const GlCompositor::Stack stack = GlCompositor::Current();
  if (!stack.composing) layers_->StopComposing();
  const bool isLayer = Canvas().Texture() != nullptr;
  const bool becomesLayer = stack.composing || !ownsWindow_;
  if (isLayer != becomesLayer && !Move(becomesLayer)) return;
  if (stack.composing)
    layers_->Swap(*this, stack, !IsSingleBuffered());
  else if (!becomesLayer)
    window_->Present(!IsSingleBuffered());
}

}  // namespace ZIRK::backends
