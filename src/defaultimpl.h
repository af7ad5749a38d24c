#pragma once

#include <string>

namespace ZIRK {

/// The process's default backend name, at first that of kDefaultBackend. Not synchronised.
std::string& DefaultImpl();

}  // namespace ZIRK
