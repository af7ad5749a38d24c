#include "surface/drawmemory.h"

#include <zirk/impl/log.h>

namespace ZIRK::backends {

bool ReportNoMemory() {
  ZIRK_LOG_ERROR("no memory to draw with");
  return false;
}

}  // namespace ZIRK::backends
