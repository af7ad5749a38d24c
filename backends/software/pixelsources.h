#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <optional>

#include "software/pixelbuffer.h"
#include "surface/operands.h"
#include "text/glyphatlasallocator.h"

namespace ZIRK::backends {

/// What software surfaces of one context share: glyph atlases, and the way to the pixels of the
/// surfaces that they read, as far as these are no software bitmaps.
class PixelSources {
 public:
  /// Makes the atlases of fonts that are first drawn with on one of the surfaces.
  virtual GlyphAtlasAllocator& Atlases() = 0;

  /// The pixels that `surface` has in memory; null, without a word, if it has none there.
  virtual const PixelBuffer* PixelsOf(VuBitmapImpl& surface) = 0;

  /// Copies the pixels of `part`, which lies on `surface` and may be empty, from where else they
  /// are. False after an error line; so it is for surfaces of other plug-ins.
  virtual bool CopyToBuffer(VuBitmapImpl& surface, const Box& part,
                            std::optional<PixelBuffer>& copy) = 0;

 protected:
  ~PixelSources() = default;
};

/// A surface as it is read where it has its pixels in memory: a software bitmap, or what `sources`
/// knows. Without pixels if it has none there.
Source<const PixelBuffer> FindSource(PixelSources& sources, VuBitmapImpl& surface);

}  // namespace ZIRK::backends
