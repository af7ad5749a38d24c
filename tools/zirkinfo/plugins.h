#pragma once

#include <zirk/vugraphics.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ZIRK::zirkinfo {

/// A plug-in that the library knows, or that --plugin has entered.
struct Plugin {
  std::string name;
  std::string file;
  bool isGraphics;  ///< Else it makes compositors.
  bool draws;
};

/// Enters a third party's plug-in under the name that its file has: Mine for libZIRKImplMine.so,
/// else the whole name without its ending. Gives that name.
std::string EnterPlugin(const std::string& file);

/// In the order in which they are shown: the backend that Create() opens at first, the others, the
/// one that draws nothing, the one that was entered, and the compositor.
std::vector<Plugin> Plugins();

/// The plug-ins with these names; all plug-ins if there are no names. For an unknown name, prints a
/// problem and returns none.
std::vector<Plugin> PluginsNamed(const std::vector<std::string>& names);

/// A context by the backend of this name, by the default one for an empty name. Null, with an error
/// line of the library, where it does not open.
std::unique_ptr<VuGraphics> OpenBackend(const std::string& name);

/// How many layers the compositor of this name has; nothing, with an error line of the library,
/// where it does not open.
std::optional<int> CountLayers(const std::string& name);

}  // namespace ZIRK::zirkinfo
