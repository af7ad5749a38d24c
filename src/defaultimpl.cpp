#include "defaultimpl.h"

#include <zirk/backendtable.h>

namespace ZIRK {

namespace {

std::string defaultImpl = BackendName(kDefaultBackend);

}  // namespace

std::string& DefaultImpl() {
  return defaultImpl;
}

}  // namespace ZIRK
