#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <optional>

#include "software/pixelbuffer.h"
#include "surface/operands.h"
#include "text/glyphatlasallocator.h"

namespace ZIRK::backends {

/// Finds the pixels that software surfaces of one context read, and makes their glyph atlases.
/// Software bitmaps need no resolver: FindSource() reads their pixels directly.
class PixelSourceResolver {
 public:
  /// Allocates the atlas of a font that is drawn for the first time.
  virtual GlyphAtlasAllocator& Atlases() = 0;

  /// The pixels that `surface` has in memory. Null, without a log line, if it has none there.
  virtual const PixelBuffer* PixelsOf(VuBitmapImpl& surface) = 0;

  /// Copies the pixels of `part`, which lies on `surface` and may be empty. False after an error
  /// line, also for a surface of another plug-in.
  virtual bool CopyToBuffer(VuBitmapImpl& surface, const Box& part,
                            std::optional<PixelBuffer>& copy) = 0;

 protected:
  ~PixelSourceResolver() = default;
};

/// The pixels of `surface` in memory: a software bitmap's own, or those that `resolver` finds. Null
/// if it has none there.
Source<const PixelBuffer> FindSource(PixelSourceResolver& resolver, VuBitmapImpl& surface);

}  // namespace ZIRK::backends
