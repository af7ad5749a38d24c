#pragma once

#include <atomic>

namespace ZIRK {

/// The layer record of the announcing plug-in's compositor. The last layers set are its
/// configuration.
struct LayerDescription {
  int id;
  /// Called with `argument` from inside SetConfiguration, unless null.
  void (*inside)(void* argument);
  void* argument;
  /// Set when the compositor is deleted, unless null.
  std::atomic<bool>* deleted;
};

}  // namespace ZIRK
