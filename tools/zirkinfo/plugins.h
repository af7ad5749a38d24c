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

/// Those with these names, all for none. A name that is unknown is said to be so, and nothing is
/// given.
std::vector<Plugin> PluginsNamed(const std::vector<std::string>& names);

/// A context by the backend of this name, by the default one for an empty name. Null, with an error
/// line of the library, where it does not open.
std::unique_ptr<VuGraphics> OpenBackend(const std::string& name);

/// How many layers the compositor of this name has; nothing, with an error line of the library,
/// where it does not open.
std::optional<int> CountLayers(const std::string& name);

}  // namespace ZIRK::zirkinfo
