#pragma once

#include <zirk/impl/vubitmapimpl.h>

#include <concepts>

#include "geometry/box.h"
#include "geometry/mapping.h"
#include "surface/operands.h"
#include "surface/surfacestate.h"

// The operations that a Surface requires of its renderer. Renderers declare them in this order and
// under these headings.
//
// - Its constructor takes the `const SurfaceState&` of the surface before anything else. The state
//   outlives the renderer, and operations use its values at the time of the call.
// - A renderer may rely on its surface to call one operation at a time, with pointers that are not
//   null and, for pixels, boxes that lie on the surface. Primitives come from the application
//   unchecked: they may be empty, inverted, far away or not finite.
// - An operation that fails logs an error and does nothing more. None throws.

namespace ZIRK::backends {

// --- Reading ------------------------------------------------------------------------------------
//
// `R::Pixels` is the type by which the renderer reads surfaces. `R::SourceCopy` holds a copy that
// is read in place of a surface, and is empty by default.

template <class R>
concept ReadsSurfaces = requires(R& renderer, VuBitmapImpl& surface, RectD* part,
                                 Source<typename R::Pixels>& source, typename R::SourceCopy& copy) {
  requires std::default_initializable<typename R::SourceCopy>;

  /// Finds the pixels to read for `surface`. If it is the renderer's own surface, or cannot be read
  /// in place, copies the pixels that `part` touches (all of them if it is null) into `copy`, and
  /// rebases `part` to the copy. Returns false if there is nothing to read, with an error line
  /// unless `part` touches no pixel.
  { renderer.Resolve(surface, part, source, copy) } -> std::same_as<bool>;
};

// --- Drawing ------------------------------------------------------------------------------------
//
// As VuBitmap says. Sources and masks come from Resolve(). A mask's coordinates are as many as the
// primitive has, or null, for a point one at least; the mask is null where there is none.

template <class R>
concept DrawsPrimitives = requires(R& renderer, VuPoint point, float size, VuRect rect,
                                   const RectD& extent, Edges edges, VuBitmapImpl& surface,
                                   const TextArguments& text, VuColor color, const MatrixF& matrix,
                                   const Source<typename R::Pixels>& source,
                                   const Mask<typename R::Pixels>* mask) {
  /// Fast path for a rectangle with the identity and without a mask. Returns false, with nothing
  /// drawn, if DrawRect() must draw it.
  { renderer.FillBox(rect, color) } -> std::same_as<bool>;

  /// The same for the part of a surface, through any matrix. False also for a surface that
  /// Resolve() would refuse or copy.
  { renderer.BlitBox(rect, surface, rect, matrix, color) } -> std::same_as<bool>;

  { renderer.DrawPoint(point, size, color, matrix, mask) } -> std::same_as<void>;
  { renderer.DrawLine(point, point, color, matrix, mask) } -> std::same_as<void>;
  { renderer.DrawRect(extent, color, matrix, mask) } -> std::same_as<void>;

  /// The destination comes first, then the source and its part. `edges` says whether an upright
  /// result is moved to whole pixels.
  { renderer.DrawObject(extent, source, extent, edges, matrix, color, mask) } -> std::same_as<void>;

  { renderer.DrawText(text, color, matrix, mask) } -> std::same_as<void>;
};

// --- Pixels -------------------------------------------------------------------------------------
//
// Neither clipping nor blending applies.

template <class R>
concept TransfersPixels = requires(R& renderer, VuColor color, const Box& box, void* to,
                                   const void* from, unsigned pitch, VuPoint at,
                                   VuBitmapImpl& surface, const VuRect& rect) {
  { renderer.Clear(color) } -> std::same_as<bool>;

  /// Reads tight rows.
  { renderer.Read(box, to) } -> std::same_as<bool>;

  /// Writes rows that lie `pitch` bytes apart.
  { renderer.Write(box, from, pitch) } -> std::same_as<bool>;

  /// Copies `rect` of a surface, which may be the renderer's own, to `at`. Both are cut to what
  /// there is. False for a surface that Resolve() would refuse.
  { renderer.Copy(at, surface, rect) } -> std::same_as<bool>;
};

// --- Locking ------------------------------------------------------------------------------------
//
// Locks do not nest. While there is one, all other operations may be called.

template <class R>
concept LocksPixels = requires(R& renderer, const R& constant, bool write) {
  { renderer.Lock(write) } -> std::same_as<bool>;

  /// Ends the lock, also if it returns false. `write` is what Lock() was given.
  { renderer.Unlock(write) } -> std::same_as<bool>;

  /// The first row, while there is a lock; null where pixels cannot be had.
  { constant.LockedPixels() } -> std::same_as<void*>;

  /// Bytes from one row to the next, with or without a lock.
  { constant.Pitch() } -> std::same_as<int>;
};

// --- The whole surface --------------------------------------------------------------------------

template <class R>
concept EndsFrames = requires(R& renderer, const R& constant, const char* name) {
  /// Returns when all drawing is done.
  { renderer.Finish() } -> std::same_as<void>;

  /// Submits pending drawing without waiting for it.
  { renderer.Flush() } -> std::same_as<void>;

  /// A name for debuggers, null for none. It is valid during the call.
  { renderer.SetName(name) } -> std::same_as<void>;

  /// Whether the pixels are in a texture.
  { constant.IsTextureBacked() } -> std::same_as<bool>;
};

template <class R>
concept SurfaceRenderer =
    ReadsSurfaces<R> && DrawsPrimitives<R> && TransfersPixels<R> && LocksPixels<R> && EndsFrames<R>;

}  // namespace ZIRK::backends
