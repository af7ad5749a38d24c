#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <optional>

#include "software/pixelbuffer.h"
#include "surface/operands.h"
#include "text/glyphatlasallocator.h"

namespace ZIRK::backends {

/// The interface by which software surfaces of one context find the pixels that they read, and make
/// glyph atlases. Software bitmaps need no resolver: FindSource() reads their pixels directly.
class PixelSourceResolver {
 public:
  /// Returns the allocator for the atlas of a font that is drawn for the first time.
  virtual GlyphAtlasAllocator& Atlases() = 0;

  /// Returns the pixels of `surface` if they are in memory, otherwise null. Logs nothing.
  virtual const PixelBuffer* PixelsOf(VuBitmapImpl& surface) = 0;

  /// Copies the pixels of `part`, which lies on `surface` and may be empty. Logs an error and
  /// returns false on failure, and for a surface of another plug-in.
  virtual bool CopyToBuffer(VuBitmapImpl& surface, const Box& part,
                            std::optional<PixelBuffer>& copy) = 0;

 protected:
  ~PixelSourceResolver() = default;
};

/// Returns the pixels of `surface` in memory: those of a software bitmap, or those that `resolver`
/// finds. They are null if the surface has none in memory.
Source<const PixelBuffer> FindSource(PixelSourceResolver& resolver, VuBitmapImpl& surface);

}  // namespace ZIRK::backends
