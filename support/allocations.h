#pragma once

namespace ZIRK::support {

/// How often the process has asked operator new for memory.
int Allocations();

}  // namespace ZIRK::support
