#include <array>
#include <cstddef>

#include "software/kernels.h"

#if defined(ZIRK_HAVE_NEON_KERNELS)
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif

namespace ZIRK::backends {

extern const Kernels kBaseKernels;
#if defined(ZIRK_HAVE_X86_KERNELS)
extern const Kernels kAvx2Kernels;
extern const Kernels kAvx512Kernels;
#elif defined(ZIRK_HAVE_NEON_KERNELS)
extern const Kernels kNeonKernels;
#endif

namespace {

/// What this processor runs, the fastest first, ending with null.
std::array<const Kernels*, 4> FindKernels() {
  std::array<const Kernels*, 4> found{};
  size_t count = 0;
#if defined(ZIRK_HAVE_X86_KERNELS)
  const bool avx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                      __builtin_cpu_supports("avx512vl");
  if (avx512) found[count++] = &kAvx512Kernels;
  if (__builtin_cpu_supports("avx2")) found[count++] = &kAvx2Kernels;
#elif defined(ZIRK_HAVE_NEON_KERNELS)
  if (getauxval(AT_HWCAP) & HWCAP_NEON) found[count++] = &kNeonKernels;
#endif
  found[count] = &kBaseKernels;
  return found;
}

}  // namespace

const Kernels* const* RunnableKernels() {
  static const std::array<const Kernels*, 4> found = FindKernels();
  return found.data();
}

const Kernels& BestKernels() {
  static const Kernels& best = *RunnableKernels()[0];
  return best;
}

}  // namespace ZIRK::backends
