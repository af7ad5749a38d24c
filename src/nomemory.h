#pragma once

#include <zirk/impl/log.h>

#include <new>

namespace ZIRK {

/// What `make` returns, for functions that an application calls: it expects no exception from them.
/// Where memory runs out, an error line says that there is none for `what`, and the result is an
/// empty one: null, false or 0.
template <typename Make>
auto UnlessMemoryRunsOut(const char* what, Make make) -> decltype(make()) {
  try {
    return make();
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("no memory for %s", what);
    return {};
  }
}

}  // namespace ZIRK
