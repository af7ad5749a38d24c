#include "opengles2/glcompositor.h"

#include <zirk/impl/log.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

namespace ZIRK::backends {

namespace {

// Guards `active` and every compositor. Neither has a destructor that would run at exit.
std::mutex mutex;
GlCompositor* active = nullptr;

/// Whether a rectangle is valid: it may be all zeros, which means everything, but not half empty.
bool IsSane(const VuRect& r) {
  return (r.width > 0 && r.height > 0) || (r.width == 0 && r.height == 0);
}

/// Describes what is wrong with a configuration; null if nothing is.
const char* FaultOf(const LayerDescription* layers, int count) {
  if (count < 0 || (count > 0 && !layers)) return "there are no such layers";
  std::array<bool, GlCompositor::kLayers> seen{};
  for (const LayerDescription* layer = layers; layer != layers + count; ++layer) {
    if (layer->layer < 0 || layer->layer >= GlCompositor::kLayers) return "a layer is unknown";
    bool& there = seen[static_cast<size_t>(layer->layer)];
    if (there) return "a layer occurs twice";
    there = true;
    if (!IsSane(layer->source) || !IsSane(layer->destination))
      return "a rectangle is inverted or half empty";
  }
  return nullptr;
}

RectD ToRectD(const VuRect& r, const VuRect& all) {
  const VuRect& used = r.width > 0 && r.height > 0 ? r : all;
  return {double(used.x), double(used.y), double(used.width), double(used.height)};
}

}  // namespace

GlCompositor::GlCompositor() : layers_(kLayers) {
  for (int i = 0; i < kLayers; ++i)
    layers_[static_cast<size_t>(i)].layer = layers_[static_cast<size_t>(i)].order = i;
  const std::lock_guard<std::mutex> lock(mutex);
  active = this;
}

GlCompositor::~GlCompositor() {
  const std::lock_guard<std::mutex> lock(mutex);
  // The application may have enabled another one already.
  if (active == this) active = nullptr;
}

void GlCompositor::SetConfiguration(const LayerDescription* layers, int count) {
  if (const char* const fault = FaultOf(layers, count)) {
    ZIRK_LOG_WARNING("the layers stay as they are: %s", fault);
    return;
  }
  const std::lock_guard<std::mutex> lock(mutex);
  layers_.assign(layers, layers + count);
}

void GlCompositor::GetConfiguration(LayerDescription* layers, int& count) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (layers) std::copy(layers_.begin(), layers_.end(), layers);
  count = static_cast<int>(layers_.size());
}

void GlCompositor::EnableLayer(signed char layer, bool enable) {
  const std::lock_guard<std::mutex> lock(mutex);
  const auto at = std::find_if(layers_.begin(), layers_.end(),
                               [=](const LayerDescription& l) { return l.layer == layer; });
  if (at == layers_.end()) {
    ZIRK_LOG_WARNING("layer %d is not in the configuration", layer);
    return;
  }
  at->enabled = enable;
}

GlCompositor::Stack GlCompositor::Current() {
  const std::lock_guard<std::mutex> lock(mutex);
  Stack stack;
  if (!active) return stack;
  stack.composing = true;
  for (const LayerDescription& layer : active->layers_)
    if (layer.enabled) stack.layers.push_back(layer);
  std::stable_sort(stack.layers.begin(), stack.layers.end(),
                   [](const auto& a, const auto& b) { return a.order < b.order; });
  return stack;
}

std::shared_ptr<GlLayers> GlLayers::Of(const std::shared_ptr<GlDevice>& device) {
  auto layers = device->Layers().lock();
  if (!layers) device->Layers() = layers = std::make_shared<GlLayers>(device);
  return layers;
}

GlLayers::GlLayers(std::shared_ptr<GlDevice> device)
    : device_(std::move(device)), canvas_(device_, state_) {}

