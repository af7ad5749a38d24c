#pragma once

#include <optional>
#include <string>

#include "commandline.h"

namespace ZIRK::zirkinfo {

/// A font file of the machine, preferably a plain sans-serif one; empty if there is none. The same
/// one each time, as long as the same fonts are installed.
std::string FindMachineFont();

/// The font of the text that a command draws, empty for none; nothing if the one that was named
/// does not open. Says what is missing.
std::optional<std::string> ChooseFont(const CommandLine& line);

}  // namespace ZIRK::zirkinfo
