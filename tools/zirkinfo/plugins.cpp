#include "plugins.h"

#include <zirk/backend.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace ZIRK::zirkinfo {

namespace {

Plugin& Entered() {
  static Plugin plugin{"", "", true, true};
  return plugin;
}

int Rank(const Plugin& plugin) {
  if (!plugin.isGraphics) return 4;
  if (plugin.name == Entered().name) return 3;
  if (!plugin.draws) return 2;
  return plugin.name == BackendName(kDefaultBackend) ? 0 : 1;
}

}  // namespace

std::string EnterPlugin(const std::string& file) {
  constexpr char kBeginning[] = "libZIRKImpl";
  std::error_code error;
  // The loader searches for a name without a folder, but the argument is a path.
  const bool exists = std::filesystem::exists(file, error);
  const std::string path = exists ? std::filesystem::absolute(file).string() : file;
  std::string name = std::filesystem::path(file).stem();
  if (name.rfind(kBeginning, 0) == 0 && name.size() >= sizeof kBeginning)
    name.erase(0, sizeof kBeginning - 1);
  GraphicsImplLoader::GetInstance()->SetupGfxImpl(name, path, {0, 0}, false);
  Entered() = {name, path, true, true};
  return name;
}

std::vector<Plugin> Plugins() {
  std::vector<Plugin> plugins;
  for (const BackendRecord& record : kBackendTable)
    if (record.name != Entered().name)
      plugins.push_back(
          {record.name, record.dso, record.IsGraphics(), record.type != BackendType::Stub});
  if (!Entered().name.empty()) plugins.push_back(Entered());
  std::stable_sort(plugins.begin(), plugins.end(),
                   [](const Plugin& a, const Plugin& b) { return Rank(a) < Rank(b); });
  return plugins;
}

std::vector<Plugin> PluginsNamed(const std::vector<std::string>& names) {
  std::vector<Plugin> found = Plugins();
  if (names.empty()) return found;
  for (const std::string& name : names)
    if (std::none_of(found.begin(), found.end(),
                     [&](const Plugin& plugin) { return plugin.name == name; })) {
      std::fprintf(stderr, "zirkinfo: no backend is called '%s'\n", name.c_str());
      return {};
    }
  const auto isOther = [&](const Plugin& plugin) {
    return std::find(names.begin(), names.end(), plugin.name) == names.end();
  };
  found.erase(std::remove_if(found.begin(), found.end(), isOther), found.end());
  return found;
}

std::unique_ptr<VuGraphics> OpenBackend(const std::string& name) {
  if (name.empty()) return std::unique_ptr<VuGraphics>(VuGraphics::Create());
  if (name != Entered().name)
    return std::unique_ptr<VuGraphics>(VuGraphics::Create(name.c_str(), false));
  // Create() knows only the library's own names.
  void* const made = GraphicsImplLoader::GetInstance()->CreateImplInstance(name, false);
  return made ? std::make_unique<VuGraphics>(static_cast<VuGraphicsImpl*>(made)) : nullptr;
}

std::optional<int> CountLayers(const std::string& name) {
  const std::unique_ptr<VuCompositorImpl> compositor(static_cast<VuCompositorImpl*>(
      GraphicsImplLoader::GetInstance()->CreateImplInstance(name, false)));
  if (!compositor) return std::nullopt;
  return compositor->GetVirtualLayerCount();
}

}  // namespace ZIRK::zirkinfo
