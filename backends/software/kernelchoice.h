#pragma once

#include <span>

#include "software/kernels.h"

namespace ZIRK::backends {

/// The kernels for one instruction set, and the name that ZIRK_CPU uses for it.
struct KernelLevel {
  const char* name;
  const Kernels* kernels;
};

/// Returns the kernels that this processor can run, at least one, fastest first.
std::span<const KernelLevel> RunnableKernels();

/// Returns the fastest runnable kernels up to the level `wanted`: "none" (portable code, which
/// processors without special kernels use), "base" (SSE2), "neon", "avx2" or "avx512". If all are
/// above that level, returns the lowest. If `wanted` is null, returns the fastest of all; if it is
/// unknown, logs a warning and does the same.
const KernelLevel& ChooseKernels(const char* wanted);

/// Returns the kernels in use: ChooseKernels() with the value of the environment variable ZIRK_CPU
/// at the first call.
const KernelLevel& ChosenKernels();

inline const Kernels& BestKernels() {
  return *ChosenKernels().kernels;
}

}  // namespace ZIRK::backends
