#pragma once

/// @file
/// Arithmetic on colours.

#include <zirk/export.h>
#include <zirk/vucolor.h>

namespace ZIRK::kit {

/// Interpolates between two colours: returns `from` for `t` = 0 and `to` for `t` = 1. Each channel,
/// alpha included, is interpolated and rounded to the nearest value. `t` is clamped to 0..1; NaN
/// counts as 0. Any thread may call.
[[nodiscard]] ZIRK_API VuColor Mix(VuColor from, VuColor to, float t);

}  // namespace ZIRK::kit
