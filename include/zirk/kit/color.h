#pragma once

/// @file
/// Reckoning with colours.

#include <zirk/export.h>
#include <zirk/vucolor.h>

namespace ZIRK::kit {

/// The colour between two: `from` where `t` is 0, `to` where it is 1, and each channel, alpha
/// included, rounded to the nearest between them. `t` beyond that range counts as its nearer end,
/// and one that is not a number as 0. Any thread may call.
ZIRK_API VuColor Mix(VuColor from, VuColor to, float t);

}  // namespace ZIRK::kit
