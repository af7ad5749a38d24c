#pragma once

#include <zirk/vubitmap.h>
#include <zirk/vugraphics.h>

#include <cstdint>
#include <memory>

#include "writecounts.h"

namespace ZIRK::trace {

/// The opaque colours of a heat map, indexed by the number of writes to a pixel. The last colour
/// also stands for more writes.
constexpr uint32_t kHeatColors[] = {0xFF10141C, 0xFF20406E, 0xFF1E7487, 0xFF2E9E62, 0xFF9DBE3A,
                                    0xFFEFC02F, 0xFFEE8524, 0xFFD83A2B, 0xFFF05BD0};

/// Draws the counts at the top left corner of an XRGB8888 bitmap, which must be large enough.
void PutHeat(VuBitmap& picture, const WriteCounts& counts);
/// Returns a bitmap with the heat map and a legend below it: each colour's count and its share of
/// the pixels. Logs an error and returns null if it cannot be made.
std::unique_ptr<VuBitmap> DrawHeatWithLegend(VuGraphics& graphics, const WriteCounts& counts);

}  // namespace ZIRK::trace