void GlLayers::Add(GlScreen& screen) {
  screens_.push_back({&screen, screen.Frame(), false});
}

void GlLayers::Remove(const GlScreen& screen) {
  screens_.erase(std::remove_if(screens_.begin(), screens_.end(),
                                [&](const Layer& layer) { return layer.screen == &screen; }),
                 screens_.end());
}

/// The screen of that index; the newest if there are several.
GlLayers::Layer* GlLayers::Find(int index) {
  const auto at = std::find_if(screens_.rbegin(), screens_.rend(),
                               [=](const Layer& l) { return l.screen->Index() == index; });
  return at == screens_.rend() ? nullptr : &*at;
}

void GlLayers::SetDisplay(std::unique_ptr<GlWindow> window) {
  canvas_.DrawOn(nullptr);
  display_ = std::move(window);
}

std::unique_ptr<GlWindow> GlLayers::TakeDisplay() {
  canvas_.DrawOn(nullptr);
  return std::move(display_);
}

void GlLayers::StopComposing() {
  if (!Find(0)) SetDisplay(nullptr);
}

void GlLayers::Swap(GlScreen& screen, const GlCompositor::Stack& stack, bool vsync) {
  device_->Batch().Flush();
  bool again = false;
  for (Layer& layer : screens_)
    if (layer.screen == &screen) again = std::exchange(layer.swapped, true);
  if (!again && IsUnfinished(stack)) return;
  if (!OpenDisplay()) return;
  Compose(stack);
  ++frames_;
  for (Layer& layer : screens_) {
    layer.shown = layer.screen->Frame();
    layer.swapped = false;
  }
  display_->Present(vsync);
}

/// Whether a layer of `stack` has drawing that was not swapped yet.
bool GlLayers::IsUnfinished(const GlCompositor::Stack& stack) {
  return std::any_of(stack.layers.begin(), stack.layers.end(), [this](const auto& description) {
    const Layer* const layer = Find(description.layer);
    const unsigned frame = layer ? layer->screen->Frame() : 0;
    // A screen that is still a window has frame 0.
    return frame != 0 && frame != layer->shown && !layer->swapped;
  });
}

/// Opens the display if there is none, or if the screens ask for another size.
bool GlLayers::OpenDisplay() {
  Layer* const first = Find(0);
  // This makes the screen's window the display.
  if (first && !first->screen->EnterLayers()) return false;
  VuRect size{};
  for (const Layer& layer : screens_) {
    const VuRect bounds = layer.screen->GetBounds();
    size.width = std::max(size.width, bounds.width);
    size.height = std::max(size.height, bounds.height);
  }
  if (first) size = first->screen->GetBounds();
  if (!display_ || display_->Width() != size.width || display_->Height() != size.height) {
    SetDisplay(nullptr);
    display_ = GlWindow::Open(device_, size.width, size.height, 0);
    if (!display_) return false;
  }
  state_.width = size.width;
  state_.height = size.height;
  state_.clip = size;
  canvas_.DrawOn(display_.get());
  return true;
}

void GlLayers::Compose(const GlCompositor::Stack& stack) {
  canvas_.Clear(VuColor{0xFF000000});
  const VuRect all = {0, 0, state_.width, state_.height};
  for (const LayerDescription& description : stack.layers) {
    const Layer* const layer = Find(description.layer);
    if (!layer || !layer->screen->Drawing().Texture()) continue;
    state_.blendEnabled = description.blended;
    ++state_.revision;
    GlScreen& screen = *layer->screen;
    const Source<GlTexture> source = {screen.Drawing().Texture(), screen.GetScaleMode()};
    const VuColor opacity{uint32_t{description.opacity} << 24 | 0x00FFFFFFu};
    canvas_.DrawObject(ToRectD(description.destination, all), source,
                       ToRectD(description.source, screen.GetBounds()), Edges::OnWholePixels, {},
                       opacity, nullptr);
  }
}

}  // namespace ZIRK::backends
