#pragma once

#include <zirk/vubitmap.h>
#include <zirk/vugraphics.h>

#include <cstdint>
#include <memory>

#include "writecounts.h"

namespace ZIRK::trace {

/// The colours of a heat map, opaque: of pixels that were written so often, the last one for this
/// many and more.
constexpr uint32_t kHeatColors[] = {0xFF10141C, 0xFF20406E, 0xFF1E7487, 0xFF2E9E62, 0xFF9DBE3A,
                                    0xFFEFC02F, 0xFFEE8524, 0xFFD83A2B, 0xFFF05BD0};

/// A picture of the counts alone. Null, after a log line, where it cannot be made.
std::unique_ptr<VuBitmap> DrawHeat(VuGraphics& graphics, const WriteCounts& counts);
/// The same with a legend below it: each colour's number, and the part of the pixels that have it.
std::unique_ptr<VuBitmap> DrawHeatWithLegend(VuGraphics& graphics, const WriteCounts& counts);

}  // namespace ZIRK::trace
