#pragma once

/// For the building blocks of inner loops: a call for each vector would cost more than the work.
#define ZIRK_INLINE inline __attribute__((always_inline))
#define ZIRK_INLINE_LAMBDA __attribute__((always_inline))
