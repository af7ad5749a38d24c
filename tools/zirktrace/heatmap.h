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

/// Puts a picture of the counts at the top left corner of a bitmap of XRGB8888, which is large
/// enough.
void PutHeat(VuBitmap& picture, const WriteCounts& counts);
/// A bitmap with that and a legend below it: each colour's number, and the part of the pixels that
/// have it. Null, after a log line, where it cannot be made.
std::unique_ptr<VuBitmap> DrawHeatWithLegend(VuGraphics& graphics, const WriteCounts& counts);

}  // namespace ZIRK::trace
