#pragma once

#include <zirk/impl/log.h>
#include <zirk/impl/vuscreenimpl.h>

#include <type_traits>
#include <typeinfo>

namespace ZIRK::backends {

/// Returns `surface` as a T, which is a final class, if this plug-in made it as a T, otherwise
/// null.
///
/// Plug-ins link the same code, so their classes have the same names but perhaps different
/// contents. The address of the type information tells them apart: each plug-in has its own copy,
/// which is not visible outside.
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
