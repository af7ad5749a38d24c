#include <strings.h>
#include <zirk/backendtable.h>
#include <zirk/graphicsimplloader.h>
#include <zirk/impl/log.h>
#include <zirk/impl/vugraphicsimpl.h>
#include <zirk/impl/vuscreenimpl.h>
#include <zirk/vubitmap.h>
#include <zirk/vugraphics.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <utility>

#include "defaultimpl.h"
#include "floattoint.h"
#include "nomemory.h"
#include "vugraphicsmgr.h"

namespace ZIRK {

namespace {

using GraphicsOverride = std::function<VuGraphics*(bool)>;

/// Empty without an override. Shared, so that an override that replaces or removes itself stays
/// alive while it runs.
std::shared_ptr<const GraphicsOverride> graphicsOverride;

// The backends that have a creation function each.
constexpr const char* kOpenGl = BackendName(BackendType::OpenGLES2);
constexpr const char* kDirectFb = BackendName(BackendType::DirectFB);
constexpr const char* kHybrid = BackendName(BackendType::Hybrid);

bool EqualIgnoringCase(const char* a, const char* b) {
  return strcasecmp(a, b) == 0;
}

/// Whether Create() passes `name` to the loader, which then requires the exact spelling.
bool IsBackendName(const char* name) {
  return std::any_of(std::begin(kBackendTable), std::end(kBackendTable),
                     [name](const BackendRecord& record) {
                       return record.IsGraphics() && EqualIgnoringCase(name, record.name);
                     });
}

VuGraphicsImpl* CreateImpl(GraphicsImplLoader& loader, const std::string& name, bool flag) {
  return static_cast<VuGraphicsImpl*>(loader.CreateImplInstance(name, flag));
}

VuGraphicsImpl* CreateDefaultImpl(GraphicsImplLoader& loader, bool flag) {
  if (!EqualIgnoringCase(DefaultImpl().c_str(), "Default"))
    return CreateImpl(loader, DefaultImpl(), flag);
  if (VuGraphicsImpl* const impl = CreateImpl(loader, kOpenGl, flag)) return impl;
  return CreateImpl(loader, kDirectFb, flag);
}

/// In queries "Default" always means this backend, whatever the current default.
std::string QueriedName(std::string name) {
  return name == "Default" ? BackendName(kDefaultBackend) : std::move(name);
}

/// Wraps a backend's object in a handle. If there is no memory for the handle, deletes the object.
template <typename Handle, typename Impl>
Handle* Wrap(Impl* impl) {
  std::unique_ptr<Impl> owned(impl);
  Handle* const handle = impl ? new Handle(impl) : nullptr;
  static_cast<void>(owned.release());
  return handle;
}

/// The handle of the surface that `make` gets from a backend.
template <typename Make>
VuBitmap* NewSurface(const char* what, Make make) {
  return UnlessMemoryRunsOut(what, [&] { return Wrap<VuBitmap>(make()); });
}

constexpr const char* kContext = "a graphics context";
constexpr const char* kScreen = "a screen";
constexpr const char* kBitmap = "a bitmap";

}  // namespace

VuGraphics* VuGraphics::Create(bool flag) {
  ZIRK_LOG_INFO("Creating VuGraphics instance");
  return UnlessMemoryRunsOut(kContext, [&]() -> VuGraphics* {
    if (const auto running = graphicsOverride) return (*running)(flag);
    if (getenv("ZIRK_STUB")) return CreateStub();

    const auto loader = GraphicsImplLoader::GetInstance();
    VuGraphics* const graphics = Wrap<VuGraphics>(CreateDefaultImpl(*loader, flag));
    if (!graphics)
      ZIRK_LOG_ERROR("Failed to Create VuGraphics instance, no suitable implementations found");
    return graphics;
  });
}

VuGraphics* VuGraphics::Create() {
  return Create(false);
}

VuGraphics* VuGraphics::Create(const char* name, bool flag) {
  // One level louder than Create(bool).
  ZIRK_LOG_WARNING("Creating VuGraphics instance");
  return UnlessMemoryRunsOut(kContext, [&]() -> VuGraphics* {
    const auto loader = GraphicsImplLoader::GetInstance();
    if (!name) return Create();
    if (IsBackendName(name)) return Wrap<VuGraphics>(CreateImpl(*loader, name, flag));
    if (EqualIgnoringCase(name, "Default")) return Create();
    // A number, not the text: the low half of the pointer.
    ZIRK_LOG_ERROR("ZIRK implementation type %d is not supported on this platform",
                   static_cast<int>(reinterpret_cast<intptr_t>(name)));
    return nullptr;
  });
}

VuGraphics* VuGraphics::CreateGL(bool flag) {
  return UnlessMemoryRunsOut(kContext, [&] {
    const auto loader = GraphicsImplLoader::GetInstance();
    const bool hybrid = DefaultImpl() == kHybrid;
    return Wrap<VuGraphics>(CreateImpl(*loader, hybrid ? kHybrid : kOpenGl, flag));
  });
}

VuGraphics* VuGraphics::CreateGL() {
  return CreateGL(false);
}

VuGraphics* VuGraphics::CreateDFB() {
  return Create(kDirectFb, false);
}

VuGraphics* VuGraphics::CreateStub() {
  return Create(BackendName(BackendType::Stub), false);
}

void VuGraphics::SetDefaultImpl(const char* name) {
  DefaultImpl() = name ? name : BackendName(kDefaultBackend);
}

const char* VuGraphics::GetDefaultImpl() {
  return DefaultImpl().c_str();
}

void VuGraphics::SetGraphicsOverride(std::function<VuGraphics*(bool)> f) {
  graphicsOverride = f ? std::make_shared<const GraphicsOverride>(std::move(f)) : nullptr;
}

VuGraphics::VuGraphics(VuGraphicsImpl* impl_) : impl(impl_) {
  VuGraphicsMgr::GetInstance()->Add(this);
}

VuGraphics::~VuGraphics() {
  ZIRK_LOG_WARNING("Destroying VuGraphics instance");
  const auto registry = VuGraphicsMgr::GetInstance();
  // Another thread may be listing this context, so the backend is taken from it under the lock.
  delete registry->TakeImpl(*this);
  registry->Remove(this);
}

VuBitmap* VuGraphics::CreateScreen(bool flag) {
  return NewSurface(kScreen, [&] { return impl->CreateScreen(flag); });
}

VuBitmap* VuGraphics::CreateScreen(const VuScreenDescription& description) {
  return NewSurface(kScreen, [&] { return impl->CreateScreen(description); });
}

VuBitmap* VuGraphics::CreateScreen(int width, int height, bool doubleBuffer, int index, bool option,
                                   VuPixelFormat format) {
  VuScreenDescription description{};
  description.width = width;
  description.height = height;
  description.index = static_cast<uint8_t>(index);
  description.buffers = doubleBuffer ? 2 : 1;
  description.format = format;
  description.option = option;
  return CreateScreen(description);
}

VuBitmap* VuGraphics::CreateScreen(int width, int height, bool doubleBuffer, int index,
                                   bool option) {
  return CreateScreen(width, height, doubleBuffer, index, option, VuPixelFormat::ARGB8888);
}

VuBitmap* VuGraphics::CreateScreen(int width, int height, bool doubleBuffer, int index) {
  return CreateScreen(width, height, doubleBuffer, index, false);
}

VuBitmap* VuGraphics::CreateScreen(int width, int height, bool doubleBuffer) {
  return CreateScreen(width, height, doubleBuffer, 0, false);
}

VuBitmap* VuGraphics::CreateBitmap(int width, int height, VuPixelFormat format) {
  return NewSurface(kBitmap, [&] { return impl->CreateBitmap(width, height, format); });
}

VuBitmap* VuGraphics::CreateBitmapFromFile(const char* path) {
  return NewSurface(kBitmap, [&] { return impl->CreateBitmapFromFile(path); });
}

VuBitmap* VuGraphics::CreateBitmapFromFile(const char* path, int width, int height,
                                           VuScaleMode scaleMode, VuDisplayMode displayMode) {
  return NewSurface(kBitmap, [&] {
    return impl->CreateBitmapFromFile(path, width, height, scaleMode, displayMode);
  });
}

VuBitmap* VuGraphics::CreateBitmapFromFile(const char* path, int width, int height,
                                           VuScaleMode scaleMode) {
  return CreateBitmapFromFile(path, width, height, scaleMode, VuDisplayMode::Stretch);
}

VuBitmap* VuGraphics::CreateBitmapFromMemory(const void* data, unsigned size) {
  return NewSurface(kBitmap, [&] { return impl->CreateBitmapFromMemory(data, size); });
}

VuBitmap* VuGraphics::CreateBitmapFromMemory(const void* data, unsigned size, int width, int height,
                                             VuScaleMode scaleMode) {
  return NewSurface(
      kBitmap, [&] { return impl->CreateBitmapFromMemory(data, size, width, height, scaleMode); });
}

unsigned VuGraphics::BitmapSize(int width, int height, VuPixelFormat format) const {
  return impl->BitmapSize(width, height, format);
}

unsigned VuGraphics::BitmapSize(const char* path) const {
  return impl->BitmapSize(path);
}

unsigned VuGraphics::BitmapSize(const char* path, int width, int height) const {
  return impl->BitmapSize(path, width, height);
}

unsigned VuGraphics::BitmapSize(const void* data, unsigned size) const {
  return impl->BitmapSize(data, size);
}

unsigned VuGraphics::BitmapSize(const void* data, unsigned size, int width, int height) const {
  return impl->BitmapSize(data, size, width, height);
}

unsigned VuGraphics::AvailableMemory() const {
  return impl->AvailableMemory();
}

unsigned VuGraphics::TotalMemory() const {
  return impl->TotalMemory();
}

void VuGraphics::PrintBitmapList(std::ostream& os) {
  impl->PrintBitmapList(0, os);
}

void VuGraphics::Flush() {
  impl->Flush();
}

void VuGraphics::SetTerminateOnDestruct(bool terminate) {
  impl->SetTerminateOnDestruct(terminate);
}

int VuGraphics::GetGraphicsType() const {
  return impl->GetGraphicsType();
}

int VuGraphics::GetMaxTextureSize() const {
  return impl->GetMaxTextureSize();
}

void VuGraphics::GetScaledDimensions(int srcWidth, int srcHeight, int& width, int& height,
                                     VuDisplayMode mode) {
  const int boxWidth = width;
  const int boxHeight = height;
  if (boxWidth <= 0 || boxHeight <= 0) {
    if (srcWidth <= 0 || srcHeight <= 0) return;
    width = srcWidth;
    height = srcHeight;
    return;
  }

  const auto srcW = static_cast<float>(srcWidth);
  const auto srcH = static_cast<float>(srcHeight);
  const auto boxW = static_cast<float>(boxWidth);
  const auto boxH = static_cast<float>(boxHeight);
  const bool narrower = srcW / srcH < boxW / boxH;
  switch (mode) {
    case VuDisplayMode::Stretch:
      return;
    case VuDisplayMode::Fit: {
      const float scale = narrower ? boxH / srcH : boxW / srcW;
      width = std::min(boxWidth, TruncateToInt32(srcW * scale));
      height = std::min(boxHeight, TruncateToInt32(srcH * scale));
      return;
    }
    case VuDisplayMode::Fill: {
      // A picture that is not narrower than the box keeps its own size, whether or not it covers.
      const float scale = narrower ? boxW / srcW : 1.0f;
      width = TruncateToInt32(srcW * scale);
      height = TruncateToInt32(srcH * scale);
      return;
    }
    case VuDisplayMode::Natural:
      if (boxWidth < srcWidth || boxHeight < srcHeight) return;
      width = srcWidth;
      height = srcHeight;
      return;
  }
  ZIRK_LOG_WARNING("%s: unknown display mode %d", __func__, static_cast<int>(mode));
}

bool VuGraphics::HasBackend(const char* name) {
  return GraphicsImplLoader::GetInstance()->IsLibraryAvailable(name);
}

const char* const* VuGraphics::GetSupportedBackends(unsigned& count) {
  return GraphicsImplLoader::GetInstance()->GetBackends(count);
}

unsigned VuGraphics::GetSupportedFeatures(std::string name) {
  return GraphicsImplLoader::GetInstance()->GetFeatureInfo(QueriedName(std::move(name))).features;
}

void VuGraphics::GetFeatureDetails(std::string name, FeatureType type, void* out) {
  const auto loader = GraphicsImplLoader::GetInstance();
  if (type != FeatureType::Details) return;
  const uint32_t details = loader->GetFeatureInfo(QueriedName(std::move(name))).details;
  std::memcpy(out, &details, sizeof details);
}

void PrintBitmapList(unsigned key, std::ostream& os) {
  VuGraphicsMgr::GetInstance()->PrintBitmapList(key, os);
}

}  // namespace ZIRK
