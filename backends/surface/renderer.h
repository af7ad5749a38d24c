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
// - The first parameter of its constructor is the `const SurfaceState&` of the surface. The state
//   outlives the renderer, and operations use its values at the time of the call.
// - The surface calls one operation at a time, with pointers that are not null and, for pixels,
//   boxes that lie on the surface. Primitives come from the application unchecked: they may be
//   empty, inverted, far away or not finite.
// - An operation that fails logs an error and does nothing more. No operation throws.

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
// The operations draw as VuBitmap documents. Sources and masks come from Resolve(). A mask has one
// pair of coordinates for each corner or end of the primitive, and at least one for a point, or
// null. A null mask means no mask.

template <class R>
concept DrawsPrimitives = requires(R& renderer, VuPoint point, float size, VuRect rect,
                                   const RectD& extent, Edges edges, VuBitmapImpl& surface,
                                   const TextArguments& text, VuColor color, const MatrixF& matrix,
                                   const Source<typename R::Pixels>& source,
                                   const Mask<typename R::Pixels>* mask) {
  /// Draws a rectangle with the identity matrix and without a mask, quickly. Returns false, with
  /// nothing drawn, if the caller must use DrawRect().
  { renderer.FillBox(rect, color) } -> std::same_as<bool>;

  /// Does the same for a part of a surface, with any matrix. Also returns false for a surface that
  /// Resolve() would refuse or copy.
  { renderer.BlitBox(rect, surface, rect, matrix, color) } -> std::same_as<bool>;

  { renderer.DrawPoint(point, size, color, matrix, mask) } -> std::same_as<void>;
  { renderer.DrawLine(point, point, color, matrix, mask) } -> std::same_as<void>;
  { renderer.DrawRect(extent, color, matrix, mask) } -> std::same_as<void>;

  /// The first rectangle is the destination, the second is the part of the source. `edges` says
  /// whether an upright result is moved to whole pixels.
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

  /// Reads pixels into rows without gaps.
  { renderer.Read(box, to) } -> std::same_as<bool>;

  /// Writes pixels from rows that are `pitch` bytes apart.
  { renderer.Write(box, from, pitch) } -> std::same_as<bool>;

  /// Copies `rect` of a surface, which may be the renderer's own, to `at`. Clips to both surfaces.
  /// Returns false for a surface that Resolve() would refuse.
  { renderer.Copy(at, surface, rect) } -> std::same_as<bool>;
};

// --- Locking ------------------------------------------------------------------------------------
//
// Locks do not nest. All other operations may be called while the surface is locked.

template <class R>
concept LocksPixels = requires(R& renderer, const R& constant, bool write) {
  { renderer.Lock(write) } -> std::same_as<bool>;

  /// Ends the lock, even if it returns false. `write` is what Lock() was given.
  { renderer.Unlock(write) } -> std::same_as<bool>;

  /// Returns the first row while the surface is locked, or null if its pixels are not accessible.
  { constant.LockedPixels() } -> std::same_as<void*>;

  /// Returns the bytes from one row to the next, locked or not.
  { constant.Pitch() } -> std::same_as<int>;
};

// --- The whole surface --------------------------------------------------------------------------

template <class R>
concept EndsFrames = requires(R& renderer, const R& constant, const char* name) {
  /// Waits until all drawing is complete.
  { renderer.Finish() } -> std::same_as<void>;

  /// Submits pending drawing without waiting for it.
  { renderer.Flush() } -> std::same_as<void>;

  /// Sets a name for debuggers; null means none. The string is valid only during the call.
  { renderer.SetName(name) } -> std::same_as<void>;

  /// Returns whether the pixels are in a texture.
  { constant.IsTextureBacked() } -> std::same_as<bool>;
};

template <class R>
concept SurfaceRenderer =
    ReadsSurfaces<R> && DrawsPrimitives<R> && TransfersPixels<R> && LocksPixels<R> && EndsFrames<R>;

}  // namespace ZIRK::backends
