#include "software/kernelchoice.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include <zirk/impl/log.h>

#if defined(ZIRK_HAVE_NEON_KERNELS) && !defined(ZIRK_BASE_HAS_NEON)
#include <asm/hwcap.h>
#include <sys/auxv.h>
#endif

namespace ZIRK::backends {

extern const Kernels kPortableKernels;
#if defined(ZIRK_HAVE_X86_KERNELS)
extern const Kernels kSse2Kernels;
extern const Kernels kAvx2Kernels;
extern const Kernels kAvx512Kernels;
#elif defined(ZIRK_HAVE_NEON_KERNELS)
extern const Kernels kNeonKernels;
#endif

namespace {

/// From the lowest to the highest.
constexpr const char* kLevels[] = {"none", "base", "neon", "avx2", "avx512"};

/// Returns the index of `name` among the levels, or their number if it is unknown.
ptrdiff_t RankOf(const char* name) {
  const auto isIt = [name](const char* level) { return std::strcmp(level, name) == 0; };
  return std::find_if(std::begin(kLevels), std::end(kLevels), isIt) - std::begin(kLevels);
}

struct FoundKernels {
  std::array<KernelLevel, 4> levels;
  size_t count = 0;

  void Add(bool runs, const char* name, const Kernels& kernels) {
    if (runs) levels[count++] = {name, &kernels};
  }
};

FoundKernels FindKernels() {
  FoundKernels found;
#if defined(ZIRK_HAVE_X86_KERNELS)
  found.Add(__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                __builtin_cpu_supports("avx512vl"),
            "avx512", kAvx512Kernels);
  found.Add(__builtin_cpu_supports("avx2"), "avx2", kAvx2Kernels);
  found.Add(__builtin_cpu_supports("sse2"), "base", kSse2Kernels);
#elif defined(ZIRK_BASE_HAS_NEON)
  found.Add(true, "neon", kNeonKernels);
#elif defined(ZIRK_HAVE_NEON_KERNELS)
  found.Add(getauxval(AT_HWCAP) & HWCAP_NEON, "neon", kNeonKernels);
#endif
#if !defined(ZIRK_BASE_HAS_NEON)
  found.Add(true, "none", kPortableKernels);
#endif
  return found;
}

}  // namespace

std::span<const KernelLevel> RunnableKernels() {
  static const FoundKernels found = FindKernels();
  return {found.levels.data(), found.count};
}

const KernelLevel& ChooseKernels(const char* wanted) {
  const std::span<const KernelLevel> runnable = RunnableKernels();
  if (!wanted) return runnable.front();
  const ptrdiff_t rank = RankOf(wanted);
  if (rank == std::ssize(kLevels)) {
    ZIRK_LOG_WARNING("ZIRK_CPU: there is no level \"%s\"", wanted);
    return runnable.front();
  }
  const auto permitted = [rank](const KernelLevel& level) { return RankOf(level.name) <= rank; };
  const auto found = std::find_if(runnable.begin(), runnable.end(), permitted);
  return found == runnable.end() ? runnable.back() : *found;
}

const KernelLevel& ChosenKernels() {
  static const KernelLevel& chosen = []() -> const KernelLevel& {
    const KernelLevel& level = ChooseKernels(std::getenv("ZIRK_CPU"));
    ZIRK_LOG_INFO("kernels: %s", level.name);
    return level;
  }();
  return chosen;
}

}  // namespace ZIRK::backends
