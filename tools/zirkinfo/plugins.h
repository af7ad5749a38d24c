#pragma once

#include <zirk/vugraphics.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ZIRK::zirkinfo {

/// A plug-in that the library knows, or that --plugin has registered.
struct Plugin {
  std::string name;
  std::string file;
  bool isGraphics;  ///< Whether it makes graphics contexts; it makes compositors otherwise.
  bool draws;
};

/// Registers a third-party plug-in and returns its name: Mine for libZIRKImplMine.so, otherwise the
/// file name without its suffix.
std::string EnterPlugin(const std::string& file);

/// All plug-ins in the order of the output: the default backend, the others, the one that draws
/// nothing, the registered one, and the compositor.
std::vector<Plugin> Plugins();

/// The plug-ins with these names; all plug-ins if there are no names. For an unknown name, prints
/// an error and returns none.
std::vector<Plugin> PluginsNamed(const std::vector<std::string>& names);

/// A context of the backend with this name, or of the default one if the name is empty. Null, after
/// an error line of the library, if it does not open.
std::unique_ptr<VuGraphics> OpenBackend(const std::string& name);

/// The number of layers of the compositor with this name. Nothing, after an error line of the
/// library, if it does not open.
std::optional<int> CountLayers(const std::string& name);

}  // namespace ZIRK::zirkinfo
