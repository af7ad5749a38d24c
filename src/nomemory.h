#pragma once

#include <zirk/impl/log.h>

#include <new>

namespace ZIRK {

/// Calls `make` on behalf of a public function, which throws no exception, and returns its result.
/// If memory runs out, logs an error line that names `what` and returns an empty result: null,
/// false or 0.
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
