#include "opengles2/glwindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ZIRK::backends {

namespace {

/// Drops all events except those that programs define themselves.
int DropEvent(void*, SDL_Event* event) {
  if (event->type >= SDL_USEREVENT) return 1;
  // The receiver of these events must free their file name.
  if (event->type == SDL_DROPFILE || event->type == SDL_DROPTEXT) Sdl().Free(event->drop.file);
  return 0;
}

/// The box of a picture in a window: as large as possible, and centred.
Box FitInto(int windowWidth, int windowHeight, int width, int height) {
  double scale = std::min(double(windowWidth) / width, double(windowHeight) / height);
  // The size of a window is in points of several pixels each. The pixels that this adds become
  // bars.
  constexpr int kPoint = 4;
  if (scale > 1 && (windowWidth - width < kPoint || windowHeight - height < kPoint)) scale = 1;
  const int w = std::max(1, static_cast<int>(std::lround(width * scale)));
  const int h = std::max(1, static_cast<int>(std::lround(height * scale)));
  const int x = (windowWidth - w) / 2, y = (windowHeight - h) / 2;
  return {x, y, x + w, y + h};
}

}  // namespace

GlWindow::GlWindow(std::shared_ptr<GlDevice> device, int width, int height)
    : device_(std::move(device)), width_(width), height_(height) {}

std::unique_ptr<GlWindow> GlWindow::Open(std::shared_ptr<GlDevice> device, int width, int height,
                                         int display) {
  std::unique_ptr<GlWindow> window(new GlWindow(std::move(device), width, height));
  window->window_.order = ChannelOrder::RedFirst;
  window->window_.window = window->device_->OpenWindow(width, height, display);
  return window->window_.window ? std::move(window) : nullptr;
}

GlWindow::~GlWindow() {
  device_->Batch().Forget(window_);
  if (window_.window) device_->CloseWindow(window_.window);
}

void GlWindow::TakeSize() {
  int width = 0, height = 0;
  Sdl().GetDrawableSize(window_.window, &width, &height);
  if (width == window_.width && height == window_.height) return;
  device_->Batch().WindowChanged();
  window_.width = width;
  window_.height = height;
}

/// Without memory for a texture, the picture is shown unscaled at the window's top-left corner.
void GlWindow::ChooseTarget() {
  if (device_->IsLost()) return;
  TakeSize();
  if (window_.width == width_ && window_.height == height_) {
    picture_ = nullptr;
  } else if (!picture_) {
    picture_ =
        GlTexture::Create(device_, width_, height_,
                          window_.keepsAlpha ? VuPixelFormat::XRGB8888 : VuPixelFormat::ARGB8888);
    if (picture_ && picture_->Target()) device_->Batch().Clear(*picture_->Target(), 0);
  }
}

const GlTarget* GlWindow::Target() {
  if (!std::exchange(hasTarget_, true)) ChooseTarget();
  return picture_ ? picture_->Target() : &window_;
}

void GlWindow::KeepAlpha(bool keep) {
  window_.keepsAlpha = keep;
  picture_ = nullptr;
  hasTarget_ = false;
}

void GlWindow::SetTitle(const char* title) {
  if (!device_->IsLost()) Sdl().SetWindowTitle(window_.window, title);
}

void GlWindow::ShowScaled() {
  TakeSize();
  GlBatch& batch = device_->Batch();
  batch.Clear(window_, 0xFF000000);
  const Box box = FitInto(window_.width, window_.height, width_, height_);
  // Keeps pixels sharp if each becomes a block of the same size.
  const bool isWhole = box.Width() % width_ == 0 && box.Height() % height_ == 0;
  const Texels all = {0, 0, static_cast<float>(width_), static_cast<float>(height_)};
  batch.AddPlain(&window_, GlBlend(), picture_.get(),
                 isWhole ? TexelFilter::Nearest : TexelFilter::Linear, box, all, ~0u);
  batch.Flush();
}

void GlWindow::Present(bool vsync) {
  device_->Batch().Flush();
  if (picture_ && !device_->IsLost()) ShowScaled();
  const GlScope scope(*device_, window_.window);
  if (!scope || !device_->Check("drawing")) return;
  device_->SetSwapInterval(vsync ? 1 : 0);
  Sdl().SwapWindow(window_.window);
  Sdl().PumpEvents();
  // Nothing else handles them, and SDL's queue must not fill up.
  if (device_->HasSdlAlone()) Sdl().FilterEvents(DropEvent, nullptr);
  hasTarget_ = false;
}

}  // namespace ZIRK::backends
