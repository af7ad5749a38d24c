#include <zirk/graphicsimplloader.h>
#include <zirk/impl/vucompositorimpl.h>
#include <zirk/vucompositor.h>

#include <cstdlib>
#include <mutex>

#include "assertalways.h"
#include "nomemory.h"

namespace ZIRK {

namespace {

// The mutex guards all of this. It exists from the moment the library is loaded, and outlives the
// static objects of the application, whose destructors may still call.
std::mutex mutex;
std::shared_ptr<VuCompositorImpl> instance;
bool releasedAtExit = false;

/// Returns false if memory runs out; `instance` is null if the plug-in does not open. The loader is
/// not kept: it opens the plug-in only once, and closes it after everything else is destroyed.
bool CreateInstance() {
  return UnlessMemoryRunsOut("the compositor", [] {
    const auto loader = GraphicsImplLoader::GetInstance();
    instance.reset(
        static_cast<VuCompositorImpl*>(loader->CreateImplInstance("GLCompositor", false)));
    return true;
  });
}

// Registered once the plug-in is open, so it runs before the plug-in's static objects are
// destroyed, and long before the loader closes the plug-in.
void ReleaseAtExit() {
  const std::lock_guard<std::mutex> lock(mutex);
  instance.reset();
  releasedAtExit = false;
}

}  // namespace

std::shared_ptr<VuCompositorImpl> VuCompositorImpl::GetInstance() {
  const std::lock_guard<std::mutex> lock(mutex);
  return instance;
}

// Each operation holds a share of its own while the plug-in runs, without the mutex. Enable(false)
// on another thread therefore cannot delete the object during the call.

void VuCompositor::SetConfiguration(const LayerDescription* layers, int count) {
  if (const auto compositor = VuCompositorImpl::GetInstance())
    compositor->SetConfiguration(layers, count);
}

void VuCompositor::EnableLayer(signed char layer, bool enable) {
  if (const auto compositor = VuCompositorImpl::GetInstance())
    compositor->EnableLayer(layer, enable);
}

// A plug-in that does not open is an error in the program. Running out of memory is not: the
// compositor then stays disabled.
// The assertion below stays on line 70: its message is known by file and line.
void VuCompositor::Enable(bool enable) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (!enable) {
    instance.reset();
    return;
  }
  if (instance || !CreateInstance()) return;
  assert(instance);
  // Repeated each time, since static objects may enable it again while they are destroyed.
  if (!releasedAtExit) releasedAtExit = std::atexit(ReleaseAtExit) == 0;
}

bool VuCompositor::IsEnabled() {
  const std::lock_guard<std::mutex> lock(mutex);
  return instance != nullptr;
}

void VuCompositor::GetConfiguration(LayerDescription* layers, int& count) {
  const auto compositor = VuCompositorImpl::GetInstance();
  if (!compositor) {
    count = 0;
    return;
  }
  compositor->GetConfiguration(layers, count);
}

int VuCompositor::GetVirtualLayerCount() {
  const auto compositor = VuCompositorImpl::GetInstance();
  return compositor ? compositor->GetVirtualLayerCount() : 0;
}

}  // namespace ZIRK
