#include "opengles2/glcompositor.h"

#include <zirk/impl/log.h>

#include <algorithm>
#include <array>
#include <mutex>

namespace ZIRK::backends {

namespace {

// Guards all of this and every compositor. Nothing here has a destructor that would run at exit.
std::mutex mutex;
GlCompositor* active = nullptr;

/// Without extent is everything; half of an extent is a mistake.
bool IsSane(const VuRect& r) {
  return (r.width > 0 && r.height > 0) || (r.width == 0 && r.height == 0);
}

/// Null, or what is wrong.
const char* FaultOf(const LayerDescription* layers, int count) {
  if (count < 0 || (count > 0 && !layers)) return "there are no such layers";
  std::array<bool, GlCompositor::kLayers> seen{};
  for (const LayerDescription* layer = layers; layer != layers + count; ++layer) {
    if (layer->layer < 0 || layer->layer >= GlCompositor::kLayers) return "a layer is unknown";
    bool& there = seen[static_cast<size_t>(layer->layer)];
    if (there) return "a layer comes twice";
    there = true;
    if (!IsSane(layer->source) || !IsSane(layer->destination))
      return "a rectangle is inverted or half empty";
  }
  return nullptr;
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
  // Another may have been enabled before the last call into this one returned.
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

}  // namespace ZIRK::backends
