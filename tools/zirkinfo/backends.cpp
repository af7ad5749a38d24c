#include <dlfcn.h>
#include <link.h>
#include <zirk/backend.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <vector>

#include "commands.h"

namespace ZIRK::zirkinfo {

namespace {

/// The order in which plug-ins are shown: the backend that Create() opens at first, the others,
/// the one that draws nothing, and the compositor.
int Rank(const BackendRecord& plugin) {
  if (!plugin.IsGraphics()) return 3;
  if (plugin.type == BackendType::Stub) return 2;
  return plugin.type == kDefaultBackend ? 0 : 1;
}

std::vector<BackendRecord> PluginsToShow() {
  std::vector<BackendRecord> plugins(std::begin(kBackendTable), std::end(kBackendTable));
  std::stable_sort(
      plugins.begin(), plugins.end(),
      [](const BackendRecord& a, const BackendRecord& b) { return Rank(a) < Rank(b); });
  return plugins;
}

const char* YesOrNo(bool yes) {
  return yes ? "yes" : "no";
}

bool IsListed(const char* name) {
  unsigned count = 0;
  const char* const* const names = VuGraphics::GetSupportedBackends(count);
  return std::any_of(names, names + count,
                     [name](const char* listed) { return std::string(listed) == name; });
}

/// Where the dynamic loader found a plug-in that is open.
std::string PathOf(const char* file) {
  void* const handle = dlopen(file, RTLD_LAZY | RTLD_NOLOAD);
  if (!handle) return "";
  link_map* map = nullptr;
  const bool isKnown = dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0;
  const std::filesystem::path path = isKnown ? map->l_name : "";
  dlclose(handle);
  std::error_code error;  // A path that cannot be followed is shown as it is.
  const std::filesystem::path followed = std::filesystem::canonical(path, error);
  return error ? path : followed;
}

/// What a graphics context says of itself; false where there is none.
bool ShowContext(const BackendRecord& plugin) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create(plugin.name, false));
  std::printf("opens: %s\n", YesOrNo(graphics != nullptr));
  if (!graphics) return false;
  std::printf("type: %d\n", graphics->GetGraphicsType());
  std::printf("largest-texture: %d\n", graphics->GetMaxTextureSize());
  std::printf("memory-available: %u\n", graphics->AvailableMemory());
  std::printf("memory-total: %u\n", graphics->TotalMemory());
  return true;
}

bool ShowCompositor(const BackendRecord& plugin) {
  const std::unique_ptr<VuCompositorImpl> compositor(static_cast<VuCompositorImpl*>(
      GraphicsImplLoader::GetInstance()->CreateImplInstance(plugin.name, false)));
  std::printf("opens: %s\n", YesOrNo(compositor != nullptr));
  if (!compositor) return false;
  std::printf("layers: %d\n", compositor->GetVirtualLayerCount());
  return true;
}

void ShowFeatures(const BackendRecord& plugin) {
  uint32_t details = 0;
  VuGraphics::GetFeatureDetails(plugin.name, FeatureType::Details, &details);
  std::printf("features: 0x%x\n", VuGraphics::GetSupportedFeatures(plugin.name));
  std::printf("details: 0x%x\n", details);
}

bool ShowPlugin(const BackendRecord& plugin) {
  const bool isLoaded = GraphicsImplLoader::GetInstance()->loadImpl(plugin.name) == 0;
  std::printf("\n%s: %s\n", plugin.IsGraphics() ? "backend" : "compositor", plugin.name);
  std::printf("file: %s\n", plugin.dso);
  std::printf("installed: %s\n", YesOrNo(isLoaded));
  if (isLoaded) std::printf("path: %s\n", PathOf(plugin.dso).c_str());
  if (!plugin.IsGraphics()) return ShowCompositor(plugin);

  std::printf("has-backend: %s\n", YesOrNo(VuGraphics::HasBackend(plugin.name)));
  std::printf("supported-backend: %s\n", YesOrNo(IsListed(plugin.name)));
  ShowFeatures(plugin);
  return ShowContext(plugin);
}

bool IsKnown(const std::string& name) {
  return std::any_of(std::begin(kBackendTable), std::end(kBackendTable),
                     [&](const BackendRecord& plugin) { return name == plugin.name; });
}

}  // namespace

int ShowBackends(const CommandLine& line) {
  for (const std::string& name : line.operands) {
    if (IsKnown(name)) continue;
    std::fprintf(stderr, "zirkinfo: no backend is called '%s'\n", name.c_str());
    return kFailed;
  }
  // The first query takes the default from the environment.
  const auto loader = GraphicsImplLoader::GetInstance();
  std::printf("version: %s\n", ZIRK_VERSION);
  std::printf("default: %s\n", std::getenv("ZIRK_STUB") ? BackendName(BackendType::Stub)
                                                        : VuGraphics::GetDefaultImpl());
  int status = kDone;
  for (const BackendRecord& plugin : PluginsToShow()) {
    const auto& wanted = line.operands;
    const bool isNamed = std::find(wanted.begin(), wanted.end(), plugin.name) != wanted.end();
    if (!wanted.empty() && !isNamed) continue;
    const bool opens = ShowPlugin(plugin);
    if (isNamed && !opens) status = kFailed;
  }
  return status;
}

}  // namespace ZIRK::zirkinfo
