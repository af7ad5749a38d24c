#pragma once

#include <span>

#include "software/kernels.h"

namespace ZIRK::backends {

/// The kernels for one instruction set, under the name that ZIRK_CPU has for it.
struct KernelLevel {
  const char* name;
  const Kernels* kernels;
};

/// What this processor runs, the fastest first; one at least.
std::span<const KernelLevel> RunnableKernels();

/// The fastest of those up to the level that `wanted` names: "none" (portable code, as it is for
/// processors without kernels of their own), "base" (SSE2), "neon", "avx2" or "avx512"; if all are
/// above it, the lowest. Without a name the fastest of all, and for an unknown one too, after a
/// warning.
const KernelLevel& ChooseKernels(const char* wanted);

/// What is in use: ChooseKernels() with the value that ZIRK_CPU has in the environment at the first
/// call.
const KernelLevel& ChosenKernels();

inline const Kernels& BestKernels() {
  return *ChosenKernels().kernels;
}

}  // namespace ZIRK::backends
