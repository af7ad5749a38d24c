#pragma once

#include <optional>
#include <string>

#include "commandline.h"

namespace ZIRK::zirkinfo {

/// The path of an installed font, preferably a plain sans-serif one; empty if there is none. The
/// choice depends only on the installed fonts.
std::string FindMachineFont();

/// The font file for the text that a command draws; empty if there is none. Returns nothing if the
/// font that the user named does not open. Prints what is missing.
std::optional<std::string> ChooseFont(const CommandLine& line);

}  // namespace ZIRK::zirkinfo
