#include "opengles2/glscreen.h"

#include <utility>

#include "geometry/pixelformat.h"
#include "opengles2/glcompositor.h"

namespace ZIRK::backends {

namespace {

/// Drops all events but those that programs define themselves.
int DropEvent(void*, SDL_Event* event) {
  if (event->type >= SDL_USEREVENT) return 1;
  // The receiver of these events owns their file name.
  if (event->type == SDL_DROPFILE || event->type == SDL_DROPTEXT) Sdl().Free(event->drop.file);
  return 0;
}

}  // namespace

std::unique_ptr<GlWindow> GlWindow::Open(std::shared_ptr<GlDevice> device, int width, int height,
                                         int display) {
  std::unique_ptr<GlWindow> window(new GlWindow(std::move(device)));
  window->target_.width = width;
  window->target_.height = height;
  window->target_.order = ChannelOrder::RedFirst;
  window->target_.window = window->device_->OpenWindow(width, height, display);
  if (!window->target_.window) return nullptr;
  window->FindBottom();
  return window;
}

GlWindow::~GlWindow() {
  device_->Batch().Forget(target_);
  if (target_.window) device_->CloseWindow(target_.window);
}

/// Places the picture at the top-left corner of a window that is larger or smaller than it.
void GlWindow::FindBottom() {
  int width = 0, height = 0;
  Sdl().GetDrawableSize(target_.window, &width, &height);
  const int bottom = height - target_.height;
  if (bottom == target_.bottom) return;
  device_->Batch().Flush();
  device_->Batch().WindowChanged();
  target_.bottom = bottom;
}

void GlWindow::Present(bool vsync) {
  device_->Batch().Flush();
  const GlScope scope(*device_, target_.window);
  if (!scope || !device_->Check("drawing")) return;
  device_->SetSwapInterval(vsync ? 1 : 0);
  Sdl().SwapWindow(target_.window);
  Sdl().PumpEvents();
  // Nobody else would handle them, and SDL's queue must not fill up.
  if (device_->HasSdlAlone()) Sdl().FilterEvents(DropEvent, nullptr);
  FindBottom();
}

GlScreen::GlScreen(std::unique_ptr<MemoryBudget::Reservation> reservation,
                   const VuScreenDescription& description, std::shared_ptr<GlDevice> device,
                   std::shared_ptr<TextureSourceResolver> resolver)
    : Surface(std::move(reservation), description.width, description.height, description.format,
              device, std::move(resolver)),
      Presenter(description.buffers < 2),
      index_(description.index),
      layers_(GlLayers::Of(device)) {}

std::unique_ptr<GlScreen> GlScreen::Open(std::unique_ptr<MemoryBudget::Reservation> reservation,
                                         const VuScreenDescription& description,
                                         std::shared_ptr<GlDevice> device,
                                         std::shared_ptr<TextureSourceResolver> resolver) {
  std::unique_ptr<GlScreen> screen(
      new GlScreen(std::move(reservation), description, std::move(device), std::move(resolver)));
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

/// Moves between a window and the layers, with the picture.
bool GlScreen::Move(bool toLayers) {
  const auto frame = Drawing().Snapshot(Drawing().Bounds());
  if (!frame || !(toLayers ? BecomeLayer() : BecomeWindow())) return false;
  // Copying leaves alpha alone where the format has none.
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
  const bool fits = window_ && window_->Target().width == State().width &&
                    window_->Target().height == State().height;
  if (!fits) {
    window_.reset();
    window_ = GlWindow::Open(Drawing().SharedDevice(), State().width, State().height, index_);
  }
  if (!window_) return false;
  window_->KeepAlpha(!PixelLayoutOf(State().format).HasAlpha());
  Drawing().DrawOn(&window_->Target());
  return true;
}

void GlScreen::Present() {
  const GlCompositor::Stack stack = GlCompositor::Current();
  if (!stack.composing) layers_->StopComposing();
  const bool isLayer = Drawing().Texture() != nullptr;
  const bool becomesLayer = stack.composing || !ownsWindow_;
  if (isLayer != becomesLayer && !Move(becomesLayer)) return;
  if (stack.composing)
    layers_->Swap(*this, stack, !IsSingleBuffered());
  else if (!becomesLayer)
    window_->Present(!IsSingleBuffered());
}

}  // namespace ZIRK::backends
