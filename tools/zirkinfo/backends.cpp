#include <dlfcn.h>
#include <link.h>
#include <zirk/backend.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "commands.h"

namespace ZIRK::zirkinfo {

namespace {

/// The plug-ins that the library knows. A compositor is no backend: it composes one's screens.
struct Plugin {
  const char* name;
  const char* file;
  bool isCompositor = false;
};

constexpr Plugin kPlugins[] = {
    {"Hybrid", "libZIRKImplHybrid.so"},     {"OpenGLES2", "libZIRKImplOpenGL.so"},
    {"DirectFB", "libZIRKImplDirectFB.so"}, {"FB", "libZIRKImplFB.so"},
    {"Stub", "libZIRKImplStub.so"},         {"GLCompositor", "libZIRKImplOpenGL.so", true},
};

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
bool ShowContext(const Plugin& plugin) {
  const std::unique_ptr<VuGraphics> graphics(VuGraphics::Create(plugin.name, false));
  std::printf("opens: %s\n", YesOrNo(graphics != nullptr));
  if (!graphics) return false;
  std::printf("type: %d\n", graphics->GetGraphicsType());
  std::printf("largest-texture: %d\n", graphics->GetMaxTextureSize());
  std::printf("memory-available: %u\n", graphics->AvailableMemory());
  std::printf("memory-total: %u\n", graphics->TotalMemory());
  return true;
}

bool ShowCompositor(const Plugin& plugin) {
  const std::unique_ptr<VuCompositorImpl> compositor(static_cast<VuCompositorImpl*>(
      GraphicsImplLoader::GetInstance()->CreateImplInstance(plugin.name, false)));
  std::printf("opens: %s\n", YesOrNo(compositor != nullptr));
  if (!compositor) return false;
  std::printf("layers: %d\n", compositor->GetVirtualLayerCount());
  return true;
}

void ShowFeatures(const Plugin& plugin) {
  uint32_t details = 0;
  VuGraphics::GetFeatureDetails(plugin.name, FeatureType::Details, &details);
  std::printf("features: 0x%x\n", VuGraphics::GetSupportedFeatures(plugin.name));
  std::printf("details: 0x%x\n", details);
}

bool ShowPlugin(const Plugin& plugin) {
  const bool isLoaded = GraphicsImplLoader::GetInstance()->loadImpl(plugin.name) == 0;
  std::printf("\n%s: %s\n", plugin.isCompositor ? "compositor" : "backend", plugin.name);
  std::printf("file: %s\n", plugin.file);
  std::printf("installed: %s\n", YesOrNo(isLoaded));
  if (isLoaded) std::printf("path: %s\n", PathOf(plugin.file).c_str());
  if (plugin.isCompositor) return ShowCompositor(plugin);

  std::printf("has-backend: %s\n", YesOrNo(VuGraphics::HasBackend(plugin.name)));
  std::printf("supported-backend: %s\n", YesOrNo(IsListed(plugin.name)));
  ShowFeatures(plugin);
  return ShowContext(plugin);
}

bool IsKnown(const std::string& name) {
  return std::any_of(std::begin(kPlugins), std::end(kPlugins),
                     [&](const Plugin& plugin) { return name == plugin.name; });
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
  std::printf("default: %s\n", std::getenv("ZIRK_STUB") ? "Stub" : VuGraphics::GetDefaultImpl());
  int status = kDone;
  for (const Plugin& plugin : kPlugins) {
    const auto& wanted = line.operands;
    const bool isNamed = std::find(wanted.begin(), wanted.end(), plugin.name) != wanted.end();
    if (!wanted.empty() && !isNamed) continue;
    const bool opens = ShowPlugin(plugin);
    if (isNamed && !opens) status = kFailed;
  }
  return status;
}

}  // namespace ZIRK::zirkinfo
