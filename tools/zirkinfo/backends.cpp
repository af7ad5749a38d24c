#include <dlfcn.h>
#include <link.h>
#include <zirk/backendtable.h>
#include <zirk/zirk.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>

#include "commands.h"
#include "librarylog.h"
#include "plugins.h"
#include "support/formatname.h"

namespace ZIRK::zirkinfo {

namespace {

const char* YesOrNo(bool yes) {
  return yes ? "yes" : "no";
}

bool IsListed(const std::string& name) {
  unsigned count = 0;
  const char* const* const names = VuGraphics::GetSupportedBackends(count);
  return std::any_of(names, names + count, [&](const char* listed) { return name == listed; });
}

/// The path at which the dynamic loader found an open plug-in.
std::string PathOf(const std::string& file) {
  void* const handle = dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (!handle) return "";
  link_map* map = nullptr;
  const bool isKnown = dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0;
  const std::filesystem::path path = isKnown ? map->l_name : "";
  dlclose(handle);
  std::error_code error;  // A path that cannot be resolved is shown unchanged.
  const std::filesystem::path followed = std::filesystem::canonical(path, error);
  return error ? path : followed;
}

void ShowMemory(const char* key, unsigned bytes) {
  std::printf("%s: %u bytes%s, %u MiB\n", key, bytes, bytes == UINT_MAX ? " or more" : "",
              static_cast<unsigned>((uint64_t{bytes} + (1u << 19)) >> 20));
}

/// Shows the displays that the library has found so far.
void ShowDisplays(const LibraryLog& log) {
  PrintLines("display", log.Messages("debug", "display "));
}

/// Shows the screen that a program gets if it requests the display's own size.
void ShowScreen(VuGraphics& graphics) {
  const LibraryLog log;
  const std::unique_ptr<VuBitmap> screen(graphics.CreateScreen(false));
  if (screen) {
    const VuBitmapInfo info = screen->GetInfo();
    std::printf("screen: %d x %d, %s\n", info.width, info.height, support::NameOf(info.format));
    const std::string shownBy = log.ShownBy();
    if (!shownBy.empty()) std::printf("shown-by: %s\n", shownBy.c_str());
    const std::string kernels = log.LastInfo("kernels: ");
    if (!kernels.empty()) std::printf("kernels: %s\n", kernels.c_str());
  } else {
    std::printf("screen: none\n");
    PrintLines("reason", log.Messages("error"));
  }
  ShowDisplays(log);
  PrintLines("warning", log.Messages("warning"));
}

/// Shows the properties of a graphics context.
void ShowContext(VuGraphics& graphics) {
  std::printf("type: %d\n", graphics.GetGraphicsType());
  std::printf("largest-texture: %d\n", graphics.GetMaxTextureSize());
  ShowMemory("memory-available", graphics.AvailableMemory());
  ShowMemory("memory-total", graphics.TotalMemory());
  ShowScreen(graphics);
}

/// Shows whether a plug-in opens, and if not, the reason.
bool ShowOpening(bool opens, const LibraryLog& log) {
  std::printf("opens: %s\n", YesOrNo(opens));
  if (!opens) PrintLines("reason", log.Messages("error"));
  return opens;
}

bool OpenAndShowContext(const Plugin& plugin) {
  std::unique_ptr<VuGraphics> graphics;
  {
    const LibraryLog log;
    graphics = OpenBackend(plugin.name);
    if (!ShowOpening(graphics != nullptr, log)) return false;
    ShowDisplays(log);
  }
  ShowContext(*graphics);
  return true;
}

bool OpenAndShowCompositor(const Plugin& plugin) {
  const LibraryLog log;
  const std::optional<int> layers = CountLayers(plugin.name);
  if (!ShowOpening(layers.has_value(), log)) return false;
  std::printf("layers: %d\n", *layers);
  return true;
}

bool Loads(const std::string& name) {
  const LibraryLog log;
  return GraphicsImplLoader::GetInstance()->loadImpl(name) == 0;
}

void ShowFeatures(const std::string& name) {
  constexpr unsigned kOpenGl = 1;
  const unsigned features = VuGraphics::GetSupportedFeatures(name);
  uint32_t details = 0;
  VuGraphics::GetFeatureDetails(name, FeatureType::Details, &details);
  std::printf("features: 0x%x%s\n", features, features & kOpenGl ? ", OpenGL ES" : "");
  std::printf("details: 0x%x%s\n", details, details ? ", of no published meaning" : "");
}

bool ShowPlugin(const Plugin& plugin) {
  const bool isLoaded = Loads(plugin.name);
  std::printf("\n%s: %s\n", plugin.isGraphics ? "backend" : "compositor", plugin.name.c_str());
  std::printf("file: %s\n", plugin.file.c_str());
  std::printf("installed: %s\n", YesOrNo(isLoaded));
  if (isLoaded) std::printf("path: %s\n", PathOf(plugin.file).c_str());
  if (!plugin.isGraphics) return OpenAndShowCompositor(plugin);

  std::printf("has-backend: %s\n", YesOrNo(VuGraphics::HasBackend(plugin.name.c_str())));
  std::printf("supported-backend: %s\n", YesOrNo(IsListed(plugin.name)));
  ShowFeatures(plugin.name);
  return OpenAndShowContext(plugin);
}

}  // namespace

int ShowBackends(const CommandLine& line) {
  const std::vector<Plugin> plugins = PluginsNamed(line.operands);
  if (plugins.empty()) return kFailed;
  // The first query takes the default from the environment.
  const auto loader = GraphicsImplLoader::GetInstance();
  std::printf("version: %s\n", ZIRK_VERSION);
  std::printf("default: %s\n", std::getenv("ZIRK_STUB") ? BackendName(BackendType::Stub)
                                                        : VuGraphics::GetDefaultImpl());
  int status = kDone;
  std::vector<std::string> openFiles;
  for (const Plugin& plugin : plugins) {
    const bool isNamed = !line.operands.empty();
    // A compositor needs the backend in its file, which is listed before it.
    if (!plugin.isGraphics && !isNamed &&
        std::find(openFiles.begin(), openFiles.end(), plugin.file) == openFiles.end())
      continue;
    const bool opens = ShowPlugin(plugin);
    if (opens) openFiles.push_back(plugin.file);
    if (!opens && (isNamed || plugin.name == line.pluginName)) status = kFailed;
  }
  return status;
}

}  // namespace ZIRK::zirkinfo
