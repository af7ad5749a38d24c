#include <dlfcn.h>
#include <unistd.h>
#include <zirk/backendinterface.h>
#include <zirk/backendtable.h>
#include <zirk/graphicsimplloader.h>
#include <zirk/impl/log.h>

#include <cstdio>
#include <cstdlib>

#include "defaultimpl.h"
#include "exitorder.h"

namespace ZIRK {

namespace {

// The pointer is constructed when the library is loaded, although the loader is built later. It is
// therefore destroyed last, so the plug-ins stay open until all static objects of the application
// and of the library are destroyed.
ZIRK_DESTROYED_LAST std::shared_ptr<GraphicsImplLoader> loader;

/// Longer paths are cut, and the shorter path is looked for. The limit decides which plug-ins are
/// listed, so it must not change.
constexpr size_t kProbedPathSize = 30;

bool LiesUnder(const char* folder, const std::string& dso) {
  char path[kProbedPathSize];
  // Using the result silences the compiler's warning about truncation.
  [[maybe_unused]] const int length = snprintf(path, sizeof path, "%s%s", folder, dso.c_str());
  return access(path, F_OK) == 0;
}

bool IsOnDisk(const std::string& dso) {
  const bool inLib = LiesUnder("/lib/", dso);
  const bool inUsrLib = LiesUnder("/usr/lib/", dso);
  return inLib || inUsrLib;
}

std::shared_ptr<GraphicsImplLoader>& BuildLoader() {
  auto built = std::make_shared<GraphicsImplLoader>();
  for (const BackendRecord& record : kBackendTable)
    built->SetupGfxImpl(record.name, record.dso, record.createSymbol, record.destroySymbol,
                        {record.features, record.details}, record.lookOnDisk);
  if (const char* const name = getenv("ZIRK_DEFAULT_GFX_BACKEND")) DefaultImpl() = name;
  loader = std::move(built);
  return loader;
}

}  // namespace

GfxImplRecord::~GfxImplRecord() {
  if (handle) dlclose(handle);
}

std::shared_ptr<GraphicsImplLoader> GraphicsImplLoader::GetInstance() {
  static const std::shared_ptr<GraphicsImplLoader>& built = BuildLoader();
  return built;
}

void GraphicsImplLoader::SetupGfxImpl(const std::string& name, const std::string& dso,
                                      const std::string& createSymbol,
                                      const std::string& destroySymbol, GraphicsFeatureInfo info,
                                      bool lookOnDisk) {
  // An open plug-in stays open under its old handle: objects of it may be alive.
  GfxImplRecord& record = table_[name];
  record.dso = dso;
  record.createSymbol = createSymbol;
  record.destroySymbol = destroySymbol;
  record.featureInfo = info;
  record.libraryFound = lookOnDisk && IsOnDisk(dso);
  record.loaded = false;
  ZIRK_LOG_INFO("Setting up Implementation %s with DSO %s, [%s, %s].", name.c_str(), dso.c_str(),
                createSymbol.c_str(), destroySymbol.c_str());
}

void GraphicsImplLoader::SetupGfxImpl(const std::string& name, const std::string& dso,
                                      GraphicsFeatureInfo info, bool lookOnDisk) {
  SetupGfxImpl(name, dso, "CreateVuGraphics", "DestroyVuGraphics", info, lookOnDisk);
}

bool GraphicsImplLoader::IsLibraryAvailable(const char* name) {
  const auto found = table_.find(name);
  if (found == table_.end()) {
    ZIRK_LOG_WARNING("Nonexistent backend %s", name);
    return false;
  }
  return found->second.libraryFound;
}

const char* const* GraphicsImplLoader::GetBackends(unsigned& count) {
  backendNames_.clear();
  for (const auto& [name, record] : table_) {
    if (record.libraryFound) backendNames_.push_back(name.c_str());
  }
  count = static_cast<unsigned>(backendNames_.size());
  return backendNames_.data();
}

namespace {

/// Whether a plug-in exports this library's interface number, or none. dlsym() also searches the
/// library, on which the plug-in depends, so the library must not define that symbol.
bool FitsInterface(const GfxImplRecord& record) {
  const auto* const number =
      static_cast<const uint32_t*>(dlsym(record.handle, "ZIRKBackendInterface"));
  if (!number || *number == kBackendInterface) return true;
  ZIRK_LOG_WARNING("%s is built for the backend interface %u, and this library has %u",
                   record.dso.c_str(), *number, kBackendInterface);
  return false;
}

}  // namespace

/// Opens the plug-in and resolves its entry points. On failure the handle may be left open.
bool GraphicsImplLoader::open(GfxImplRecord& record) {
  record.handle = dlopen(record.dso.c_str(), RTLD_LAZY | RTLD_GLOBAL);
  if (!record.handle) {
    ZIRK_LOG_WARNING("dlopen() %s %s", record.dso.c_str(), dlerror());
    return false;
  }
  if (!FitsInterface(record)) return false;
  void* const create = dlsym(record.handle, record.createSymbol.c_str());
  if (!create) return false;
  record.createFn = reinterpret_cast<void* (*)(bool)>(create);
  void* const destroy = dlsym(record.handle, record.destroySymbol.c_str());
  if (!destroy) return false;
  record.destroyFn = reinterpret_cast<void (*)(void*)>(destroy);
  return true;
}

// The binary interface passes the names by value.
// NOLINTBEGIN(performance-unnecessary-value-param)

int GraphicsImplLoader::loadImpl(std::string name) {
  const auto found = table_.find(name);
  if (found == table_.end()) return -1;

  ZIRK_LOG_INFO("Loading implementation %s..", name.c_str());
  GfxImplRecord& record = found->second;
  if (record.loaded) return 0;
  record.loaded = open(record);
  if (record.loaded) return 0;

  if (record.handle) dlclose(record.handle);
  record.handle = nullptr;
  ZIRK_LOG_ERROR("Failed to load implementation %s %s", name.c_str(), record.dso.c_str());
  return -2;
}

void* GraphicsImplLoader::CreateImplInstance(std::string name, bool flag) {
  if (const int failure = loadImpl(name)) {
    ZIRK_LOG_ERROR("failed to load implementation %s [%d]", name.c_str(), failure);
    return nullptr;
  }
  ZIRK_LOG_WARNING("Invoking the constructor for implementation %s...", name.c_str());
  return table_.find(name)->second.createFn(flag);
}

void GraphicsImplLoader::DestroyImplInstance(std::string name, void* instance) {
  const auto found = table_.find(name);
  if (found == table_.end()) {
    ZIRK_LOG_WARNING("Invoking the destructor for nonexistant implementation %s!!!", name.c_str());
    return;
  }
  const GfxImplRecord& record = found->second;
  if (record.handle && record.destroyFn) record.destroyFn(instance);
}

// NOLINTEND(performance-unnecessary-value-param)

GraphicsFeatureInfo GraphicsImplLoader::GetFeatureInfo(const std::string& name) {
  const auto found = table_.find(name);
  if (found == table_.end()) {
    ZIRK_LOG_WARNING("Cannot get featureInfo for unsupported backend %s", name.c_str());
    return {0, 0};
  }
  return found->second.featureInfo;
}

}  // namespace ZIRK
