#pragma once

#include <zirk/impl/log.h>
#include <zirk/impl/vuscreenimpl.h>

#include <type_traits>
#include <typeinfo>

namespace ZIRK::backends {

/// `surface` as a T, which is a final class, if this very plug-in has made it as one; else null.
///
/// Plug-ins link the same code, so that a class of one has the name, but maybe not the contents, of
/// another's. What tells them apart is where the class is described: each has its own copy, which
/// is not visible outside.
template <class T>
T* AsOwn(VuBitmapImpl* surface) {
  static_assert(std::is_final_v<T>);
  if (!surface || &typeid(*surface) != &typeid(T)) return nullptr;
  if constexpr (std::is_base_of_v<VuScreenImpl, T>)
    return dynamic_cast<T*>(surface);
  else
    return static_cast<T*>(surface);
}

/// Logs that a surface of another backend cannot be read. Returns false.
inline bool RefuseSource() {
  ZIRK_LOG_ERROR("a surface of another backend can be neither source nor mask");
  return false;
}

}  // namespace ZIRK::backends
