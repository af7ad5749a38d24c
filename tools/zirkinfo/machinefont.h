#pragma once

#include <string>

namespace ZIRK::zirkinfo {

/// A font file of the machine, preferably a plain sans-serif one; empty if there is none. The same
/// one each time, as long as the same fonts are installed.
std::string FindMachineFont();

}  // namespace ZIRK::zirkinfo
