#pragma once

#include <string>

namespace ZIRK {

/// The process's default backend name, "Hybrid" at first. Not synchronised.
std::string& DefaultImpl();

}  // namespace ZIRK
