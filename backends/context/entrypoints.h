#pragma once

#include <zirk/export.h>
#include <zirk/impl/log.h>
#include <zirk/impl/vugraphicsimpl.h>

#include <memory>
#include <new>

namespace ZIRK::backends {

/// Calls `make`, which returns an owned object, and gives it to the library as an `Interface`. Null
/// if `make` returns null, or after an error line if it throws: no exception leaves a plug-in.
template <class Interface, typename Make>
void* CreateForLibrary(Make make) {
  try {
    return std::unique_ptr<Interface>(make()).release();
  } catch (const std::bad_alloc&) {
    ZIRK_LOG_ERROR("the backend has no memory to start with");
  } catch (...) {
    ZIRK_LOG_ERROR("the backend cannot be started");
  }
  return nullptr;
}

}  // namespace ZIRK::backends

/// Defines the two entry points of a plug-in that the library looks up for `Name`, VuGraphics or
/// VuCompositor. `object` is an expression that makes the backend's object, a std::unique_ptr.
#define ZIRK_ENTRY_POINTS(Name, object)                                               \
  extern "C" ZIRK_API void* Create##Name(bool /*flag*/) {                             \
    return ZIRK::backends::CreateForLibrary<ZIRK::Name##Impl>([] { return object; }); \
  }                                                                                   \
  extern "C" ZIRK_API void Destroy##Name(void* impl) {                                \
    delete static_cast<ZIRK::Name##Impl*>(impl);                                      \
  }
